#include "media/FramesAhead.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <string>

#include "support/TestDirectory.h"

namespace {

using namespace orbitwalk::media;
using Frame = std::vector<std::uint8_t>;

std::string y4mOf(int frames) {
    std::string file = "YUV4MPEG2 W4 H2 F25:1 C420jpeg\n";
    for (int i = 0; i < frames; ++i)
        file += "FRAME\n" + std::string(12, static_cast<char>(20 + i));
    return file;
}

/// The frames taken, by their grey, and where they end: -1 with a failure.
std::vector<int> greysOf(FramesAhead& frames) {
    std::vector<int> greys;
    Frame frame;
    try {
        while (frames.next(frame))
            greys.push_back(frame.at(0));
    } catch (const MediaError&) {
        greys.push_back(-1);
    }
    return greys;
}

TEST(FramesAhead, GivesWhatTheReaderDoes) {
    const test_support::TestDirectory dir;
    test_support::writeFile(dir / "ten.y4m", y4mOf(10));
    VideoReader first(dir / "ten.y4m"), all(dir / "ten.y4m");
    {
        FramesAhead some(first, 3);
        EXPECT_EQ(greysOf(some), (std::vector{20, 21, 22}));
    }
    EXPECT_EQ(first.completeness().read, 3);
    Frame next;
    EXPECT_TRUE(first.read(next)) << "one that ended leaves the reader as it is";
    FramesAhead ahead(all, 100);
    EXPECT_EQ(greysOf(ahead), (std::vector{20, 21, 22, 23, 24, 25, 26, 27, 28, 29}));
    EXPECT_EQ(greysOf(ahead), std::vector<int>());
}

TEST(FramesAhead, IsLeftWhereItsReaderWaitsOrFails) {
    const test_support::TestDirectory dir;
    ASSERT_EQ(mkfifo((dir / "pipe").c_str(), 0600), 0);
    std::fstream pipe(dir / "pipe");
    constexpr int many = 3000;  // To be known as a video although it does not end.
    pipe << y4mOf(many) << std::flush;
    {
        VideoReader waiting(dir / "pipe");
        FramesAhead frames(waiting, many + 1);
        Frame frame;
        for (int i = 0; i < many; ++i)
            ASSERT_TRUE(frames.next(frame));
    }

    const auto picture = [](int side) {
        const std::string length = std::to_string(side);
        return "P6\n" + length + " " + length + "\n255\n" + std::string(3 * side * side, 'x');
    };
    test_support::writeFile(dir / "grows", picture(8) + picture(8) + picture(16));
    VideoReader growing(dir / "grows");
    FramesAhead frames(growing, 100);
    EXPECT_EQ(greysOf(frames).size(), 3u) << "two, and the failure";
}

}  // namespace
