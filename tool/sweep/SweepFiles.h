#pragma once

#include <filesystem>
#include <initializer_list>

namespace orbitwalk::tool {

inline constexpr char kSweepVideoName[] = "sweep.mp4";
inline constexpr char kSweepRecordName[] = "sweep.obw";
inline constexpr char kSweepPathName[] = "sweep.csv";
inline constexpr char kSweepSummaryName[] = "sweep.json";
inline constexpr char kRefinedRecordName[] = "refined.obw";
inline constexpr char kRefinedPathName[] = "refined.csv";
inline constexpr char kRefinedSummaryName[] = "refined.json";

/// What `orbitwalk capture` writes.
inline constexpr const char* kSweepNames[] = {kSweepVideoName, kSweepRecordName, kSweepPathName,
                                              kSweepSummaryName};

/// Paths of a directory's files, there or not.
struct SweepFiles {
    explicit SweepFiles(const std::filesystem::path& directory);

    std::filesystem::path video;
    std::filesystem::path record;
    std::filesystem::path path;
    std::filesystem::path summary;
    /// What `orbitwalk refine` writes.
    std::filesystem::path refinedRecord;
    std::filesystem::path refinedPath;
    std::filesystem::path refinedSummary;
};

/// The path with links followed as far as they lead; as it is where they cannot be followed.
std::filesystem::path followed(const std::filesystem::path& path);

/// @throws UsageError when an output has the name of a file of the sweep or of another output;
/// empty names are none.
void refuseTakenNames(const std::filesystem::path& sweepDirectory,
                      std::initializer_list<std::filesystem::path> outputs);

}  // namespace orbitwalk::tool
