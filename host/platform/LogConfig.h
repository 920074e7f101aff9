#pragma once

#include <string_view>

namespace orbitwalk::platform {

/// Above every priority: a log that writes nothing.
inline constexpr int kNothing = 8;

/// Brings any integer to an ANDROID_LOG value from VERBOSE to FATAL.
int clampPriority(int priority);

/// The letter that stands for a priority in a line: V, D, I, W, E or F.
char priorityLetter(int priority);

/// Lowest priority to write for a value of ORBITWALK_LOG_LEVEL; kNothing for "off" and for no
/// value.
/// @return 0 when the word is not one of the levels.
int priorityOfLevel(std::string_view level);

}  // namespace orbitwalk::platform
