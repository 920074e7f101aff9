#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace orbitwalk::tool {

/// The files of a directory that appear together or not at all: they are written under temporary
/// names beside their own and get those at commit. Without a commit the temporary files are
/// removed, and so are the directories that had to be made.
class OutputFiles {
  public:
    explicit OutputFiles(const std::filesystem::path& directory);
    ~OutputFiles();
    OutputFiles(const OutputFiles&) = delete;
    OutputFiles& operator=(const OutputFiles&) = delete;

    /// Begins a file, in a directory that is made with its parents where it does not exist. The
    /// stream stays open until commit, and this object's. @throws ToolError, also where something
    /// other than a file has the name.
    std::FILE* create(const std::string& name);
    /// Writes to the end of a file that was begun. @throws ToolError with the reason.
    void append(std::FILE* stream, std::span<const char> bytes);
    /// Begins a file and writes all of it. @throws ToolError.
    void write(const std::string& name, std::span<const char> bytes);
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
        std::filesystem::path former;  ///< Name of the replaced file during commit.
        std::unique_ptr<std::FILE, Closer> stream;
        bool replaces = false;  ///< A file stood at target and waits under its former name.
        bool placed = false;    ///< The new file stands at target.
    };

    void makeDirectory();
    void closeAll();
    void putInPlace(File& file);
    void putBack(File& file) noexcept;

    std::filesystem::path mDirectory;
    std::vector<std::filesystem::path> mMade;  ///< Directories, outermost first.
    std::vector<File> mFiles;
    bool mCommitted = false;
};

}  // namespace orbitwalk::tool
