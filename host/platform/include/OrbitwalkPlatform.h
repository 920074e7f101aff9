#pragma once

/* What the host's platform library offers beside the calls that the engine makes.
 *
 * The log is quiet by default. ORBITWALK_LOG_LEVEL (verbose, debug, info, warn, error, off) opens
 * it, to stderr or to the file that ORBITWALK_LOG_FILE names, which is appended to and flushed with
 * every line; a file that cannot be written is said once on stderr and its lines are dropped. Both
 * are read with the first line or call. ORBITWALK_BUILD_TYPE answers
 * "ro.build.type"; without it the value is "user". All calls may come from any thread. */

#ifdef __cplusplus
extern "C" {
#endif

/* Receives every line, whatever the level; the text is valid during the call only and has
 * no newline of its own at the end. Called by one thread at a time. Must not log. */
typedef void (*OrbitwalkLogListener)(int priority, const char* tag, const char* text,
                                     void* context);

/* Sets the one listener; null removes it. When the call returns, the former listener is no longer
 * running. */
__attribute__((visibility("default"))) void OrbitwalkSetLogListener(OrbitwalkLogListener listener,
                                                                    void* context);

/* Lowest priority (an ANDROID_LOG value) that is written; above ANDROID_LOG_FATAL nothing is.
 * Overrides the environment. */
__attribute__((visibility("default"))) void OrbitwalkSetLogLevel(int priority);

#ifdef __cplusplus
}
#endif
