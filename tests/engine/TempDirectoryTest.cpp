#include "engine/TempDirectory.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "orbitwalk/Engine.h"
#include "support/FakePlatform.h"
#include "support/TestDirectory.h"

namespace {

namespace fs = std::filesystem;
using orbitwalk::removeTempDir;

class TempDirectoryTest : public testing::Test {
  protected:
    TempDirectoryTest() { fs::create_directory(dir()); }

    fs::path dir() const { return root / "work"; }
    /// As the engine names it, with a slash at the end.
    std::string name() const { return dir().string() + "/"; }
    int remove(bool showPaths = false) const { return removeTempDir(name().c_str(), showPaths); }
    /// What start makes of it.
    int renewed() const {
        name().copy(localTmpDir, sizeof localTmpDir - 1);
        localTmpDir[name().size()] = '\0';
        orbitwalk::TempDirectory directoryOfStart(true);
        directoryOfStart.take();
        return directoryOfStart.renew();
    }
    static void write(const fs::path& file) { test_support::writeFile(file, "x"); }

    const test_support::TestDirectory directory;
    const fs::path root = (directory / "").parent_path();
};

TEST_F(TempDirectoryTest, IsRemovedWithAllThatItHoldsAndNothingThatItLinksTo) {
    fs::create_directories(dir() / "a" / "b");
    fs::create_directory(root / "outside");
    for (const char* file : {"work/1", "work/.hidden", "work/a/2", "work/a/b/3", "outside/kept"})
        write(root / file);
    fs::create_directory_symlink(root / "outside", dir() / "toDirectory");
    fs::create_symlink(root / "outside/kept", dir() / "toFile");
    fs::create_symlink(root / "nothing", dir() / "toNothing");
    EXPECT_EQ(remove(), 0);
    EXPECT_FALSE(fs::exists(dir()));
    EXPECT_TRUE(fs::exists(root / "outside/kept"));
    EXPECT_EQ(remove(), 0) << "a missing one counts as removed";
}

TEST_F(TempDirectoryTest, RefusesLinksAndPathsThatNameNoDirectoryOfItsOwn) {
    write(dir() / "kept");
    const fs::path link = root / "link";
    fs::create_directory_symlink(dir(), link);
    for (const std::string& path :
         {link.string(), link.string() + "/", link.string() + "//", std::string(), std::string("/"),
          std::string("///"), std::string(600, 'a')})
        EXPECT_EQ(removeTempDir(path.c_str(), false), 2) << path;
    EXPECT_EQ(removeTempDir(nullptr, false), 2);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_TRUE(fs::exists(dir() / "kept"));
}

// Somebody who may write above the directory puts a link to another one in its place, or in that of
// a directory in it, while it is being emptied.
TEST_F(TempDirectoryTest, SwappedForALinkMeanwhileLeavesTheOtherDirectoryAlone) {
    for (const std::string& swapped : {std::string("work"), std::string("work/inner")}) {
        SCOPED_TRACE(swapped);
        fs::create_directories(dir() / "inner");
        fs::create_directories(root / "other" / "inner");
        for (int i = 0; i < 20; ++i)
            for (const char* parent : {"work", "work/inner", "other", "other/inner"})
                write(root / parent / std::to_string(i));
        const std::string first = "kelOBWEngine::removeTempDir, unlink " + dir().string() + "/";
        const bool inner = swapped != "work";
        fake_platform::whenLogged([&](const fake_platform::LogLine& line) {
            if (!line.text.starts_with(first) ||
                inner != (line.text.find("/inner/") != std::string::npos) ||
                fs::exists(root / "moved"))
                return;
            fs::rename(root / swapped, root / "moved");
            fs::create_directory_symlink(root / "other", root / swapped);
        });
        EXPECT_EQ(remove(true), 2);
        fake_platform::whenLogged({});
        ASSERT_TRUE(fs::exists(root / "moved")) << "nothing was swapped";
        for (int i = 0; i < 20; ++i)
            for (const char* parent : {"other", "other/inner"})
                EXPECT_TRUE(fs::exists(root / parent / std::to_string(i))) << parent << i;
        for (const char* left : {"work", "moved", "other"})
            fs::remove_all(root / left);
    }
}

TEST_F(TempDirectoryTest, KeepsEntriesWhosePathIsTooLong) {
    fs::path deep = dir();
    while (deep.string().size() < 500)
        deep /= std::string(60, 'd');
    fs::create_directories(deep);
    write(dir() / "removed");
    EXPECT_EQ(remove(), 2);
    EXPECT_TRUE(fs::exists(deep));
    EXPECT_FALSE(fs::exists(dir() / "removed"));
}

TEST_F(TempDirectoryTest, OfAnotherUserIsLeftAndUsedWhereItMayNotBeRead) {
    write(dir() / "kept");
    const uid_t user = geteuid();
    const auto asAnother = [&](unsigned mode, const auto& action) {
        for (const fs::path& path : {dir(), root})
            fs::permissions(path, fs::perms(mode));
        EXPECT_TRUE(user != 0 || seteuid(65534) == 0);  // the superuser may read and write all
        const int result = action();
        EXPECT_EQ(seteuid(user), 0);
        for (const fs::path& path : {root, dir()})
            fs::permissions(path, fs::perms::owner_all);
        EXPECT_TRUE(fs::exists(dir() / "kept"));
        return result;
    };
    EXPECT_EQ(asAnother(0555, [&] { return remove(); }), 2);
    EXPECT_EQ(asAnother(0333, [&] { return remove(); }), 0);
    EXPECT_EQ(asAnother(0333, [&] { return renewed(); }), 0);
}

TEST_F(TempDirectoryTest, IsNotMadeWhereSomethingTakesItsNameMeanwhile) {
    fs::create_directory(root / "other");
    EXPECT_EQ(renewed(), 0);
    for (const bool link : {true, false}) {
        fake_platform::whenLogged([&](const fake_platform::LogLine& line) {
            if (line.text == "kelOBWEngine::removeTempDir : rm Dir OK " + name())
                link ? fs::create_directory_symlink(root / "other", dir())
                     : static_cast<void>(fs::create_directory(dir()));
        });
        EXPECT_EQ(renewed(), 2) << link;
        fake_platform::whenLogged({});
        fs::remove(dir());
    }
}

TEST(LocalTmpDir, MayFillItsBufferToTheLastByte) {
    const std::string before(localTmpDir);
    std::fill(std::begin(localTmpDir), std::end(localTmpDir), 'x');
    char copy[512];
    orbitwalk::copyLocalTmpDir(copy);
    EXPECT_EQ(std::string(copy), std::string(200, 'x'));
    EXPECT_FALSE(orbitwalk::differsFromLocalTmpDir(copy));
    copy[199] = '\0';
    EXPECT_TRUE(orbitwalk::differsFromLocalTmpDir(copy));
    before.copy(localTmpDir, before.size());
    localTmpDir[before.size()] = '\0';
}

}  // namespace
