#pragma once

#include <android/log.h>

// Macros, so that the compiler checks each text against its values. A source file says its tag
// once, as `constexpr char kLogTag[]`, and then its lines.
#define logInfo(...) __android_log_print(ANDROID_LOG_INFO, kLogTag, __VA_ARGS__)
#define logError(...) __android_log_print(ANDROID_LOG_ERROR, kLogTag, __VA_ARGS__)

namespace orbitwalk {

/// Logs what the exception that is being handled says, "<where> : cause: <what>", at error
/// priority; nothing for one that says nothing. For catch blocks: allocates nothing, since memory
/// may be what is missing.
void logCause(const char* tag, const char* where) noexcept;

}  // namespace orbitwalk
