#include "capture/EngineTempDirectory.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "orbitwalk/Engine.h"
#include "terminal/ToolError.h"

namespace fs = std::filesystem;

namespace orbitwalk::tool {
namespace {

// The engine takes 199 characters and appends names of its own to the path.
constexpr std::size_t kLongestPath = 190;

constexpr char kPrefix[] = "orbitwalk-capture-";
constexpr char kPattern[] = "XXXXXX";

void setEngineDirectory(const std::string& path) {
    std::memset(localTmpDir, 0, sizeof localTmpDir);
    path.copy(localTmpDir, sizeof localTmpDir - 1);
}

/// Opens and locks a directory of this user's, at once. @return -1 when another process has it
/// locked, when it is somebody else's or a link, or when it is no longer what the path names.
int lockOwn(const std::string& directory) {
    const int opened = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (opened < 0)
        return -1;
    struct stat held {
    }, named{};
    const bool own = fstat(opened, &held) == 0 && held.st_uid == geteuid() &&
                     flock(opened, LOCK_EX | LOCK_NB) == 0 &&
                     lstat(directory.c_str(), &named) == 0 && named.st_ino == held.st_ino &&
                     named.st_dev == held.st_dev;
    if (own)
        return opened;
    close(opened);
    return -1;
}

void removeAll(const std::string& directory) {
    std::error_code ignored;
    fs::remove_all(directory, ignored);
}

void removeLeftovers(const std::string& root) {
    std::error_code ignored;
    for (fs::directory_iterator entry(root, ignored), end; entry != end; entry.increment(ignored)) {
        const std::string name = entry->path().filename().string();
        if (!name.starts_with(kPrefix) ||
            name.size() != std::strlen(kPrefix) + std::strlen(kPattern))
            continue;
        if (const int lock = lockOwn(entry->path()); lock >= 0) {
            removeAll(entry->path());
            close(lock);
        }
    }
}

}  // namespace

EngineTempDirectory::EngineTempDirectory() : mFormer(localTmpDir) {
    const char* variable = std::getenv("TMPDIR");
    const std::string root = variable && *variable ? variable : "/tmp";
    const std::string pattern = root + '/' + kPrefix + kPattern;
    if ((pattern + "/engine/").size() > kLongestPath)
        throw ToolError("the temporary directory's path is too long: " + root);
    removeLeftovers(root);
    // Until it is locked, another process can take it for a leftover: then a new one is made.
    while (mLock < 0) {
        mDirectory = pattern;
        if (!mkdtemp(mDirectory.data()))
            throw ToolError("cannot make a temporary directory in " + root + ": " +
                            std::strerror(errno));
        mLock = lockOwn(mDirectory);
    }
    mUnfinished.emplace(mDirectory, Unfinished::Removed::WithContent);
    setEngineDirectory(mDirectory + "/engine/");
}

EngineTempDirectory::~EngineTempDirectory() {
    removeAll(mDirectory);
    close(mLock);
    setEngineDirectory(mFormer);
}

}  // namespace orbitwalk::tool
