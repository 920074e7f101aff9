#include "engine/TempDirectory.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "common/Log.h"
#include "engine/EngineState.h"
#include "orbitwalk/Engine.h"

char localTmpDir[200] = "/data/media/0/.TEMP_OBW_ENGINE_FILES/";

namespace orbitwalk {

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";

using PathBuffer = std::array<char, 512>;

std::string_view localTmpDirText() {
    return {localTmpDir, strnlen(localTmpDir, sizeof localTmpDir)};
}

/// A name in an open directory. Whoever can write above may put another directory or a link where
/// a path led a moment ago; what is reached from a descriptor by one name stays where it is.
struct Entry {
    int parent;
    const char* name;

    /// Mode of what has the name now, links not followed; 0 for nothing.
    mode_t mode() const {
        struct stat status;
        return fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) == 0 ? status.st_mode : 0;
    }
};

/// The directory that a path leads to and its last name, without the slashes at the end, which
/// would make the system calls follow a link there.
class RootEntry {
  public:
    explicit RootEntry(const char* path) {
        const std::string_view text(path == nullptr ? "" : path);
        const auto last = text.find_last_not_of('/');
        if (last == std::string_view::npos || last + 1 >= mPath.size())
            return;
        *std::copy_n(text.begin(), last + 1, mPath.begin()) = '\0';
        const auto slash = std::string_view(mPath.data()).rfind('/');
        mName = slash == std::string_view::npos ? 0 : slash + 1;
        const char above = mPath[mName];
        mPath[mName] = '\0';
        mParent = open(mName == 0 ? "." : mPath.data(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        mPath[mName] = above;
        mUsable = true;
    }
    ~RootEntry() {
        if (mParent >= 0)
            close(mParent);
    }
    RootEntry(const RootEntry&) = delete;
    RootEntry& operator=(const RootEntry&) = delete;

    /// Not for a path that must not be removed: null, empty, the root, too long.
    bool isUsable() const { return mUsable; }
    Entry entry() const { return {mParent, mPath.data() + mName}; }

  private:
    PathBuffer mPath{};
    std::size_t mName = 0;
    int mParent = -1;
    bool mUsable = false;
};

DIR* openDirectory(Entry entry) {
    const int descriptor =
        openat(entry.parent, entry.name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    DIR* const directory = fdopendir(descriptor);
    if (directory == nullptr)
        close(descriptor);
    return directory;
}

enum class Removal {
    gone,      ///< Removed, or was not there.
    unopened,  ///< Cannot be opened, which counts as removed.
    failed
};

void reportFailure(const char* path, bool showPaths) {
    if (showPaths)
        logError("kelOBWEngine::removeTempDir : rm Dir failed %s, return err ", path);
    else
        logError("kelOBWEngine::removeTempDir : rm Dir failed : Line: %d, return err ", 276);
}

void reportSuccess(const char* path, bool showPaths) {
    if (showPaths)
        logInfo("kelOBWEngine::removeTempDir : rm Dir OK %s", path);
    else
        logInfo("kelOBWEngine::removeTempDir : rm Dir OK : Line: %d", 280);
}

Removal removeDirectory(Entry entry, const char* path, bool showPaths);

void removeEntry(Entry entry, const char* path, bool showPaths) {
    if (S_ISDIR(entry.mode())) {
        removeDirectory(entry, path, showPaths);
        return;
    }
    if (showPaths)
        logInfo("kelOBWEngine::removeTempDir, unlink %s, ", path);
    else
        logInfo("kelOBWEngine::removeTempDir, LINE:  : %d, ", 254);
    unlinkat(entry.parent, entry.name, 0);
}

void removeEntries(DIR* directory, const char* path, bool showPaths) {
    while (const dirent* const entry = readdir(directory)) {
        const std::string_view name(entry->d_name);
        if (name == "." || name == "..")
            continue;
        PathBuffer child{};
        const int length = std::snprintf(child.data(), child.size(), "%s/%s", path, entry->d_name);
        // An entry whose path does not fit is left, and the directory with it.
        if (length > 0 && static_cast<std::size_t>(length) < child.size())
            removeEntry({dirfd(directory), entry->d_name}, child.data(), showPaths);
    }
}

Removal removeUnreported(Entry entry, const char* path, bool showPaths) {
    if (S_ISLNK(entry.mode()))
        return Removal::failed;
    DIR* const directory = openDirectory(entry);
    const bool missing = errno == ENOENT;
    if (showPaths)
        logInfo("kelOBWEngine:: removeTempDir %s : dirPtr = %p", path,
                static_cast<void*>(directory));
    else
        logInfo("kelOBWEngine:: removeTempDir [Line: %d] : dirPtr = %p", 233,
                static_cast<void*>(directory));
    if (directory == nullptr)
        return missing ? Removal::gone : Removal::unopened;
    removeEntries(directory, path, showPaths);
    closedir(directory);
    const int result = unlinkat(entry.parent, entry.name, AT_REMOVEDIR);
    logInfo("kelOBWEngine::removeTempDir........... : ret=%d", result);
    return result == 0 ? Removal::gone : Removal::failed;
}

/// @param path  of the entry, for the log alone.
Removal removeDirectory(Entry entry, const char* path, bool showPaths) {
    const Removal result = removeUnreported(entry, path, showPaths);
    (result == Removal::failed ? reportFailure : reportSuccess)(path, showPaths);
    return result;
}

Removal removeRoot(const RootEntry& root, const char* path, bool showPaths) {
    if (root.isUsable())
        return removeDirectory(root.entry(), path, showPaths);
    reportFailure(path == nullptr ? "" : path, showPaths);
    return Removal::failed;
}

}  // namespace

void copyLocalTmpDir(std::span<char> destination) {
    const std::string_view text = localTmpDirText();
    *std::copy(text.begin(), text.end(), destination.begin()) = '\0';
}

bool differsFromLocalTmpDir(const char* path) {
    return localTmpDirText() != path;
}

int removeTempDir(const char* path, bool showPaths) {
    const bool failed = removeRoot(RootEntry(path), path, showPaths) == Removal::failed;
    return failed ? OBW_RESULT_TEMP_DIR_ERROR : OBW_RESULT_OK;
}

void TempDirectory::take() {
    copyLocalTmpDir(tmpDirName);
    std::snprintf(mp4FileName, sizeof mp4FileName, "%.*s%s", static_cast<int>(sizeof localTmpDir),
                  tmpDirName, "orbitwalk_vid.tmp");
}

void TempDirectory::logPaths() const {
    const int length = static_cast<int>(std::strlen(mp4FileName));
    if (mShowPaths) {
        logInfo("kelOBWEngine::start--temp path : localTmpDir = %s", tmpDirName);
        logInfo("kelOBWEngine::start--temp mp4 file = %s, mp4FileName size = %d", mp4FileName,
                length);
    } else {
        logInfo("kelOBWEngine::start--temp path : [Line: %d]", 405);
        logInfo("kelOBWEngine::start--temp mp4 file [Line: %d], mp4FileName size = %d", 432,
                length);
    }
}

int TempDirectory::renew() {
    const RootEntry root(tmpDirName);
    const Removal removal = removeRoot(root, tmpDirName, mShowPaths);
    if (removal == Removal::failed) {
        logInfo("kelOBWEngine : start : removeTempDir FALIED retrun");
        return OBW_RESULT_TEMP_DIR_ERROR;
    }
    const auto [parent, name] = root.entry();
    if (removal == Removal::unopened && S_ISDIR(root.entry().mode()))
        return OBW_RESULT_OK;
    // By the same parent, and refused when somebody has put anything there meanwhile.
    return reportCreation(mkdirat(parent, name, 0777) == 0);
}

int TempDirectory::reportCreation(bool created) const {
    if (!created) {
        logInfo("kelOBWEngine::start  : MKDIR FAILED");
        if (mShowPaths)
            logError("kelOBWEngine::start  : create directory %s FAILED", tmpDirName);
        else
            logError("kelOBWEngine::start  : create directory [Line: %d] FAILED", 470);
        return OBW_RESULT_TEMP_DIR_ERROR;
    }
    // At error priority, so that a log of errors alone shows when a capture began.
    if (mShowPaths)
        logError("kelOBWEngine::start  : create directory %s SUCCESS StartTimeChecking",
                 tmpDirName);
    else
        logError("kelOBWEngine::start  : create directory [Line: %d] SUCCESS StartTimeChecking",
                 476);
    return OBW_RESULT_OK;
}

void TempDirectory::removeAtEnd(const TempDirRemover& remover) {
    const char* separator = remover.separator;
    if (differsFromLocalTmpDir(tmpDirName)) {
        logError("kelOBWEngine::%s REMOVE_TEMP_DIR_AFTER_END, ERROR!!!!!!! invlaid path",
                 remover.routine);
        if (mShowPaths)
            logError("kelOBWEngine::%s REMOVE_TEMP_DIR_AFTER_END, tmpDirName=%s", remover.routine,
                     tmpDirName);
        else
            logError("kelOBWEngine::%s REMOVE_TEMP_DIR_AFTER_END, tmpDirName=[Line: %d]",
                     remover.routine, remover.line);
        take();
        separator = " : ";
    }
    const bool removed = removeTempDir(tmpDirName, mShowPaths) == OBW_RESULT_OK;
    logInfo("kelOBWEngine : %s%sremoveTempDir %s", remover.routine, separator,
            removed ? "SUCCESS" : "FALIED!!");
}

}  // namespace orbitwalk
