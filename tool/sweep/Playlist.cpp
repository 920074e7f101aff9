#include "sweep/Playlist.h"

#include <cmath>

namespace orbitwalk::tool {

namespace {

Affine affineOf(const RenderMatrix& matrix) {
    const auto& w = matrix.elements();
    // A matrix that flipWarpMatrix has mirrored gives the negative of the frame's x.
    const double sign = matrix.isMirrored() ? -1 : 1;
    return {sign * w[0], sign * w[3], sign * w[6], w[1], w[4], w[7]};
}

/// Left to right, within columns 0 to width - 1.
Affine mirror(int width) {
    return {-1, 0, width - 1.0, 0, 1, 0};
}

Affine pictureFromOutput(const RecordReader& record) {
    const CropRectangle crop = record.crop();
    const Affine scaled = translation(crop.x, crop.y) *
                          enlargement(static_cast<double>(crop.width) / record.width(),
                                      static_cast<double>(crop.height) / record.height());
    return record.isFlipped() ? scaled * mirror(record.width()) : scaled;
}

std::vector<int> renderedFrames(const RecordReader& record) {
    std::vector<int> frames;
    for (int i = 0; i < record.frameCount(); ++i)
        if (record.isRendered(i))
            frames.push_back(i);
    return frames;
}

}  // namespace

std::vector<Shot> playlist(const RecordReader& record, bool withBorderFrames) {
    const std::vector<int> frames = renderedFrames(record);
    std::vector<Shot> shots;
    if (frames.empty())
        return shots;
    const Affine cropped = pictureFromOutput(record);
    const auto show = [&](int frame, ShotKind kind, const RenderMatrix& matrix) {
        const Affine frameFromPicture = affineOf(matrix);
        shots.push_back({frame, kind, frameFromPicture, frameFromPicture * cropped});
    };
    for (int k = 0; withBorderFrames && k < record.leftBorderCount(); ++k)
        show(frames.front(), ShotKind::LeftBorder, record.leftBorder(k));
    for (const int frame : frames)
        show(frame, ShotKind::Sweep, record.renderMatrix(frame));
    for (int k = 0; withBorderFrames && k < record.rightBorderCount(); ++k)
        show(frames.back(), ShotKind::RightBorder, record.rightBorder(k));
    return shots;
}

Trajectory correctionOf(const Affine& frameFromPicture, FrameSize size) {
    const PicturePoint centre = frameCentre(size);
    const PicturePoint moved = inverse(frameFromPicture)(centre) - centre;
    return {moved.x, moved.y, std::atan2(-frameFromPicture.yx, frameFromPicture.yy)};
}

Affine uncorrected(const RecordReader& record) {
    return record.isFlipped() ? mirror(record.width()) : Affine{};
}

int displayRotation(const RecordReader& record) {
    const int turn = record.orientation();
    if (turn != 90 && turn != 270)
        return 0;
    return record.isFlipped() ? 360 - turn : turn;
}

}  // namespace orbitwalk::tool
