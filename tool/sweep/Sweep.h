#pragma once

#include <filesystem>
#include <opencv2/core/types.hpp>
#include <optional>
#include <span>
#include <vector>

#include "orbitwalk/RecordReader.h"
#include "sweep/RefinedSummary.h"
#include "sweep/Summary.h"
#include "sweep/SweepFiles.h"
#include "sweep/Tables.h"

namespace orbitwalk::tool {

/// Whose record of a sweep.
enum class RecordBy { Engine, Refinement };

/// What `orbitwalk refine` measured and came to.
struct Refinement {
    RecordReader engineRecord;                 ///< The one that the sweep's own stands in for.
    std::vector<refine::FrameMotion> motions;  ///< One a frame.
    RefinedSummary summary;
};

/// What `orbitwalk capture`, and `orbitwalk refine` after it, left in a directory.
struct Sweep {
    SweepFiles files;  ///< Only the record and the video must be there.
    RecordReader record;
    std::vector<SweepRow> path;            ///< One row a frame; empty where there is no sweep.csv.
    std::optional<Summary> summary;        ///< None where there is no sweep.json.
    std::optional<Refinement> refinement;  ///< Where the record is that of the refinement.

    cv::Size size() const { return {record.width(), record.height()}; }
};

/// Opens what a directory has of a sweep, all but the video, and checks that it belongs together:
/// the files by the summary's checksums, the record by the summary's figures and by the path, which
/// smoothed must lead to its crop. The record of a refinement
/// must be the one that was planned beside this sweep.
/// @throws ToolError in one line that names the file that cannot be read, is damaged or is of
/// another sweep.
Sweep readSweep(const std::filesystem::path& directory, RecordBy by = RecordBy::Engine);

/// The same for those who show it. @throws ToolError also when the record renders no frame.
Sweep openSweep(const std::filesystem::path& directory, RecordBy by = RecordBy::Engine);

/// Whether the camera went up or down, which is not supported. A record has no word for it and says
/// left to right or back; the summary knows. @return nothing where there is none.
std::optional<bool> isVertical(const std::optional<Summary>& summary);

/// The measured path. @throws ToolError that names the file when there is none.
const std::vector<SweepRow>& requirePath(const Sweep& sweep);

/// Reads and opens a motion record. Of a file that is too long it reads no more than shows that.
/// @throws ToolError with the reason when the file cannot be read or is no record.
RecordReader readRecordFile(const std::filesystem::path& file);

/// The record does not hold the path, only what came of it.
/// @param path  one row a frame of the record.
/// @throws ToolError with what differs, when the record cannot have come of the path: by its flags,
/// or by the crop that smoothing it leads to.
void requirePathOfRecord(std::span<const SweepRow> path, const RecordReader& record);

/// @throws ToolError when a video's size is not the one that its record says.
void requireSize(const std::filesystem::path& video, cv::Size size, cv::Size recorded);
/// @throws ToolError when a video's number of frames is not the one that its record says.
void requireFrameCount(const std::filesystem::path& video, int frames, int recorded);

}  // namespace orbitwalk::tool
