#include <gmock/gmock.h>
#include <sched.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <span>

#include "Scene.h"
#include "findTransform/ifindTransform.h"
#include "support/FakePlatform.h"
#include "support/Transcript.h"

using namespace orbitwalk;

namespace {

using Finder = std::unique_ptr<ifindTransform>;

constexpr int kWidth = 1280, kHeight = 720;

Finder started(int width = kWidth, int height = kHeight) {
    Finder finder(ifindTransform::Create());
    EXPECT_EQ(finder->Initialize(width, height), 0);
    return finder;
}

Trajectory feed(const Finder& finder, unsigned char* luma) {
    float x = -1, y = -1, a = -1;
    EXPECT_EQ(finder->getTrajectory(luma, &x, &y, &a), 0);
    return {x, y, a};
}

/// The reduction reads every fourth pixel of every fourth row.
Trajectory feed(const Finder& finder, const Trajectory& pose) {
    return feed(finder, Scene().frame(kWidth, kHeight, pose, 4).data());
}

/// Four rows of six soft dots on black, every other one moved to the right.
std::vector<unsigned char> dots(int movement) {
    std::vector<unsigned char> luma(kWidth * kHeight);
    for (int dot = 0; dot < 24; ++dot) {
        const int centreX = 320 + 120 * (dot % 6) + (dot % 2) * movement;
        const int centreY = 204 + 104 * (dot / 6);
        for (int y = centreY - 40; y <= centreY + 40; y += 4)
            for (int x = centreX - 40; x <= centreX + 40; x += 4)
                luma[y * kWidth + x] = static_cast<unsigned char>(std::lround(
                    220 * std::exp(-(std::pow(x - centreX, 2) + std::pow(y - centreY, 2)) / 128)));
    }
    return luma;
}

/// Tracks are good to a few hundredths of a reduced pixel; of the small motions, those up to a
/// tenth of a reduced pixel too short are preferred.
void expectNear(const Trajectory& p, const Trajectory& q, double pixels = 0.4,
                double radians = 0.0005) {
    EXPECT_NEAR(p.x, q.x, pixels);
    EXPECT_NEAR(p.y, q.y, pixels);
    EXPECT_NEAR(p.a, q.a, radians);
}

/// Motion from one pose to the next, about the corner of the view in which it is measured: a fifth
/// of the frame from its top left.
Trajectory motionBetween(const Trajectory& from, const Trajectory& to) {
    const double angle = to.a - from.a, c = std::cos(angle), s = std::sin(angle);
    const double cornerX = kWidth / 5, cornerY = kHeight / 5;
    const double x = cornerX - from.x, y = cornerY - from.y;
    return {c * x - s * y + to.x - cornerX, s * x + c * y + to.y - cornerY, angle};
}

TEST(Finder, SumsTheMotionsOfAShakyPan) {
    const Finder finder = started();
    const Trajectory poses[] = {{}, {11, 3, 0.006}, {20, -4, 0.001}, {33, -7, 0.009}};
    EXPECT_EQ(feed(finder, poses[0]), Trajectory{});
    Trajectory truth;
    for (int i = 1; i < 4; ++i) {
        truth += motionBetween(poses[i - 1], poses[i]);
        expectNear(feed(finder, poses[i]), truth, 0.4 * i, 0.0005 * i);
    }
}

TEST(Finder, RepeatsTheLastMotionWhereNoneCanBeMeasured) {
    const Finder finder = started();
    std::vector<unsigned char> flat(kWidth * kHeight, 90);
    feed(finder, Trajectory{});
    const Trajectory motion = feed(finder, Trajectory{8, 3, 0.004});
    ASSERT_GT(motion.x, 4);
    fake_platform::clearLog();
    int frames = 1;
    for (unsigned char* luma : {flat.data(), flat.data(), static_cast<unsigned char*>(nullptr)}) {
        ++frames;
        expectNear(feed(finder, luma), {frames * motion.x, frames * motion.y, frames * motion.a},
                   1e-4, 1e-6);
    }
    EXPECT_EQ(fake_platform::countLog("CalculatePrevToCurTransform  prevFeaturePoints insufficeint "
                                      "frame number 3  0 "),
              1);
}

TEST(Finder, HasNoMotionToRepeatBeforeTheFirstMeasuredOne) {
    const Finder finder = started();
    // 24 dots give 24 corners, and the displacement filter drops the twelve that move.
    EXPECT_EQ(feed(finder, dots(0).data()), Trajectory{});
    fake_platform::clearLog();
    EXPECT_EQ(feed(finder, dots(8).data()), Trajectory{});
    EXPECT_EQ(fake_platform::countLog("CalculatePrevToCurTransform insufficeint forward backward "
                                      "tracking frame number 1 12"),
              1);
}

TEST(Finder, CountsFramesWithoutAPicture) {
    const Finder finder = started();
    EXPECT_EQ(feed(finder, nullptr), Trajectory{});
    EXPECT_EQ(feed(finder, Trajectory{}), Trajectory{});
    EXPECT_EQ(feed(finder, Trajectory{8, 0, 0}), Trajectory{})
        << "adds the motion of the frame before";
    expectNear(feed(finder, nullptr), {8, 0, 0});
}

TEST(Finder, RepeatsTheLastMotionWhileItHasNoBuffers) {
    std::vector<unsigned char> luma(64 * 64);
    const Finder finder(ifindTransform::Create());
    EXPECT_EQ(feed(finder, luma.data()), Trajectory{});
    EXPECT_EQ(finder->Initialize(64, 64), 0);
    finder->Release();
    EXPECT_EQ(feed(finder, luma.data()), Trajectory{});
}

TEST(Finder, KeepsItsPictureWhenASecondSizeIsRefused) {
    const Finder finder = started();
    feed(finder, Trajectory{});
    for (const auto& [width, height] :
         {std::pair{3, 100}, {100, 3}, {32768, 8}, {8, 32768}, {0, 480}, {640, -1}})
        EXPECT_EQ(finder->Initialize(width, height), 1) << width << 'x' << height;
    expectNear(feed(finder, Trajectory{8, 0, 0}), {8, 0, 0});
    EXPECT_EQ(finder->Initialize(64, 64), 0);
    std::vector<unsigned char> luma(64 * 64);
    feed(finder, luma.data());
}

/// What a capture with pauses, gaps and a second Initialize measures, where the process may use so
/// many cores.
std::vector<Trajectory> measuredOn(int cores, std::span<const std::vector<unsigned char>> frames) {
    cpu_set_t all, some;
    sched_getaffinity(0, sizeof all, &all);
    CPU_ZERO(&some);
    for (int core = 0; CPU_COUNT(&some) < cores && core < CPU_SETSIZE; ++core)
        if (CPU_ISSET(core, &all))
            CPU_SET(core, &some);
    sched_setaffinity(0, sizeof some, &some);
    const Finder finder = started();
    sched_setaffinity(0, sizeof all, &all);
    std::vector<Trajectory> measured;
    std::vector<unsigned char> luma;
    for (int i = 0; i < 24; ++i) {
        luma = frames[i % frames.size()];
        if (i == 17) {
            EXPECT_EQ(finder->Initialize(kWidth, kHeight), 0);
        }
        measured.push_back(feed(finder, i % 9 == 3 ? nullptr : luma.data()));
        std::fill(luma.begin(), luma.end(), static_cast<unsigned char>(i));
    }
    finder->Release();
    measured.push_back(feed(finder, nullptr));
    return measured;
}

TEST(Finder, MeasuresTheSameOnOneCoreAndBesideItsCaller) {
    std::vector<std::vector<unsigned char>> frames;
    for (int i = 0; i < 7; ++i)
        frames.push_back(Scene().frame(kWidth, kHeight, {4.0 * i, 0.2 * i * i, 0.001 * i}, 4));
    frames.emplace_back(kWidth * kHeight, 90);
    const std::vector<Trajectory> alone = measuredOn(1, frames);
    EXPECT_GT(alone.back().x, 60);
    for (int turn = 0; turn < 3; ++turn)
        EXPECT_EQ(measuredOn(2, frames), alone);
}

TEST(Finder, TakesAnySizeThatLeavesAReducedPixel) {
    std::mt19937 random(1);
    constexpr int sizes[][2] = {{4, 4},    {8, 8},     {16, 16},   {32, 32},   {36, 180}, {4, 4000},
                                {4000, 4}, {32767, 4}, {4000, 32}, {32, 4000}, {260, 260}};
    for (const auto& [width, height] : sizes) {
        const Finder finder = started(width, height);
        for (int i = 0; i < 3; ++i) {
            std::vector<unsigned char> noise(static_cast<std::size_t>(width) * height);
            std::generate(noise.begin(), noise.end(),
                          [&] { return static_cast<unsigned char>(random()); });
            const Trajectory t = feed(finder, noise.data());
            EXPECT_TRUE(std::isfinite(t.x) && std::isfinite(t.y) && std::isfinite(t.a))
                << width << 'x' << height;
        }
    }
}

TEST(FinderLog, TellsTheLifeOfAFinder) {
    fake_platform::setBuildType("user");
    fake_platform::clearLog();
    ifindTransform* const finder = ifindTransform::Create();
    EXPECT_EQ(finder->Initialize(0, 480), 1);
    EXPECT_EQ(finder->Initialize(640, 360), 0);
    finder->Release();
    EXPECT_EQ(ifindTransform::Destroy(finder), 1);
    EXPECT_EQ(ifindTransform::Destroy(nullptr), 1);
    test_support::expectTranscript(
        fake_platform::logTexts("ORBITWALK_ENGINE 2D_CALCULATE_TRANSFORM"), "finder-life");
    const auto lines = fake_platform::logLines();
    ASSERT_EQ(lines.size(), 9u);
    EXPECT_EQ(lines[2].priority, 6) << "the refusal";
    EXPECT_EQ(lines[3].priority, 4);
}

TEST(FinderLog, SaysNothingOfAReplacedFinder) {
    Finder finder = started();
    fake_platform::clearLog();
    finder.reset();
    EXPECT_TRUE(fake_platform::logLines().empty());
}

/// The lines of the second frame; a timing line is the stretch that it names.
std::vector<std::string> linesOfAMeasuredFrame(const char* buildType) {
    fake_platform::setBuildType(buildType);
    const Finder finder = started();
    for (const Trajectory& pose : {Trajectory{}, Trajectory{8, 3, 0.004}}) {
        fake_platform::clearLog();
        feed(finder, pose);
    }
    std::vector<std::string> lines;
    for (const auto& line : fake_platform::logLines())
        lines.push_back(line.priority == 2 ? "<" + line.tag + ">" : line.text);
    fake_platform::setBuildType("user");
    return lines;
}

TEST(FinderLog, TellsAMeasuredFrameInOrder) {
    for (const char* build : {"user", "eng"})
        test_support::expectTranscript(linesOfAMeasuredFrame(build), "finder", build);
}

}  // namespace
