#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "report/TradeOff.h"
#include "sweep/Steadiness.h"
#include "sweep/Summary.h"
#include "sweep/Sweep.h"

namespace orbitwalk::tool {

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
    /// As the capture left it. Where it left none, or one from before there were figures in it,
    /// they are filled in from the record and the path.
    Summary summary;
    bool captureKnown = false;  ///< There is a sweep.json: video, versions and times are known.
    Steadiness steadiness;
    std::string direction;
    std::string orientation;
    bool flipped = false;  ///< The front camera's preview was mirrored.
    CropRectangle crop;
    std::optional<int> feedbackStep;  ///< See SmoothedPath.
    std::optional<std::string> repeatedWarning;
    std::vector<bool> repeated;  ///< One a frame.

    Track motion;  ///< Of the picture since the frame before, as the engine measured it.
    /// The paths of the selected frames, relative to the first of them.
    Track measured;
    Track gaussian;
    Track smoothed;
    Track correction;  ///< How the record moves the centre of a rendered frame, and turns it.
    Room room;
    CropView cropView;
    std::optional<RefinedPaths> refined;  ///< Where the record is that of the refinement.
};

/// @param sweep  opened; its record renders a frame. @throws ToolError without a path.
ReportData reportData(const Sweep& sweep);

/// A frame as recorded and as a player shows it, both upright: JPEG files, small.
struct BeforeAfter {
    int frame = 0;
    std::string recorded;
    std::string steady;
};

struct ReportPictures {
    std::vector<BeforeAfter> strip;
    std::string crop;  ///< The frame that the crop is drawn on, as the sensor saw it. JPEG.
};

/// Decodes the sweep to its end.
/// @param cropFrame  a rendered frame.
/// @param progress   told the number of rendered frames read so far.
/// @throws ToolError, MediaError: see ShotReader.
ReportPictures reportPictures(const Sweep& sweep, int cropFrame,
                              const std::function<void(int)>& progress);

}  // namespace orbitwalk::tool
