#include <MP4Writer.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "capture/EngineTempDirectory.h"
#include "capture/Session.h"
#include "support/FakeMP4Writer.h"
#include "tool/PanVideo.h"

/// The pacing call of the writer, for the stand-in that replaces the others: never waits.
int WaitMP4EngineFrames(int, int) {
    return static_cast<int>(fake_writer::record().frames.size());
}

namespace {

using namespace orbitwalk::tool;
using std::chrono::milliseconds;

/// The engine with a writer that the test holds at a gate.
class SessionTest : public testing::Test {
  protected:
    SessionTest() { fake_writer::reset(); }

    orbitwalk::Trajectory feed(Session& session, const std::vector<std::uint8_t>& frame) {
        const orbitwalk::Trajectory point = session.measure(frame);
        while (!session.waitForRoom(milliseconds(0)))
            fake_writer::waitForEntered(++mAwaited);
        session.feed(frame, point);
        return point;
    }

    std::vector<orbitwalk::Trajectory> feedAll(Session& session) {
        std::vector<orbitwalk::Trajectory> path;
        for (const auto& frame : mFrames)
            path.push_back(feed(session, frame));
        return path;
    }

    SweepSelection everything() const {
        return {.first = 0,
                .last = static_cast<int>(mFrames.size()) - 1,
                .flags = std::vector<std::int32_t>(mFrames.size(), 1),
                .direction = OBW_DIRECTION_LEFT2RIGHT};
    }

    std::string messageOf(const std::function<void()>& action) {
        try {
            action();
        } catch (const ToolError& error) {
            return error.what();
        }
        return {};
    }

    const test_support::Pan mPan{.frames = 20, .stepX = -10};
    const std::vector<std::vector<std::uint8_t>> mFrames = test_support::panFrames(mPan);
    const SessionSettings mSettings{.width = mPan.width, .height = mPan.height};
    const EngineTempDirectory mTemporary;
    int mAwaited = 0;
};

TEST_F(SessionTest, TakesASweepToTheRecord) {
    Session session(mSettings, stdout);
    const auto path = feedAll(session);
    EXPECT_NEAR(path.back().x, 19 * -10, 10);
    EXPECT_NEAR(path.back().y, 0, 5);
    std::vector<int> progress;
    const auto& record =
        session.finish(path, everything(), [&](int percent) { progress.push_back(percent); });

    EXPECT_EQ(progress, (std::vector{15, 30, 45, 60, 75, 90, 100}));
    EXPECT_GT(session.secondsUntil(100), session.secondsUntil(15));
    EXPECT_EQ(record.numFrames, 20);
    const auto encoded = fake_writer::record().frames;
    ASSERT_EQ(encoded.size(), mFrames.size());
    for (std::size_t i = 0; i < encoded.size(); ++i)
        EXPECT_TRUE(std::equal(encoded[i].begin(), encoded[i].end(), mFrames[i].begin())) << i;
}

TEST_F(SessionTest, HoldsAFastSourceBackWhileTheEncoderStalls) {
    fake_writer::closeGate();
    Session session(mSettings, stdout);
    int fed = 0;
    for (; fed < 20 && session.waitForRoom(milliseconds(0)); ++fed)
        session.feed(mFrames[fed], {});
    EXPECT_EQ(fed, 11) << "ten in the queue and one with the encoder";
    EXPECT_FALSE(session.waitForRoom(milliseconds(0)));
    fake_writer::openGate();
    ASSERT_TRUE(fake_writer::waitForEntered(11));
    EXPECT_TRUE(session.waitForRoom(milliseconds(0)));
}

TEST_F(SessionTest, GivesUpOnAnEncoderThatTakesNothing) {
    fake_writer::closeGate();
    SessionSettings settings = mSettings;
    settings.encoderPatience = milliseconds(0);
    Session session(settings, stdout);
    for (int i = 0; i < 11; ++i)
        session.feed(mFrames[i], {});
    EXPECT_NE(
        messageOf([&] { session.waitForRoom(milliseconds(0)); }).find("stopped taking frames"),
        std::string::npos);
    fake_writer::openGate();
}

TEST_F(SessionTest, FailsWhenPostProcessingNeverReachesItsEnd) {
    fake_writer::setEncodeResult(0);
    Session session(mSettings, stdout);
    const auto path = feedAll(session);
    EXPECT_NE(
        messageOf([&] { session.finish(path, everything(), {}); }).find("the capture failed: "),
        std::string::npos);
}

TEST_F(SessionTest, CancelsTheCaptureWhenItIsLeft) {
    {
        Session session(mSettings, stdout);
        feed(session, mFrames[0]);
    }
    EXPECT_EQ(fake_writer::record().deinits, 1);
    Session next(mSettings, stdout);
    const auto path = feedAll(next);
    EXPECT_EQ(next.finish(path, everything(), {}).numFrames, 20);
    EXPECT_EQ(fake_writer::record().misuses, 0);
}

TEST_F(SessionTest, SaysWhyTheEngineDoesNotStart) {
    const std::string message = messageOf([] { Session({.width = 2, .height = 2}, stdout); });
    EXPECT_TRUE(message.starts_with("the engine cannot capture 2x2 frames: ")) << message;
    EXPECT_EQ(message.find('\n'), std::string::npos);
}

}  // namespace
