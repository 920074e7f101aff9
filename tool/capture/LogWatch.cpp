#include "capture/LogWatch.h"

#include <android/log.h>

#include <cstdio>
#include <cstring>
#include <string_view>

#include "OrbitwalkPlatform.h"

namespace orbitwalk::tool {
namespace {

constexpr std::string_view kFinderTag = "ORBITWALK_ENGINE 2D_CALCULATE_TRANSFORM";
constexpr std::string_view kWriterTag = "ORBITWALK_MP4_WRITER";

std::string trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \n\t");
    if (first == std::string_view::npos)
        return {};
    return std::string(text.substr(first, text.find_last_not_of(" \n\t") - first + 1));
}

}  // namespace

void RepeatedMotion::takeLine(const char* text) {
    if (std::strstr(text, "insufficeint")) {
        mInsufficient = true;
        return;
    }
    int frame = 0;
    Motion motion{};
    if (std::sscanf(text, "CalculatePrevToCurTransform : Frame[%d] : Transform[ %lf, %lf, %lf ]",
                    &frame, &motion[0], &motion[1], &motion[2]) != 4)
        return;
    if (mInsufficient || (motion == mLast && motion != Motion{}))
        mFrames.insert(frame);
    mInsufficient = false;
    mLast = motion;
}

LogWatch::LogWatch() {
    OrbitwalkSetLogListener(&LogWatch::onLine, this);
}

LogWatch::~LogWatch() {
    OrbitwalkSetLogListener(nullptr, nullptr);
}

void LogWatch::onLine(int priority, const char* tag, const char* text, void* self) {
    auto& watch = *static_cast<LogWatch*>(self);
    const std::lock_guard lock(watch.mMutex);
    if (tag == kFinderTag)
        watch.mRepeated.takeLine(text);
    if (priority >= ANDROID_LOG_ERROR)
        watch.takeFailure(tag, text);
}

void LogWatch::takeFailure(const char* tag, const char* text) {
    if (tag == kWriterTag) {
        if (mWriterFailure.empty())
            mWriterFailure = trimmed(text);
    } else if (std::string_view(text).find("SUCCESS") == std::string_view::npos) {
        // The engine says the creation of its directory at error priority.
        mEngineFailure = trimmed(text);
    }
}

std::set<int> LogWatch::repeatedFrames() const {
    const std::lock_guard lock(mMutex);
    return mRepeated.frames();
}

std::string LogWatch::writerFailure() const {
    const std::lock_guard lock(mMutex);
    return mWriterFailure;
}

std::string LogWatch::failure() const {
    const std::lock_guard lock(mMutex);
    return mWriterFailure.empty() ? mEngineFailure : mWriterFailure;
}

}  // namespace orbitwalk::tool
