#include "report/ReportData.h"

#include <algorithm>
#include <span>

#include "sweep/Playlist.h"
#include "sweep/SmoothedPath.h"

namespace orbitwalk::tool {

namespace {

Summary figuresOf(const Sweep& sweep, std::span<const SweepRow> path) {
    if (sweep.summary && sweep.summary->schema > 0)
        return *sweep.summary;
    Summary summary = sweep.summary.value_or(Summary{});
    fillFigures(summary, (sweep.refinement ? sweep.refinement->engineRecord : sweep.record).raw(),
                path);
    return summary;
}

void addMotion(ReportData& data, std::span<const SweepRow> path) {
    data.motion = Track(data.summary.frames);
    for (int i = 1; i < data.summary.frames; ++i)
        data.motion.set(i, path[i].position - path[i - 1].position);
    for (const SweepRow& row : path)
        data.repeated.push_back(row.repeated);
    data.repeatedWarning = unmeasuredWarning(data.summary.repeatedMotions, data.summary.frames);
}

void addPaths(ReportData& data, const RecordReader& record, std::span<const SweepRow> path) {
    const SmoothedPath paths = smoothedPath(path, record.raw().startIndex, record.raw().endIndex,
                                            record.width(), record.height());
    data.feedbackStep = paths.feedbackStep;
    data.measured = data.gaussian = data.smoothed = Track(record.frameCount());
    if (paths.reference >= 0)
        data.measured.set(paths.reference, {});
    for (std::size_t v = 0; v < paths.frames.size(); ++v) {
        data.measured.set(paths.frames[v], paths.measured[v]);
        data.gaussian.set(paths.frames[v], paths.gaussian[v]);
        data.smoothed.set(paths.frames[v], paths.smoothed[v]);
    }
}

/// Corners of a rectangle of pixels, edges included, clockwise from the top left. Coordinates count
/// from the centre of the first pixel.
std::array<PicturePoint, 4> cornersOf(const CropRectangle& crop) {
    const double left = crop.x - 0.5;
    const double top = crop.y - 0.5;
    const double right = left + crop.width;
    const double bottom = top + crop.height;
    return {{{left, top}, {right, top}, {right, bottom}, {left, bottom}}};
}

/// The crop rectangle on a frame that is corrected, in pixels from the frame's top left corner.
std::array<PicturePoint, 4> shownOf(const Shot& shot, const CropRectangle& crop) {
    std::array<PicturePoint, 4> corners = cornersOf(crop);
    for (PicturePoint& corner : corners) {
        corner = shot.frameFromPicture(corner);
        corner = {corner.x + 0.5, corner.y + 0.5};
    }
    return corners;
}

void addRoom(ReportData& data, const Shot& shot) {
    const auto shown = shownOf(shot, data.crop);
    const auto [left, right] = std::ranges::minmax(shown, {}, &PicturePoint::x);
    const auto [top, bottom] = std::ranges::minmax(shown, {}, &PicturePoint::y);
    data.room.left[shot.frame] = left.x;
    data.room.right[shot.frame] = data.summary.width - right.x;
    data.room.top[shot.frame] = top.y;
    data.room.bottom[shot.frame] = data.summary.height - bottom.y;
}

void addCorrections(ReportData& data, const RecordReader& record) {
    const std::vector<Shot> shots = playlist(record, false);
    data.correction = Track(record.frameCount());
    data.room = Room(record.frameCount());
    for (const Shot& shot : shots) {
        data.correction.set(shot.frame,
                            correctionOf(shot.frameFromPicture, {record.width(), record.height()}));
        addRoom(data, shot);
    }
    const Shot& middle = shots.at(shots.size() / 2);
    data.cropView = {middle.frame, shownOf(middle, data.crop)};
}

}  // namespace

ReportData reportData(const Sweep& sweep) {
    const std::vector<SweepRow>& path = requirePath(sweep);
    const RecordReader& record = sweep.record;
    ReportData data;
    data.summary = figuresOf(sweep, path);
    data.captureKnown = sweep.summary.has_value();
    data.steadiness = *steadinessOf(sweep);
    data.direction = data.summary.direction == OBW_DIRECTION_TOP2BOTTOM
                         ? "vertical, which is not supported"
                         : directionName(record.direction());
    data.orientation = orientationName(record.orientation());
    data.flipped = record.isFlipped();
    data.crop = record.crop();
    addMotion(data, path);
    addPaths(data, record, path);
    addCorrections(data, record);
    if (sweep.refinement)
        data.refined = refinedPaths(sweep);
    return data;
}

}  // namespace orbitwalk::tool
