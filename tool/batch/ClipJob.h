#pragma once

#include <filesystem>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "batch/Manifest.h"

namespace orbitwalk::tool {

inline constexpr char kClipSidecarName[] = "clip.json";

/// A clip with the folder that its manifest's names are relative to.
struct ClipJob {
    Clip clip;
    std::filesystem::path base;  ///< Absolute.
};

/// A command line of the tool, run in the clip's folder.
struct ClipStage {
    std::string name;
    Arguments arguments;     ///< The command first.
    std::string outputFile;  ///< Takes what the command prints; empty where nothing keeps it.
};

/// The commands that a clip goes through, in their order: capture, with the refinement where one
/// decoding serves both, refine, render, evaluate, report and player. What shows the sweep shows
/// the refined one where there is one. An option that names a file beside the manifest is given as
/// that file, any other as it is.
std::vector<ClipStage> stagesOf(const ClipJob& job);

/// What the clip was made of: its id, its options, the tool's version and the checksums of the
/// video and of every file that an option names. The same text, the same results.
/// @throws ToolError when the video, or a file that an option names, cannot be read.
nlohmann::ordered_json identityOf(const ClipJob& job);

nlohmann::ordered_json toJson(const ClipJob& job);
/// @throws nlohmann::json::exception.
ClipJob parseClipJob(const std::string& text);

/// Runs a clip's commands one after the other in the working directory, a folder of its own, and
/// writes its sidecar last: the folder is complete when that is there. Every command line is
/// printed on stderr before it runs.
/// @param runCommand  runs one command to its end, prints its errors and returns its exit status.
/// @return the exit status of the first command that failed, else 0. @throws ToolError.
int runClip(const ClipJob& job, const std::function<int(const Arguments&)>& runCommand);

}  // namespace orbitwalk::tool
