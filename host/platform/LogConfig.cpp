#include "LogConfig.h"

#include <android/log.h>

#include <algorithm>

namespace orbitwalk::platform {

namespace {

constexpr std::string_view kLetters = "VDIWEF";

constexpr struct {
    std::string_view level;
    int priority;
} kLevels[] = {{"verbose", ANDROID_LOG_VERBOSE},
               {"debug", ANDROID_LOG_DEBUG},
               {"info", ANDROID_LOG_INFO},
               {"warn", ANDROID_LOG_WARN},
               {"error", ANDROID_LOG_ERROR},
               {"off", kNothing},
               {"", kNothing}};

}  // namespace

int clampPriority(int priority) {
    return std::clamp<int>(priority, ANDROID_LOG_VERBOSE, ANDROID_LOG_FATAL);
}

char priorityLetter(int priority) {
    return kLetters[static_cast<std::size_t>(clampPriority(priority) - ANDROID_LOG_VERBOSE)];
}

int priorityOfLevel(std::string_view level) {
    for (const auto& known : kLevels)
        if (known.level == level)
            return known.priority;
    return 0;
}

}  // namespace orbitwalk::platform
