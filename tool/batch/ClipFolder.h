#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "batch/ClipJob.h"
#include "files/TextFile.h"
#include "terminal/SignalGuard.h"

/// Where a batch's clips stand. A clip is made in a hidden folder below the batch's and gets its
/// name when it is complete; of runs that share the batch's folder one at a time works on it.
namespace orbitwalk::tool {

/// A name that one process holds, however it ends; the others see it as taken. Where a file system
/// has no such locks, everybody gets it.
class NameLock {
  public:
    /// @return nothing while somebody else holds it. @throws ToolError when the file cannot be
    /// made.
    static std::optional<NameLock> take(const std::filesystem::path& file);
    ~NameLock();
    NameLock(NameLock&&) = default;
    NameLock& operator=(NameLock&&) = delete;

  private:
    NameLock(std::filesystem::path file, Descriptor descriptor)
        : mFile(std::move(file)), mDescriptor(std::move(descriptor)) {}

    std::filesystem::path mFile;
    Descriptor mDescriptor;
};

/// Hidden, below the batch's folder: clips that are not complete, and locks.
std::filesystem::path workFolder(const std::filesystem::path& batch);

/// Names of one clip.
struct ClipFolder {
    ClipFolder(const std::filesystem::path& batch, const std::string& id);

    std::filesystem::path folder;
    std::filesystem::path error;  ///< Beside it: why the clip failed.
    std::filesystem::path work;   ///< The folder while the clip is made.
    std::filesystem::path lock;

    /// The sidecar of a complete clip whose files are all there; nothing for anything else.
    std::optional<nlohmann::ordered_json> sidecar() const;
    /// What error holds; nothing without one.
    std::optional<std::string> failure() const;
};

/// Writes why there is no clip. @throws ToolError.
void writeFailure(const ClipFolder& names, const std::string& why);

/// Whether a sidecar is what the clip would be made of today. @throws ToolError: see identityOf.
bool isUnchanged(const nlohmann::ordered_json& sidecar, const ClipJob& job);

/// A clip that is being made: an empty folder to work in, which goes when the clip does not get its
/// name.
class ClipWork {
  public:
    /// @param force  a folder of the clip's name that is no clip is replaced too.
    /// @throws ToolError. @param lock  of the clip.
    ClipWork(ClipFolder names, NameLock lock, bool force);
    ~ClipWork();
    ClipWork(ClipWork&& other) noexcept;
    ClipWork& operator=(ClipWork&&) = delete;

    const ClipFolder& names() const { return mNames; }
    /// Gives the folder its name, in one step where a former clip has it, and removes the error.
    /// @throws ToolError.
    void finish();

  private:
    ClipFolder mNames;
    NameLock mLock;
    Unfinished mUnfinished;
    bool mOwned = true;
};

}  // namespace orbitwalk::tool
