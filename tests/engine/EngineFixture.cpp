#include "engine/EngineFixture.h"

#include <chrono>
#include <cstdlib>
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

EngineTest::EngineTest() : root(testing::TempDir() + "orbitwalk.XXXXXX"), stream(std::tmpfile()) {
    EXPECT_NE(mkdtemp(root.data()), nullptr);
    tempDir = root + "/work";
    std::snprintf(localTmpDir, sizeof localTmpDir, "%s/", tempDir.c_str());
    fake_platform::setBuildType("user");
    fake_platform::clearLog();
    fake_writer::reset();
    std::memset(&record, 0xee, sizeof record);
    param = {kWidth, kHeight, 17, stream, &record, false, 0};
}

EngineTest::~EngineTest() {
    fake_writer::openGate();
    deinitOrbitwalkEngine();
    EXPECT_FALSE(tempDirExists());
    EXPECT_EQ(fake_writer::record().misuses, 0);
    std::fclose(stream);
    std::filesystem::remove_all(root);
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
        if (const int result = engine().setFrameInfo(frame.data(), 0, 0, 0); result != 0)
            return result;
    return OBW_RESULT_OK;
}

int EngineTest::stop(int first, int last, std::vector<_ENCODING_FRAME_INFORMATION> frames,
                     OBWDirection direction) {
    return engine().stop(first, last, frames.data(), static_cast<int>(frames.size()), direction);
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

std::vector<_ENCODING_FRAME_INFORMATION> framesWithFlags(const std::vector<int>& flags) {
    std::vector<_ENCODING_FRAME_INFORMATION> frames;
    for (const int flag : flags)
        frames.push_back({0, 0, 0, flag, 0, 0});
    return frames;
}
