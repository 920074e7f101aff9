#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

#include "orbitwalk/orbitwalk.h"
#include "support/FakeMP4Writer.h"
#include "support/FakePlatform.h"
#include "support/TestDirectory.h"

namespace {

using testing::HasSubstr;
using testing::StrEq;

/// What a C program remembers of its listener.
struct Heard {
    std::vector<int> percents;
    int released = 0;
};

struct CInterface : testing::Test {
    CInterface() {
        fake_writer::reset();
        EXPECT_EQ(orbitwalkSetTemporaryDirectory((directory / "engine/").c_str()), 1);
        parameters.width = 64;
        parameters.height = 48;
        parameters.mp4 = stream.get();
        parameters.record = record.get();
    }
    ~CInterface() override { orbitwalkDeinit(); }

    static OrbitwalkListener listener(Heard& heard) {
        return {
            [](void* user, int percent) { static_cast<Heard*>(user)->percents.push_back(percent); },
            [](void* user) { ++static_cast<Heard*>(user)->released; }, &heard};
    }
    static int init(Heard& heard) {
        const OrbitwalkListener given = listener(heard);
        return orbitwalkInit(&given);
    }
    int provide() { return orbitwalkProvideFrame(frame.data(), 0, 0, 0); }

    const test_support::TestDirectory directory;
    const std::unique_ptr<FILE, int (*)(FILE*)> stream{std::tmpfile(), std::fclose};
    const std::unique_ptr<OrbitwalkRecord> record = std::make_unique<OrbitwalkRecord>();
    const std::array<std::uint8_t, 64 * 48 * 3 / 2> frame{};
    OrbitwalkParameters parameters{};
};

TEST_F(CInterface, CapturesAndTellsTheListenerToTheEnd) {
    Heard heard;
    ASSERT_EQ(init(heard), 1);
    parameters.mirrored = true;
    parameters.orientation = 90;
    ASSERT_EQ(orbitwalkStart(&parameters), 1) << orbitwalkLastError();
    std::vector<OrbitwalkFrame> frames;
    for (int i = 0; i < 3; ++i) {
        OrbitwalkFrame f{.x = 0, .y = 0, .angle = 0, .isRendered = i != 1, .info = {}};
        ASSERT_EQ(orbitwalkGetTrajectory(frame.data(), &f.x, &f.y, &f.angle), 1);
        ASSERT_EQ(provide(), 1) << orbitwalkLastError();
        frames.push_back(f);
    }
    ASSERT_EQ(orbitwalkStop(0, 2, frames.data(), 3, ORBITWALK_RIGHT_TO_LEFT), 1);
    EXPECT_THAT(orbitwalkLastError(), StrEq(""));
    ASSERT_EQ(orbitwalkDeinit(), 1);  // waits for the post-processing
    EXPECT_EQ(heard.released, 1);
    // The call at 100 comes without the engine's lock; the release after it.
    EXPECT_THAT(heard.percents, testing::ElementsAre(15, 30, 45, 60, 75, 90, 100));
    EXPECT_EQ(record->numFrames, 3);
    EXPECT_THAT((std::vector(record->renderFlag, record->renderFlag + 3)),
                testing::ElementsAre(1, 0, 1));
    EXPECT_EQ(record->captureDirection, 2);
    EXPECT_EQ(record->frontCameraFlipped, 1);
    EXPECT_EQ(record->orientation, 270);  // as start stores it
}

TEST_F(CInterface, SaysWhatTheLogSaidOfAFailedCallAndNothingAfterASuccess) {
    const auto fails = [](int result, const char* text) {
        EXPECT_EQ(result, -1) << text;
        EXPECT_THAT(orbitwalkLastError(), HasSubstr(text));
    };
    float x = 1, y = 1, angle = 1;
    fails(orbitwalkSetTemporaryDirectory(nullptr), "ends in a slash");
    fails(orbitwalkSetTemporaryDirectory("/tmp"), "ends in a slash");
    fails(orbitwalkSetTemporaryDirectory((std::string(199, 'x') + '/').c_str()), "1 to 199");
    fails(orbitwalkInit(nullptr), "onProgress");
    fails(orbitwalkGetTrajectory(frame.data(), &x, &y, &angle), "no FindTransform");
    EXPECT_EQ(x, 0);
    fails(provide(), "engine state is not IDLE");
    Heard heard;
    ASSERT_EQ(init(heard), 1);
    EXPECT_THAT(orbitwalkLastError(), StrEq(""));
    fails(orbitwalkStart(nullptr), "Invalid Params: 0x0");
    parameters.width = 3;
    fails(orbitwalkStart(&parameters), "Invalid Params: 3x48");
    parameters.width = 64;
    ASSERT_EQ(orbitwalkStart(&parameters), 1);
    fails(orbitwalkGetTrajectory(frame.data(), nullptr, &y, &angle), "output pointer is NULL");
    fails(orbitwalkStop(0, 0, nullptr, 1, ORBITWALK_LEFT_TO_RIGHT), "Invalid Params: frames =");
    // A text belongs to its thread.
    std::thread([] { EXPECT_THAT(orbitwalkLastError(), StrEq("")); }).join();
    EXPECT_THAT(orbitwalkLastError(), HasSubstr("kelOBWEngine::stop"));
    ASSERT_EQ(orbitwalkCancel(), 1);
    EXPECT_THAT(orbitwalkLastError(), StrEq(""));
    fails(orbitwalkCancel(), "engine state is not IDLE");
    EXPECT_EQ(orbitwalkReset(), 1);
    fails(provide(), "engine state is not IDLE");
    EXPECT_EQ(orbitwalkRecordSize(), int{sizeof(OrbitwalkRecord)});
    EXPECT_THAT(orbitwalkLastError(), StrEq(""));
}

TEST_F(CInterface, TakesAnUnknownDirectionForLeftToRight) {
    Heard heard;
    ASSERT_EQ(init(heard), 1);
    ASSERT_EQ(orbitwalkStart(&parameters), 1);
    ASSERT_EQ(provide(), 1);
    const OrbitwalkFrame only{.x = 0, .y = 0, .angle = 0, .isRendered = 1, .info = {}};
    ASSERT_EQ(orbitwalkStop(0, 0, &only, 1, 9), 1) << orbitwalkLastError();
    ASSERT_EQ(orbitwalkDeinit(), 1);
    EXPECT_EQ(record->captureDirection, ORBITWALK_LEFT_TO_RIGHT);
}

TEST_F(CInterface, ReleasesAListenerOnceWhenAnotherIsInItsPlace) {
    Heard first, second;
    ASSERT_EQ(init(first), 1);
    EXPECT_EQ(orbitwalkInit(nullptr), -1);
    EXPECT_EQ(first.released, 0);
    ASSERT_EQ(init(second), 1);
    EXPECT_EQ(first.released, 1);
    EXPECT_EQ(second.released, 0);
    ASSERT_EQ(orbitwalkDeinit(), 1);
    ASSERT_EQ(orbitwalkDeinit(), 1);
    EXPECT_EQ(first.released, 1);
    EXPECT_EQ(second.released, 1);
}

}  // namespace
