#include "support/FakePlatform.h"

#include <chrono>
#include <thread>

#include <android/log.h>
#include <sys/system_properties.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>

namespace {

std::mutex lock;
std::vector<fake_platform::LogLine> lines;
std::string buildType = "user";
std::function<void(const fake_platform::LogLine&)> listener;

}  // namespace

int __android_log_print(int priority, const char* tag, const char* format, ...) {
    char text[2048];
    va_list values;
    va_start(values, format);
    const int length = std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    const fake_platform::LogLine line{priority, tag, text};
    {
        const std::lock_guard guard(lock);
        lines.push_back(line);
    }
    if (listener)
        listener(line);
    return length;
}

int __system_property_get(const char* name, char* value) {
    const std::lock_guard guard(lock);
    const bool known = std::strcmp(name, "ro.build.type") == 0;
    return std::snprintf(value, PROP_VALUE_MAX, "%s", known ? buildType.c_str() : "");
}

namespace fake_platform {

void setBuildType(std::string_view value) {
    const std::lock_guard guard(lock);
    buildType = value;
}

std::vector<LogLine> logLines() {
    const std::lock_guard guard(lock);
    return lines;
}

std::vector<std::string> logTexts(std::string_view tag) {
    std::vector<std::string> texts;
    for (const LogLine& line : logLines())
        if (tag.empty() || line.tag == tag)
            texts.push_back(line.text);
    return texts;
}

int countLog(std::string_view text) {
    const auto all = logLines();
    return static_cast<int>(std::count_if(all.begin(), all.end(),
                                          [&](const LogLine& line) { return line.text == text; }));
}

int countLogPrefix(std::string_view prefix) {
    const auto all = logLines();
    return static_cast<int>(std::count_if(all.begin(), all.end(), [&](const LogLine& line) {
        return line.text.starts_with(prefix);
    }));
}

void whenLogged(std::function<void(const LogLine&)> called) {
    listener = std::move(called);
}

void clearLog() {
    const std::lock_guard guard(lock);
    lines.clear();
}

bool waitForLog(std::string_view text) {
    return waitUntil([=] { return countLogPrefix(text) > 0; });
}

bool waitUntil(const std::function<bool()>& condition) {
    const auto alarm = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > alarm)
            return false;
        std::this_thread::yield();
    }
    return true;
}

}  // namespace fake_platform
