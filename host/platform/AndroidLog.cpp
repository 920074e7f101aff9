#include <OrbitwalkPlatform.h>
#include <android/log.h>

#include <cstdarg>
#include <exception>

#include "LogChannel.h"
#include "LogText.h"

using orbitwalk::platform::LogChannel;
using orbitwalk::platform::LogText;

namespace {

__attribute__((format(printf, 3, 0))) int say(int priority, const char* tag, const char* format,
                                              std::va_list values) {
    // Nothing is thrown at the caller, who cannot know that a log line takes memory.
    try {
        LogChannel& channel = LogChannel::instance();
        if (!format || !channel.isOpenFor(priority))
            return 0;
        const LogText text(format, values);
        return channel.say(priority, tag ? tag : "", text.c_str()) ? 1 : 0;
    } catch (const std::exception&) {
        return 0;
    }
}

}  // namespace

int __android_log_print(int priority, const char* tag, const char* format, ...) {
    std::va_list values;
    va_start(values, format);
    const int result = say(priority, tag, format, values);
    va_end(values);
    return result;
}

int __android_log_is_loggable(int priority, const char*, int) {
    try {
        return LogChannel::instance().isOpenFor(priority) ? 1 : 0;
    } catch (const std::exception&) {
        return 1;
    }
}

void OrbitwalkSetLogListener(OrbitwalkLogListener listener, void* context) {
    LogChannel::instance().setListener(listener, context);
}

void OrbitwalkSetLogLevel(int priority) {
    LogChannel::instance().setLevel(priority);
}
