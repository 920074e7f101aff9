#include "files/OutputFiles.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "terminal/ToolError.h"

namespace fs = std::filesystem;

namespace orbitwalk::tool {
namespace {

[[noreturn]] void fail(const fs::path& path, const std::string& reason) {
    throw ToolError("cannot write " + path.string() + ": " + reason);
}

/// A directory or a device cannot be replaced by a file.
void requireFileOrNothing(const fs::path& target) {
    const fs::file_status status = fs::status(target);
    if (fs::is_directory(status))
        fail(target, std::strerror(EISDIR));
    if (fs::exists(status) && !fs::is_regular_file(status))
        fail(target, "it is no regular file");
}

/// A hidden name beside the file's own that another process does not use.
std::string hiddenName(const std::string& name, const char* purpose) {
    std::string hidden(".");
    hidden += name;
    hidden += purpose;
    hidden += std::to_string(getpid());
    return hidden;
}

}  // namespace

OutputFiles::OutputFiles(const fs::path& directory) : mDirectory(directory.lexically_normal()) {}

OutputFiles::~OutputFiles() {
    std::error_code ignored;
    for (File& file : mFiles) {
        file.stream.reset();
        if (!mCommitted)
            fs::remove(file.temporary, ignored);
    }
    for (auto made = mMade.rbegin(); !mCommitted && made != mMade.rend(); ++made)
        fs::remove(*made, ignored);
}

void OutputFiles::makeDirectory() {
    std::error_code error;
    fs::path path;
    for (const fs::path& part : mDirectory) {
        path /= part;
        if (path.has_filename() && fs::create_directory(path, error))
            mMade.push_back(path);
        if (error && fs::exists(path) && !fs::is_directory(path))
            fail(mDirectory, path.string() + " is not a directory");
        if (error)
            fail(mDirectory, error.message());
    }
}

std::FILE* OutputFiles::create(const std::string& name) {
    if (mFiles.empty())
        makeDirectory();
    File file{.target = mDirectory / name,
              .temporary = mDirectory / hiddenName(name, ".part-"),
              .former = mDirectory / hiddenName(name, ".former-"),
              .stream = {}};
    requireFileOrNothing(file.target);
    // "x" refuses a name that exists, be it a link that someone else laid out.
    file.stream.reset(std::fopen(file.temporary.c_str(), "w+bx"));
    if (!file.stream)
        fail(file.target, std::strerror(errno));
    return mFiles.emplace_back(std::move(file)).stream.get();
}

void OutputFiles::write(const std::string& name, std::span<const char> bytes) {
    append(create(name), bytes);
}

void OutputFiles::append(std::FILE* stream, std::span<const char> bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size() &&
        std::fflush(stream) == 0)
        return;
    const std::string reason = std::strerror(errno);
    for (const File& file : mFiles)
        if (file.stream.get() == stream)
            fail(file.target, reason);
}

void OutputFiles::commit() {
    closeAll();
    try {
        for (File& file : mFiles)
            putInPlace(file);
    } catch (...) {
        for (File& file : mFiles)
            putBack(file);
        throw;
    }
    mCommitted = true;
    std::error_code ignored;
    for (const File& file : mFiles)
        fs::remove(file.former, ignored);
}

void OutputFiles::closeAll() {
    for (File& file : mFiles) {
        if (std::ferror(file.stream.get()))
            fail(file.target, "a write failed");
        if (std::fclose(file.stream.release()) != 0)
            fail(file.target, std::strerror(errno));
    }
}

void OutputFiles::putInPlace(File& file) {
    std::error_code error;
    requireFileOrNothing(file.target);
    if (fs::exists(fs::symlink_status(file.target))) {
        fs::rename(file.target, file.former, error);
        file.replaces = !error;
    }
    if (!error)
        fs::rename(file.temporary, file.target, error);
    if (error)
        fail(file.target, error.message());
    file.placed = true;
}

void OutputFiles::putBack(File& file) noexcept {
    std::error_code ignored;
    if (file.placed)
        fs::remove(file.target, ignored);
    if (file.replaces)
        fs::rename(file.former, file.target, ignored);
}

}  // namespace orbitwalk::tool
