#pragma once

#include <filesystem>
#include <string>

namespace orbitwalk::tool {

/// The hidden command that a clip's process runs, with the clip as JSON.
inline constexpr char kRunClipCommand[] = "run-clip";

/// One of several runs that part a manifest between them: it takes every count-th clip.
struct Shard {
    int index = 0;
    int count = 1;
};

/// @param text  INDEX/COUNT, counted from 0. @throws UsageError.
Shard parseShard(const std::string& text);

struct BatchOptions {
    std::filesystem::path manifest;
    std::filesystem::path directory;  ///< Made unless it is there; its parents are not.
    int jobs = 1;                     ///< Clips at a time.
    Shard shard;
    bool force = false;  ///< Folders that no batch wrote may be replaced.
};

/// What became of the clips of one run.
struct BatchResult {
    std::filesystem::path directory;
    int made = 0;
    int unchanged = 0;  ///< Complete from an earlier run.
    int failed = 0;
    int busy = 0;  ///< Another run works on them.
    double seconds = 0;

    int clips() const { return made + unchanged + failed + busy; }
};

/// Works through a manifest: one folder a clip, made in a process of its own, and over all clips of
/// the manifest, whoever made them, summary.csv, summary.json and index.html. A clip appears when
/// it is complete, and stays as it is while its video, its options and the tool are the same. One
/// that fails has its error beside it. Ended by a signal, or killed, the run goes on where it was
/// when it is started again.
/// @throws UsageError for a manifest that cannot be taken; ToolError, also on a signal.
BatchResult runBatch(const BatchOptions& options);

std::string toText(const BatchResult& result);
std::string toJsonText(const BatchResult& result);

}  // namespace orbitwalk::tool
