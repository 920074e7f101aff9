#pragma once

/* The Android log as the engine calls it. On a phone the platform's own header of this name is
 * used; here liborbitwalk's platform library provides the call. */

#ifdef __cplusplus
extern "C" {
#endif

enum {
    ANDROID_LOG_VERBOSE = 2,
    ANDROID_LOG_DEBUG = 3,
    ANDROID_LOG_INFO = 4,
    ANDROID_LOG_WARN = 5,
    ANDROID_LOG_ERROR = 6,
    ANDROID_LOG_FATAL = 7
};

/* Writes one line, printf-like, under a tag. Any thread. Returns a positive number when it was
 * written. */
__attribute__((visibility("default"), format(printf, 3, 4))) int __android_log_print(
    int priority, const char* tag, const char* format, ...);

#ifdef __cplusplus
}
#endif
