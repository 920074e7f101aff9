#pragma once

#include <android/log.h>

#include <cstdarg>

// Macros, so that the compiler checks each text against its values. A source file says its tag
// once, as `constexpr char kLogTag[]`, and then its lines.
#define logInfo(...) __android_log_print(ANDROID_LOG_INFO, kLogTag, __VA_ARGS__)
#define logError(...)                          \
    (orbitwalk::tellErrorWatcher(__VA_ARGS__), \
     __android_log_print(ANDROID_LOG_ERROR, kLogTag, __VA_ARGS__))

namespace orbitwalk {

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
