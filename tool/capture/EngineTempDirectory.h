#pragma once

#include <optional>
#include <string>

#include "terminal/SignalGuard.h"

namespace orbitwalk::tool {

/// A fresh private directory under TMPDIR (else /tmp), with the engine's working directory inside:
/// while it lives, localTmpDir names that one. Removed at the end with all that it holds;
/// localTmpDir then has its former value. What killed processes left there is removed first: each
/// directory is locked by the process that uses it, and a lock ends with its process. Must outlive
/// every call to the engine.
class EngineTempDirectory {
  public:
    /// @throws ToolError when the directory cannot be made or its path is longer than the engine
    /// takes.
    EngineTempDirectory();
    ~EngineTempDirectory();
    EngineTempDirectory(const EngineTempDirectory&) = delete;
    EngineTempDirectory& operator=(const EngineTempDirectory&) = delete;

  private:
    std::string mDirectory;
    int mLock = -1;  ///< The directory, opened and locked.
    std::string mFormer;
    std::optional<Unfinished> mUnfinished;
};

}  // namespace orbitwalk::tool
