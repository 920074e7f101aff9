#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <opencv2/imgcodecs.hpp>
#include <string>
#include <thread>

#include "files/OutputFiles.h"
#include "files/OwnFiles.h"
#include "files/TextFile.h"
#include "support/TestDirectory.h"
#include "support/VideoFile.h"
#include "terminal/ToolError.h"

namespace {

/// Calls that change names until this process ends as if it were killed; negative: never.
int callsLeft = -1;

void count() {
    if (callsLeft-- == 0)
        kill(getpid(), SIGKILL);
}

}  // namespace

// In this program these stand before the C library's own.
extern "C" int rename(const char* from, const char* to) noexcept {
    count();
    return static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}
extern "C" int link(const char* from, const char* to) noexcept {
    count();
    return static_cast<int>(syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

namespace orbitwalk::tool {
namespace {

namespace fs = std::filesystem;
using test_support::contentOf;
using test_support::namesIn;
using test_support::TestDirectory;
using test_support::writeFile;
using Names = std::vector<std::string>;

const Names kSet{"a.mp4", "b.obw", "c.csv", "d.json"};

void writeSet(const fs::path& directory, const std::string& content) {
    OutputFiles files(true);
    for (const std::string& name : kSet)
        files.write(directory / name, content);
    files.commit();
}

/// @return whether the process was killed.
bool writeSetKilledAt(int call, const fs::path& directory) {
    const pid_t child = fork();
    if (child == 0) {
        callsLeft = call;
        writeSet(directory, "new");
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status);
}

TEST(OutputFiles, KilledAtAnyRenameLeaveEveryNameWholeAndTheSetToTell) {
    for (int call = 0;; ++call) {
        const TestDirectory dir;
        writeSet(dir / "", "old");
        fs::permissions(dir / "b.obw", fs::perms(0640));
        const bool killed = writeSetKilledAt(call, dir / "");
        std::string contents;
        for (const std::string& name : kSet)
            contents += contentOf(dir / name) + " ";
        // The last file, which tells of the others, is new only when all are.
        EXPECT_TRUE(contents == "old old old old " || contents == "new old old old " ||
                    contents == "new new old old " || contents == "new new new old " ||
                    contents == "new new new new ")
            << contents;
        writeSet(dir / "", "next");
        EXPECT_EQ(namesIn(dir / ""), kSet) << "killed at call " << call;
        struct stat facts {};
        EXPECT_EQ(stat((dir / "b.obw").c_str(), &facts), 0);
        EXPECT_EQ(facts.st_mode & 0777, 0640u);
        if (!killed) {
            EXPECT_EQ(call, 8) << "a link and a rename a file";
            break;
        }
    }
}

TEST(OutputFiles, LeaveTheTemporaryFilesOfARunThatGoesOn) {
    const TestDirectory dir;
    OutputFiles files(false);
    files.write(dir / "a.csv", std::string("mine"));
    const Names part = namesIn(dir / "");
    EXPECT_EQ(writeSetKilledAt(0, dir / ""), true);
    writeSet(dir / "", "other");
    const Names names = namesIn(dir / "");
    EXPECT_TRUE(std::ranges::find(names, part.front()) != names.end());
    files.commit();
    EXPECT_EQ(contentOf(dir / "a.csv"), "mine");
}

TEST(OutputFiles, PutFormerFilesBackWhenOneCannotBePlaced) {
    const TestDirectory dir;
    writeFile(dir / "a", "former");
    {
        OutputFiles files(true);
        files.write(dir / "a", std::string("new"));
        files.write(dir / "b", std::string("second"));
        fs::create_directory(dir / "b");
        EXPECT_THROW(files.commit(), ToolError);
    }
    EXPECT_EQ(namesIn(dir / ""), (Names{"a", "b"}));
    EXPECT_EQ(contentOf(dir / "a"), "former");
}

TEST(OutputFiles, MakeOneDirectoryAndOnlyWhenAsked) {
    const TestDirectory dir;
    OutputFiles files(false);
    EXPECT_THROW(files.create(dir / "new" / "a"), ToolError);
    EXPECT_THROW(files.makeDirectory(dir / "new" / "deep"), ToolError);
    {
        OutputFiles withdrawn(false);
        withdrawn.makeDirectory(dir / "new/");
        withdrawn.create(dir / "new" / "a");
    }
    EXPECT_EQ(namesIn(dir / ""), Names{});
}

/// What may be replaced without being asked is what the tool wrote.
TEST(OutputFiles, ReplaceOnlyFilesThatTheToolWrote) {
    const TestDirectory dir;
    const cv::Mat3b picture(4, 4);
    std::vector<unsigned char> png, jpeg;
    cv::imencode(".png", picture, png);
    cv::imencode(".jpg", picture, jpeg);
    const auto text = [](const std::vector<unsigned char>& bytes) {
        return std::string(bytes.begin(), bytes.end());
    };
    const std::string foreignPng = text(png), foreignJpeg = text(jpeg);
    markPicture(png);
    markPicture(jpeg);
    EXPECT_EQ(cv::imdecode(png, cv::IMREAD_COLOR).size(), picture.size());
    EXPECT_EQ(cv::imdecode(jpeg, cv::IMREAD_COLOR).size(), picture.size());
    media::EncoderSettings video;
    video.width = video.height = 64;
    std::string videos[2];
    for (const bool fragmented : {false, true}) {
        video.fragmented = fragmented;
        test_support::writeVideo(dir / "v.mp4", video, 1,
                                 [](int) { return test_support::Frame(64 * 64 * 3 / 2); });
        videos[fragmented] = contentOf(dir / "v.mp4");
    }
    const std::string mark(kMark);
    struct Case {
        std::string content;
        bool own;
    };
    const Case cases[] = {
        {"", true},
        {"frame,x,y,a,flag,repeated\n0,0,0,0,1,0\n", true},
        {"frame,dx,dy,da,x,y,a\n", true},
        {"frame,x,y\n", false},
        {"{\"schema\": 1, \"toolVersion\": \"1\"}", true},
        {"{\"schema\": \"other\"}", false},
        {text(png), true},
        {text(jpeg), true},
        {videos[0], true},
        {videos[1], true},
        {foreignPng, false},
        {foreignJpeg, false},
        {"<meta name=\"generator\" content=\"" + mark + "\">", true},
        {std::string(100000, 'v') + mark + std::string(60000, 'v'), true},
        {std::string(100000, 'v') + mark + std::string(100000, 'v'), false},
        {std::string(1000, '\0'), false},
        {"a letter", false},
    };
    for (const Case& c : cases) {
        writeFile(dir / "file", c.content);
        EXPECT_EQ(isOwnFile(dir / "file"), c.own) << c.content.substr(0, 60);
        OutputFiles files(false), forced(true);
        EXPECT_NO_THROW(forced.create(dir / "file"));
        if (c.own)
            EXPECT_NO_THROW(files.create(dir / "file"));
        else
            EXPECT_THROW(files.create(dir / "file"), ToolError);
        EXPECT_NO_THROW(files.create(dir / "file", true)) << "known";
    }
    fs::create_directory(dir / "folder");
    fs::create_symlink("/dev/null", dir / "device");
    fs::create_symlink("nowhere", dir / "link");
    for (const char* name : {"folder", "device"})
        EXPECT_THROW(OutputFiles(true).create(dir / name), ToolError) << name;
    EXPECT_THROW(OutputFiles(false).create(dir / "link"), ToolError);
}

TEST(TextFile, IsReadUpToItsLimit) {
    const TestDirectory dir;
    writeFile(dir / "t", "12345678");
    EXPECT_EQ(readTextFile(dir / "t", 8), "12345678");
    EXPECT_THROW(readTextFile(dir / "t", 7), ToolError);
    EXPECT_EQ(readFileUpTo(dir / "t", 7), "1234567");
    EXPECT_THROW(readTextFile("/dev/zero", 100), ToolError);
    EXPECT_THROW(readTextFile(dir / ""), ToolError);
}

TEST(TextFile, MayBeAPipe) {
    const TestDirectory dir;
    ASSERT_EQ(mkfifo((dir / "fifo").c_str(), 0600), 0);
    const std::string text(200000, 't');
    std::jthread writer([&] { std::ofstream(dir / "fifo") << text; });
    EXPECT_EQ(readTextFile(dir / "fifo"), text);
}

TEST(Extension, IsOneOfTheNamedOnes) {
    EXPECT_NO_THROW(requireExtension("-o", "a/b.MP4", {".mov", ".mp4"}));
    for (const char* file : {"b.avi", "mp4", "b.mp4.txt", ".mp4", "", "b."})
        EXPECT_THROW(requireExtension("-o", file, {".mov", ".mp4"}), UsageError) << file;
}

}  // namespace
}  // namespace orbitwalk::tool
