#pragma once

#include "simulate/ColourPlanes.h"
#include "simulate/SimulationSettings.h"

namespace orbitwalk::tool {

/// A textured oval in front of the scene that crosses the whole frame during the clip, along the
/// sweep but against the picture's motion: what a measurement of the camera has to ignore.
class MovingObject {
  public:
    /// @param settings  object must be above 0.
    MovingObject(const SimulationSettings& settings, media::ColourMatrix matrix);

    /// Middle of the object in the given frame, pixels.
    cv::Point2d centre(int frame) const;
    void drawOver(ColourPlanes& picture, int frame) const;

  private:
    cv::Size2d mHalfAxes;
    cv::Point2d mStart;
    cv::Point2d mStep;
    ColourPlanes mTexture;
};

}  // namespace orbitwalk::tool
