#pragma once

#include <functional>

#include "batch/ClipJob.h"

namespace orbitwalk::tool {

/// Runs a clip's commands one after the other in the working directory, a folder of its own, and
/// writes its sidecar last: the folder is complete when that is there. Every command line is
/// printed on stderr before it runs.
/// @param runCommand  runs one command to its end, prints its errors and returns its exit status.
/// @return the exit status of the first command that failed, else 0. @throws ToolError.
int runClip(const ClipJob& job, const std::function<int(const Arguments&)>& runCommand);

}  // namespace orbitwalk::tool
