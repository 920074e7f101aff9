#include "files/OutputFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "files/OwnFiles.h"
#include "terminal/ToolError.h"

namespace fs = std::filesystem;

namespace orbitwalk::tool {
namespace {

[[noreturn]] void fail(const fs::path& path, const std::string& reason) {
    throw ToolError("cannot write " + path.string() + ": " + reason);
}

void requireDirectory(const fs::path& file) {
    const fs::path directory = file.parent_path().empty() ? "." : file.parent_path();
    std::error_code cannotTell;
    const fs::file_status status = fs::status(directory, cannotTell);
    if (status.type() == fs::file_type::not_found)
        fail(file, "there is no directory " + directory.string());
    if (fs::exists(status) && !fs::is_directory(status))
        fail(file, directory.string() + " is not a directory");
}

/// A new file of a name that nobody has, with the mode of the one that it will replace.
/// @return no stream, and errno, when that fails.
std::FILE* openPart(const fs::path& part, const fs::path& target) {
    // O_EXCL refuses a name that exists, be it a link that someone else laid out.
    const int file = open(part.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0)
        return nullptr;
    struct stat replaced {};
    if (stat(target.c_str(), &replaced) == 0)
        fchmod(file, replaced.st_mode & 0777);
    return fdopen(file, "w+b");
}

/// A second name for a file, so that the first one never stands empty; a copy where the file system
/// has no second names, or the file is someone else's.
void keepAs(const fs::path& former, const fs::path& target) {
    if (link(target.c_str(), former.c_str()) == 0)
        return;
    std::error_code error;
    fs::copy_file(target, former, error);
    if (error)
        fail(target, error.message());
}

}  // namespace

OutputFiles::OutputFiles(bool force) : mForce(force) {}

OutputFiles::~OutputFiles() {
    std::error_code ignored;
    for (File& file : mFiles) {
        file.stream.reset();
        if (!mCommitted)
            fs::remove(file.temporary, ignored);
    }
    for (const auto& made : mMade)
        if (!mCommitted)
            fs::remove(made.first, ignored);
}

void OutputFiles::makeDirectory(const fs::path& directory) {
    std::error_code error;
    // A path that ends in a slash names the same directory.
    const fs::path path = directory.has_filename() ? directory : directory.parent_path();
    const fs::path parent = path.parent_path();
    if (!parent.empty() && fs::status(parent, error).type() == fs::file_type::not_found)
        fail(path, "there is no directory " + parent.string());
    if (fs::create_directory(path, error))
        mMade.emplace_back(path, Unfinished(path));
    else if (error && fs::exists(fs::symlink_status(path)))
        throw ToolError(path.string() + " is not a directory");
    else if (error)
        fail(path, error.message());
}

std::FILE* OutputFiles::create(const fs::path& file, bool known) {
    const std::string name = file.filename();
    const fs::path part = file.parent_path() / partName(name);
    File made{.target = file,
              .temporary = part,
              .former = file.parent_path() / formerName(name),
              .stream = {},
              .part = Unfinished(part),
              .known = known};
    if (name.empty())
        fail(file, std::strerror(EISDIR));
    requireDirectory(file);
    requireReplaceable(made);
    mLocks.try_emplace(file.parent_path(), file.parent_path());
    made.stream.reset(openPart(made.temporary, made.target));
    if (!made.stream)
        fail(file, std::strerror(errno));
    return mFiles.emplace_back(std::move(made)).stream.get();
}

void OutputFiles::write(const fs::path& file, std::span<const char> bytes) {
    append(create(file), bytes);
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
    const auto whole = Unfinished::keepWhole();
    try {
        for (File& file : mFiles)
            putInPlace(file);
    } catch (...) {
        std::for_each(mFiles.rbegin(), mFiles.rend(), [&](File& file) { putBack(file); });
        throw;
    }
    mCommitted = true;
    for (File& file : mFiles)
        file.part.keep(whole);
    for (auto& made : mMade)
        made.second.keep(whole);
    std::error_code ignored;
    for (const File& file : mFiles)
        if (file.replaces)
            fs::remove(file.former, ignored);
}

/// A directory or a device cannot be replaced by a file, and what others wrote is theirs.
void OutputFiles::requireReplaceable(const File& file) const {
    std::error_code cannotTell;
    const fs::file_status status = fs::status(file.target, cannotTell);
    if (fs::is_directory(status))
        fail(file.target, std::strerror(EISDIR));
    if (fs::exists(status) && !fs::is_regular_file(status))
        fail(file.target, "it is no regular file");
    const bool stands = fs::exists(fs::symlink_status(file.target, cannotTell));
    if (stands && !mForce && !file.known && !isOwnFile(file.target))
        fail(file.target, "orbitwalk did not write the file of that name; --force replaces it");
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
    requireReplaceable(file);
    if (fs::exists(fs::symlink_status(file.target))) {
        file.replaces = true;
        keepAs(file.former, file.target);
    }
    if (std::rename(file.temporary.c_str(), file.target.c_str()) != 0)
        fail(file.target, std::strerror(errno));
    file.placed = true;
}

void OutputFiles::putBack(File& file) noexcept {
    std::error_code ignored;
    if (file.placed && !file.replaces)
        fs::remove(file.target, ignored);
    if (file.placed && file.replaces)
        fs::rename(file.former, file.target, ignored);
    if (!file.placed && file.replaces)
        fs::remove(file.former, ignored);
}

}  // namespace orbitwalk::tool
