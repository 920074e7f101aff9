#include "engine/EngineFixture.h"

#include <algorithm>
#include <chrono>
#include <cstring>

void RecordingListener::onProgress(int status, int percent) {
    EXPECT_EQ(status, 0);
    hook(percent);
    const std::lock_guard guard(mLock);
    mPercents.push_back(percent);
    mChanged.notify_all();
}

std::vector<int> RecordingListener::awaitAll() {
    std::unique_lock guard(mLock);
    mChanged.wait_for(guard, std::chrono::seconds(10),
                      [this] { return !mPercents.empty() && mPercents.back() == 100; });
    return mPercents;
}

std::vector<int> RecordingListener::percents() {
    const std::lock_guard guard(mLock);
    return mPercents;
}

void RecordingListener::forget() {
    const std::lock_guard guard(mLock);
    mPercents.clear();
}

EngineTest::EngineTest() {
    fake_platform::setBuildType("user");
    fake_platform::clearLog();
    fake_writer::reset();
    std::memset(&record, 0xee, sizeof record);
}

void EngineTest::TearDown() {
    fake_writer::openGate();
    CaptureFixture::TearDown();
    fake_platform::whenLogged({});
    EXPECT_EQ(fake_writer::record().misuses, 0);
}

int EngineTest::state() {
    EXPECT_EQ(engine().start(nullptr), OBW_RESULT_INVALID_PARAM);
    const std::string prefix = "kelOBWEngine::start-- max frames = 1000, engineState=";
    std::string last;
    for (const std::string& text : fake_platform::logTexts("ORBITWALK_ENGINE"))
        if (text.starts_with(prefix))
            last = text.substr(prefix.size());
    return std::stoi(last);
}

int EngineTest::feed(int count) {
    for (int i = 0; i < count; ++i)
        if (const int result = setFrame(); result != 0)
            return result;
    return OBW_RESULT_OK;
}

void EngineTest::initAndStart() {
    ASSERT_EQ(init(), OBW_RESULT_OK);
    ASSERT_EQ(start(), OBW_RESULT_OK);
}

void EngineTest::feedAndStop(int frames) {
    ASSERT_EQ(feed(frames), OBW_RESULT_OK);
    ASSERT_EQ(stop(0, frames - 1, framesWithFlags(std::vector<int>(frames, 1))), OBW_RESULT_OK);
}

void EngineTest::beginCapture(int frames) {
    initAndStart();
    feedAndStop(frames);
}

void EngineTest::at(const std::string& line, const std::function<void()>& action) {
    fake_platform::whenLogged([=](const fake_platform::LogLine& logged) {
        if (logged.text.starts_with(line))
            action();
    });
}

std::vector<_ENCODING_FRAME_INFORMATION> framesWithFlags(const std::vector<int>& flags) {
    std::vector<_ENCODING_FRAME_INFORMATION> frames;
    for (const int flag : flags)
        frames.push_back({0, 0, 0, flag, 0, 0});
    return frames;
}

void expectInOrder(const std::vector<std::string>& expected) {
    const auto lines = fake_platform::logTexts();
    auto line = lines.begin();
    for (const std::string& text : expected) {
        line = std::find_if(line, lines.end(),
                            [&](const std::string& said) { return said.starts_with(text); });
        ASSERT_NE(line, lines.end()) << "missing or out of order: " << text;
        ++line;
    }
}
