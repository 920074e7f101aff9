#pragma once

#include <android/log.h>

#include <cstdarg>

// Macros, so that the compiler checks each text against its values. A source file says its tag
// once, as `constexpr char kLogTag[]`, and then its lines. The values of a line that nobody hears
// are not even computed.
#define logInfo(...)                                                   \
    (orbitwalk::isHeard(ANDROID_LOG_INFO, kLogTag)                     \
         ? __android_log_print(ANDROID_LOG_INFO, kLogTag, __VA_ARGS__) \
         : 0)
#define logError(...)                          \
    (orbitwalk::tellErrorWatcher(__VA_ARGS__), \
     __android_log_print(ANDROID_LOG_ERROR, kLogTag, __VA_ARGS__))

namespace orbitwalk {

/// Whether a line would come to anything; true where the log cannot tell beforehand. The platform's
/// log answers from Android 11 on, and the host's. Only the library that prints is asked: a program
/// may bring a __android_log_print of its own and hear everything.
bool isHeard(int priority, const char* tag) noexcept;

/// Who hears error lines besides the log, on the thread that says them; null for nobody, as in the
/// engine itself. Set while a library is being loaded, and never after.
using ErrorWatcher = void (*)(const char* format, std::va_list values) noexcept;
extern ErrorWatcher errorWatcher;
[[gnu::format(printf, 1, 2)]] void tellErrorWatcher(const char* format, ...) noexcept;

/// Logs what the exception that is being handled says, "<where> : cause: <what>", at error
/// priority; nothing for one that says nothing. For catch blocks: allocates nothing, since memory
/// may be what is missing.
void logCause(const char* tag, const char* where) noexcept;

}  // namespace orbitwalk
