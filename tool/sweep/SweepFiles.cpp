#include "sweep/SweepFiles.h"

#include <set>

#include "terminal/ToolError.h"

namespace orbitwalk::tool {

SweepFiles::SweepFiles(const std::filesystem::path& directory)
    : video(directory / kSweepVideoName),
      record(directory / kSweepRecordName),
      path(directory / kSweepPathName),
      summary(directory / kSweepSummaryName),
      refinedRecord(directory / kRefinedRecordName),
      refinedPath(directory / kRefinedPathName),
      refinedSummary(directory / kRefinedSummaryName) {}

std::filesystem::path followed(const std::filesystem::path& path) {
    std::error_code error;
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(path, error);
    return error ? std::filesystem::absolute(path, error).lexically_normal() : canonical;
}

void refuseTakenNames(const std::filesystem::path& sweepDirectory,
                      std::initializer_list<std::filesystem::path> outputs) {
    const SweepFiles files(sweepDirectory);
    std::set<std::filesystem::path> taken;
    for (const auto& file : {files.video, files.record, files.path, files.summary,
                             files.refinedRecord, files.refinedPath, files.refinedSummary})
        taken.insert(followed(file));
    for (const std::filesystem::path& output : outputs)
        if (!output.empty() && !taken.insert(followed(output)).second)
            throw UsageError("cannot write " + output.string() + ": that name is taken");
}

}  // namespace orbitwalk::tool
