#include "batch/ClipFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "files/OutputFiles.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr std::size_t kLongestSidecar = 4 << 20;
constexpr std::size_t kLongestError = 1 << 20;

bool isRegular(const fs::path& path) {
    std::error_code cannotTell;
    return fs::is_regular_file(fs::symlink_status(path, cannotTell));
}

bool namesSame(const fs::path& path, int descriptor) {
    struct stat named {
    }, held{};
    return stat(path.c_str(), &named) == 0 && fstat(descriptor, &held) == 0 &&
           named.st_dev == held.st_dev && named.st_ino == held.st_ino;
}

/// Both names change their content at once, so that neither is ever empty; without that in the
/// file system the former folder goes first.
void exchange(const fs::path& work, const fs::path& folder) {
    if (renameat2(AT_FDCWD, work.c_str(), AT_FDCWD, folder.c_str(), RENAME_EXCHANGE) == 0)
        return;
    std::error_code error;
    fs::remove_all(folder, error);
    if (!error)
        fs::rename(work, folder, error);
    if (error)
        throw ToolError("cannot replace " + folder.string() + ": " + error.message());
}

}  // namespace

std::optional<NameLock> NameLock::take(const fs::path& file) {
    for (;;) {
        Descriptor descriptor(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
        if (!descriptor)
            throw ToolError("cannot write " + file.string() + ": " + std::strerror(errno));
        if (flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
            return std::nullopt;
        // Who held it before may just have removed it: then the lock is on no name.
        if (namesSame(file, descriptor.get()))
            return NameLock(file, std::move(descriptor));
    }
}

NameLock::~NameLock() {
    std::error_code ignored;
    if (mDescriptor)
        fs::remove(mFile, ignored);
}

fs::path workFolder(const fs::path& batch) {
    return batch / ".work";
}

ClipFolder::ClipFolder(const fs::path& batch, const std::string& id)
    : folder(batch / id),
      error(batch / (id + ".error.txt")),
      work(workFolder(batch) / id),
      lock(workFolder(batch) / (id + ".lock")) {}

std::optional<Json> ClipFolder::sidecar() const {
    const fs::path file = folder / kClipSidecarName;
    if (!isRegular(file))
        return std::nullopt;
    // One that is too long is none of ours.
    const Json json = Json::parse(readFileUpTo(file, kLongestSidecar), nullptr, false);
    if (!json.is_object() || !json.contains("files") || !json.contains("result") ||
        !json["result"].is_object() || !json["files"].is_array())
        return std::nullopt;
    for (const Json& name : json["files"])
        if (!name.is_string() || !isRegular(folder / name.get<std::string>()))
            return std::nullopt;
    return json;
}

std::optional<std::string> ClipFolder::failure() const {
    return isRegular(error) ? std::optional(readFileUpTo(error, kLongestError)) : std::nullopt;
}

void writeFailure(const ClipFolder& names, const std::string& why) {
    OutputFiles outputs(true);
    outputs.write(names.error, why);
    outputs.commit();
}

bool isUnchanged(const Json& sidecar, const ClipJob& job) {
    const Json wanted = identityOf(job);
    for (const auto& [key, value] : wanted.items())
        if (!sidecar.contains(key) || sidecar[key] != value)
            return false;
    return true;
}

ClipWork::ClipWork(ClipFolder names, NameLock lock, bool force)
    : mNames(std::move(names)),
      mLock(std::move(lock)),
      mUnfinished(mNames.work, Unfinished::Removed::WithContent) {
    std::error_code error;
    if (!force && fs::exists(fs::symlink_status(mNames.folder)) &&
        !isRegular(mNames.folder / kClipSidecarName))
        throw ToolError("cannot write " + mNames.folder.string() +
                        ": orbitwalk did not write what has that name; --force replaces it");
    fs::remove_all(mNames.work, error);
    fs::create_directory(mNames.work, error);
    if (error)
        throw ToolError("cannot write " + mNames.work.string() + ": " + error.message());
}

ClipWork::ClipWork(ClipWork&& other) noexcept
    : mNames(other.mNames),
      mLock(std::move(other.mLock)),
      mUnfinished(std::move(other.mUnfinished)),
      mOwned(std::exchange(other.mOwned, false)) {}

ClipWork::~ClipWork() {
    std::error_code ignored;
    if (mOwned)
        fs::remove_all(mNames.work, ignored);
}

void ClipWork::finish() {
    std::error_code error;
    if (fs::exists(fs::symlink_status(mNames.folder)))
        exchange(mNames.work, mNames.folder);
    else
        fs::rename(mNames.work, mNames.folder, error);
    if (error)
        throw ToolError("cannot write " + mNames.folder.string() + ": " + error.message());
    fs::remove(mNames.error, error);
}

}  // namespace orbitwalk::tool
