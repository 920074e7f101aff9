#include "engine/TempDirectory.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "common/Log.h"
#include "engine/ResultCodes.h"
#include "orbitwalk/Engine.h"

char localTmpDir[200] = "/data/media/0/.TEMP_OBW_ENGINE_FILES/";

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";

using PathBuffer = std::array<char, 512>;

std::string_view localTmpDirText() {
    return {localTmpDir, strnlen(localTmpDir, sizeof localTmpDir)};
}

/// The path without the slashes at its end, which would make the system calls follow a link there.
/// @return false for a path that must not be removed: null, empty, the root, too long, a link.
bool removablePath(const char* path, PathBuffer& stripped) {
    if (path == nullptr)
        return false;
    const std::string_view text(path);
    const auto last = text.find_last_not_of('/');
    if (last == std::string_view::npos || last + 1 >= stripped.size())
        return false;
    *std::copy_n(text.begin(), last + 1, stripped.begin()) = '\0';
    struct stat status;
    return lstat(stripped.data(), &status) != 0 || !S_ISLNK(status.st_mode);
}

DIR* openDirectory(const char* path) {
    const int descriptor = open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    DIR* const directory = fdopendir(descriptor);
    if (directory == nullptr)
        close(descriptor);
    return directory;
}

int reportFailure(const char* path, bool showPaths) {
    if (showPaths)
        logError("kelOBWEngine::removeTempDir : rm Dir failed %s, return err ", path);
    else
        logError("kelOBWEngine::removeTempDir : rm Dir failed : Line: %d, return err ", 276);
    return OBW_RESULT_TEMP_DIR_ERROR;
}

int reportSuccess(const char* path, bool showPaths) {
    if (showPaths)
        logInfo("kelOBWEngine::removeTempDir : rm Dir OK %s", path);
    else
        logInfo("kelOBWEngine::removeTempDir : rm Dir OK : Line: %d", 280);
    return OBW_RESULT_OK;
}

void removeEntry(const char* path, bool showPaths) {
    if (isPathDirectory(path)) {
        removeTempDir(path, showPaths);
        return;
    }
    if (showPaths)
        logInfo("kelOBWEngine::removeTempDir, unlink %s, ", path);
    else
        logInfo("kelOBWEngine::removeTempDir, LINE:  : %d, ", 254);
    unlink(path);
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
            removeEntry(child.data(), showPaths);
    }
}

}  // namespace

void copyLocalTmpDir(std::span<char> destination) {
    const std::string_view text = localTmpDirText();
    *std::copy(text.begin(), text.end(), destination.begin()) = '\0';
}

bool differsFromLocalTmpDir(const char* path) {
    return localTmpDirText() != path;
}

bool isPathDirectory(const char* path) {
    struct stat status;
    return lstat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

int removeTempDir(const char* path, bool showPaths) {
    PathBuffer stripped;
    if (!removablePath(path, stripped))
        return reportFailure(path == nullptr ? "" : path, showPaths);
    DIR* const directory = openDirectory(stripped.data());
    if (showPaths)
        logInfo("kelOBWEngine:: removeTempDir %s : dirPtr = %p", path,
                static_cast<void*>(directory));
    else
        logInfo("kelOBWEngine:: removeTempDir [Line: %d] : dirPtr = %p", 233,
                static_cast<void*>(directory));
    if (directory == nullptr)
        return reportSuccess(path, showPaths);
    removeEntries(directory, path, showPaths);
    closedir(directory);
    const int result = rmdir(stripped.data());
    logInfo("kelOBWEngine::removeTempDir........... : ret=%d", result);
    return result == 0 ? reportSuccess(path, showPaths) : reportFailure(path, showPaths);
}
