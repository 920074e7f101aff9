#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// What the code under test logged, and the system property it reads. Replaces the platform library
/// in the test programs that link it. Any thread.
namespace fake_platform {

struct LogLine {
    int priority;
    std::string tag;
    std::string text;

    friend bool operator==(const LogLine&, const LogLine&) = default;
};

/// Value that "ro.build.type" answers from now on; "user" at first.
void setBuildType(std::string_view value);

/// All lines since the last clearLog, in order.
std::vector<LogLine> logLines();
/// Their texts alone, under one tag or, with an empty tag, under all.
std::vector<std::string> logTexts(std::string_view tag = {});
/// How many lines have exactly this text.
int countLog(std::string_view text);
/// How many lines begin with this text.
int countLogPrefix(std::string_view prefix);
void clearLog();
/// Calls a function with each line, on the thread that logs it, after the line is kept; an empty
/// one ends that. Set while nothing logs.
void whenLogged(std::function<void(const LogLine&)> listener);

/// Waits until a line that begins with this text has been logged, a minute at most.
/// @return whether it came.
bool waitForLog(std::string_view text);
/// The same for anything that another thread brings about.
bool waitUntil(const std::function<bool()>& condition);

}  // namespace fake_platform
