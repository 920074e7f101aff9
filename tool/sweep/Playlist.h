#pragma once

#include <vector>

#include "orbitwalk/RecordReader.h"
#include "sweep/Affine.h"

namespace orbitwalk::tool {

enum class ShotKind { LeftBorder, Sweep, RightBorder };

/// One picture that a player shows.
struct Shot {
    int frame = 0;  ///< Of the video.
    ShotKind kind = ShotKind::Sweep;
    /// From the picture as the record knows it, before cropping, scaling and mirroring.
    Affine frameFromPicture;
    /// From what is shown: the crop rectangle scaled to the size of the frame, mirrored where the
    /// preview was.
    Affine frameFromOutput;
};

/// Shots of the frames to render, in the order shown; with the border frames, copies of the first
/// rendered frame before the sweep and of the last one after it. Empty when the record renders no
/// frame. Frame numbers never fall from one shot to the next.
std::vector<Shot> playlist(const RecordReader& record, bool withBorderFrames = true);

/// How a frame is moved into the picture: its centre by pixels, and the turn about it.
Trajectory correctionOf(const Affine& frameFromPicture, FrameSize size);

/// How a player shows a frame that is not stabilised: whole, mirrored where the preview was.
Affine uncorrected(const RecordReader& record);

/// By how much players turn the pictures of a sweep, clockwise, so that they stand upright: 0, 90
/// or 270 degrees. It is the record's orientation (360 is 0); mirrored pictures turn the other way,
/// so that they show what the preview did.
int displayRotation(const RecordReader& record);

}  // namespace orbitwalk::tool
