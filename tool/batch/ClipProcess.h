#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

#include "files/TextFile.h"

namespace orbitwalk::tool {

/// A process of this program. Its errors come to this one; it ends when this one does.
class ChildProcess {
  public:
    /// @param folder  its working directory. @throws ToolError when it cannot be started.
    ChildProcess(const std::vector<std::string>& arguments, const std::filesystem::path& folder);
    /// Ends it if it still runs, by force when it does not heed the first signal at once.
    ~ChildProcess();
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&&) = delete;

    /// Reads what it has printed on stderr so far, of which the last 64 KiB are kept.
    /// @return whether it has ended.
    bool poll();
    /// Once it has ended: its exit status; 128 + signal where one ended it.
    int status() const { return mStatus; }
    const std::string& errors() const { return mErrors; }
    void terminate() const;

  private:
    void readErrors();
    bool waitFor(int milliseconds);

    pid_t mProcess = -1;  ///< -1 once it has been waited for.
    Descriptor mPipe;
    std::string mErrors;
    int mStatus = 0;
};

/// To be called first in a child: from here on it gets SIGTERM when its parent ends.
/// @return false when the parent has ended already.
bool endWithParent(pid_t parent);

}  // namespace orbitwalk::tool
