#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "batch/Manifest.h"

namespace orbitwalk::tool {

enum class ClipState {
    Done,
    Failed,
    Waiting  ///< No run has come to it, or not since its options changed.
};

/// A line of the summary.
struct ClipReport {
    std::string id;
    std::string video;  ///< As the manifest has it.
    ClipState state = ClipState::Waiting;
    nlohmann::ordered_json result;  ///< See the sidecar; null unless done.
    std::string error;              ///< The last line of it; empty unless failed.
};

/// "done", "failed" or "waiting".
const char* nameOf(ClipState state);

std::string_view lastLineOf(std::string_view text);

/// From what stands in a batch's folder, in the manifest's order. Without times, names of machines
/// or of folders, so that it is the same text whoever made the clips.
std::vector<ClipReport> reportsOf(const std::vector<Clip>& clips,
                                  const std::filesystem::path& batch);

/// One row a clip: see the header line.
std::string toCsv(const std::vector<ClipReport>& reports);
std::string toJsonText(const std::vector<ClipReport>& reports);

/// Writes summary.csv, summary.json and index.html; waits while another run does.
/// @param force  files of these names that the tool did not write are replaced too.
/// @throws ToolError.
void writeBatchSummary(const std::vector<Clip>& clips, const std::filesystem::path& batch,
                       bool force);

/// A page to stand in a batch's folder: every clip with its strip, its verdict and links to its
/// report and its player, those that failed first. It needs no network and runs no script.
std::string indexPage(const std::vector<ClipReport>& reports);

}  // namespace orbitwalk::tool
