#include "report/ReportData.h"

#include <algorithm>
#include <numbers>

#include "sweep/SmoothedPath.h"
#include "sweep/SweepFiles.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

void set(Track& track, int frame, const Trajectory& position) {
    track.x[frame] = position.x;
    track.y[frame] = position.y;
    track.angle[frame] = position.a * 180 / std::numbers::pi;
}

void addMotion(ReportData& data, std::span<const SweepRow> path) {
    data.motion = Track(data.frames);
    for (int i = 1; i < data.frames; ++i)
        set(data.motion, i, path[i].position - path[i - 1].position);
    for (const SweepRow& row : path)
        data.repeated.push_back(row.repeated);
    data.repeatedMotions = static_cast<int>(std::ranges::count(data.repeated, true));
    data.repeatedWarning = repeatedMotionWarning(data.repeatedMotions, data.frames);
}

void addPaths(ReportData& data, const RecordReader& record, std::span<const SweepRow> path) {
    const SmoothedPath paths = smoothedPath(path, record.raw().startIndex, record.raw().endIndex,
                                            record.width(), record.height());
    data.smoothing = smoothingOf(record.raw());
    data.feedbackStep = paths.feedbackStep;
    data.measured = data.gaussian = data.smoothed = Track(data.frames);
    if (paths.reference >= 0)
        set(data.measured, paths.reference, {});
    for (std::size_t v = 0; v < paths.frames.size(); ++v) {
        set(data.measured, paths.frames[v], paths.measured[v]);
        set(data.gaussian, paths.frames[v], paths.gaussian[v]);
        set(data.smoothed, paths.frames[v], paths.smoothed[v]);
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
    data.room.right[shot.frame] = data.width - right.x;
    data.room.top[shot.frame] = top.y;
    data.room.bottom[shot.frame] = data.height - bottom.y;
}

void addCorrections(ReportData& data, const RecordReader& record) {
    const std::vector<Shot> shots = playlist(record, false);
    data.rendered = static_cast<int>(shots.size());
    data.correction = Track(data.frames);
    data.room = Room(data.frames);
    for (const Shot& shot : shots) {
        set(data.correction, shot.frame,
            correctionOf(shot.frameFromPicture, {record.width(), record.height()}));
        addRoom(data, shot);
    }
    const Shot& middle = shots.at(shots.size() / 2);
    data.cropView = {middle.frame, shownOf(middle, data.crop)};
}

}  // namespace

ReportData reportData(const RecordReader& record, std::span<const SweepRow> path,
                      const std::optional<Summary>& capture) {
    ReportData data;
    data.capture = capture;
    data.width = record.width();
    data.height = record.height();
    data.frames = record.frameCount();
    data.range = record.range();
    data.direction = directionName(record.direction());
    data.orientation = orientationName(record.orientation());
    data.flipped = record.isFlipped();
    data.crop = record.crop();
    addMotion(data, path);
    addPaths(data, record, path);
    addCorrections(data, record);
    return data;
}

}  // namespace orbitwalk::tool
