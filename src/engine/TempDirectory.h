#pragma once

#include <span>

/// @file
/// The engine's temporary directory. Paths reach the log on engineering builds only; on other
/// builds the lines name a fixed line number in their place.

/// Copies localTmpDir, which a host may have filled to its last byte without an end. The
/// destination must hold more than that.
void copyLocalTmpDir(std::span<char> destination);

/// Whether a path differs from localTmpDir.
bool differsFromLocalTmpDir(const char* path);

/// Whether the path names a directory; a symbolic link to one is none.
bool isPathDirectory(const char* path);

/// Removes a directory with all that it holds. Symbolic links in it are removed, never followed. A
/// directory that cannot be opened, a missing one for example, counts as removed; entries that
/// cannot be removed are left, and so is the directory then.
/// @param showPaths  engineering build
/// @return 0, or 2: not removed, or a path that must not be touched (null, empty, the root, a
///         symbolic link).
int removeTempDir(const char* path, bool showPaths);
