#pragma once

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "files/DirectoryLock.h"
#include "terminal/SignalGuard.h"

namespace orbitwalk::tool {

/// Files that appear together or not at all: they are written under temporary names beside their
/// own and get those at commit, in the order in which they were begun. Without a commit nothing of
/// them is left. A process that is killed leaves every name with the former or the new content,
/// whole, and temporary files, which the next run that writes there removes (see DirectoryLock).
/// Killed within commit, it leaves the first names new and the others as they were: a file that
/// tells what the others are, such as a sweep's summary with its checksums, is begun last, so that
/// a mixed set can be told. New files have the mode of those that they replace.
class OutputFiles {
  public:
    /// @param force  replaces files that the tool did not write, too.
    explicit OutputFiles(bool force);
    ~OutputFiles();
    OutputFiles(const OutputFiles&) = delete;
    OutputFiles& operator=(const OutputFiles&) = delete;

    /// Makes one directory, not its parents, unless it is there. @throws ToolError.
    void makeDirectory(const std::filesystem::path& directory);
    /// Begins a file in a directory that is there. The stream stays open until commit, and this
    /// object's.
    /// @param known  the file that it replaces is the tool's though its content does not say so.
    /// @throws ToolError, also where something other than a file has the name, or a file that must
    /// not be replaced (see isOwnFile).
    std::FILE* create(const std::filesystem::path& file, bool known = false);
    /// Writes to the end of a file that was begun. @throws ToolError with the reason.
    void append(std::FILE* stream, std::span<const char> bytes);
    /// Begins a file and writes all of it. @throws ToolError.
    void write(const std::filesystem::path& file, std::span<const char> bytes);
    /// Closes all files and gives them their names, replacing former files. When that fails, the
    /// former files are back in place. @throws ToolError.
    void commit();

  private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    struct File {
        std::filesystem::path target;
        std::filesystem::path temporary;
        std::filesystem::path former;  ///< Second name of the replaced file during commit.
        std::unique_ptr<std::FILE, Closer> stream;
        Unfinished part;  ///< At temporary.
        bool known = false;
        bool replaces = false;  ///< A file stood at target and has its former name.
        bool placed = false;    ///< The new file stands at target.
    };

    void requireReplaceable(const File& file) const;
    void closeAll();
    void putInPlace(File& file);
    void putBack(File& file) noexcept;

    bool mForce;
    std::vector<std::pair<std::filesystem::path, Unfinished>> mMade;  ///< Directories.
    std::map<std::filesystem::path, DirectoryLock> mLocks;
    std::vector<File> mFiles;
    bool mCommitted = false;
};

}  // namespace orbitwalk::tool
