#pragma once

#include <span>

/// @file
/// The engine's temporary directory. Paths reach the log on engineering builds only; on other
/// builds the lines name a fixed line number in their place.

namespace orbitwalk {

/// Copies localTmpDir, which a host may have filled to its last byte without an end. The
/// destination must hold more than that.
void copyLocalTmpDir(std::span<char> destination);

/// Whether a path differs from localTmpDir.
bool differsFromLocalTmpDir(const char* path);

/// Removes a directory with all that it holds, walking on descriptors: symbolic links in it are
/// removed, never followed, and what is put in place of it or of a directory in it meanwhile is not
/// entered. Links above it are followed, as in any path. A directory that cannot be opened, a
/// missing one for example, counts as removed; entries that cannot be removed are left, and so is
/// the directory then.
/// @param showPaths  engineering build
/// @return 0, or 2: not removed, or a path that must not be touched (null, empty, the root, a
///         symbolic link).
int removeTempDir(const char* path, bool showPaths);

/// Who removes the directory at the end of something, as the log names it.
struct TempDirRemover {
    const char* routine;
    int line;                       ///< In the path's place on builds that show none.
    const char* separator = " : ";  ///< Between the routine and the result.
};

/// The directory that a capture uses: a copy of localTmpDir, which the host may change meanwhile.
/// No lock of its own.
class TempDirectory {
  public:
    explicit TempDirectory(bool showPaths) : mShowPaths(showPaths) {}

    /// Takes localTmpDir as it is now.
    void take();
    void logPaths() const;
    /// Removes what an earlier capture left and creates it anew, in the parent that was opened for
    /// the removal: what somebody puts there in between, a link or a directory, is refused. A
    /// directory that is there and cannot be opened is used as it is, whoever owns it and whatever
    /// its mode. @return 0 or 2.
    int renew();
    /// Removes it, or localTmpDir when that is another one by now.
    void removeAtEnd(const TempDirRemover& remover);

    /// Ends in a slash, as localTmpDir does.
    char* path() { return tmpDirName; }
    char* mp4File() { return mp4FileName; }

  private:
    int reportCreation(bool created) const;

    bool mShowPaths;
    char tmpDirName[512] = {};
    char mp4FileName[256] = {};
};

}  // namespace orbitwalk
