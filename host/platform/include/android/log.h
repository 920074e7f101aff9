#pragma once

/* The Android log as the engine calls it. On a phone the platform's own header of this name is
 * used; here the platform library for hosts provides the call. */

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

/* Writes one line of any length, printf-like, under a tag; one newline at its end is dropped, the
 * log adds its own. A null tag is an empty one; a null format says nothing. Any thread. Returns a
 * positive number when it was written or heard by a listener, 0 when not. */
__attribute__((visibility("default"), format(printf, 3, 4))) int __android_log_print(
    int priority, const char* tag, const char* format, ...);

/* Whether a line of this priority would be written or heard now: 1 or 0. Here one level holds for
 * all tags, and there always is one, so that the default is not asked for. Any thread. */
__attribute__((visibility("default"))) int __android_log_is_loggable(int priority, const char* tag,
                                                                     int default_priority);

#ifdef __cplusplus
}
#endif
