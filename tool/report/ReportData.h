#pragma once

#include <array>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "orbitwalk/RecordReader.h"
#include "sweep/Playlist.h"
#include "sweep/RecordFacts.h"
#include "sweep/Summary.h"
#include "sweep/SweepCsv.h"

namespace orbitwalk::tool {

inline constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

/// One value a frame of the video; kNoValue where a frame has none. Pixels, pixels, degrees.
struct Track {
    explicit Track(int frames = 0) : x(frames, kNoValue), y(x), angle(x) {}

    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> angle;
};

/// Pixels between the crop rectangle and the edges of the corrected frame behind it, one value a
/// frame: what it could still be moved before the crop would show what was not recorded.
struct Room {
    explicit Room(int frames = 0) : left(frames, kNoValue), right(left), top(left), bottom(left) {}

    std::vector<double> left;
    std::vector<double> right;
    std::vector<double> top;
    std::vector<double> bottom;
};

/// The frame that the crop rectangle is drawn on.
struct CropView {
    int frame = 0;
    /// Corners of what is shown of it, clockwise from the top left, in pixels from the frame's
    /// top left corner.
    std::array<PicturePoint, 4> shown;
};

/// All that a report tells in words and plots.
struct ReportData {
    std::optional<Summary> capture;
    int width = 0;
    int height = 0;
    int frames = 0;
    FrameRange range;
    int rendered = 0;
    std::string direction;
    std::string orientation;
    bool flipped = false;  ///< The front camera's preview was mirrored.
    CropRectangle crop;
    Smoothing smoothing = Smoothing::Smoothed;
    std::optional<int> feedbackStep;  ///< See SmoothedPath.
    int repeatedMotions = 0;
    std::optional<std::string> repeatedWarning;
    std::vector<bool> repeated;  ///< One a frame.

    Track motion;  ///< Of the picture since the frame before, as measured.
    /// The paths of the selected frames, relative to the first of them.
    Track measured;
    Track gaussian;
    Track smoothed;
    Track correction;  ///< How the record moves the centre of a rendered frame, and turns it.
    Room room;
    CropView cropView;
};

/// @param record  renders a frame. @param path  one row a frame of the record.
ReportData reportData(const RecordReader& record, std::span<const SweepRow> path,
                      const std::optional<Summary>& capture);

}  // namespace orbitwalk::tool
