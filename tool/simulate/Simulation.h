#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <optional>
#include <span>
#include <vector>

#include "simulate/ColourPlanes.h"
#include "simulate/MovingObject.h"
#include "simulate/Scene.h"
#include "simulate/ShakyPath.h"
#include "simulate/SimulationSettings.h"

namespace orbitwalk::tool {

/// A virtual camera that sweeps over a picture. Everything depends on the settings and the picture
/// alone, so that the same ones give the same frames. One thread at a time.
class Simulation {
  public:
    /// @param photo  the scene, BGR; empty: a textured scene of its own.
    /// @throws ToolError when the sweep does not fit the photograph, or is too long for a scene.
    Simulation(const SimulationSettings& settings, const cv::Mat3b& photo);

    std::span<const TrueMotion> truth() const { return mTruth; }
    /// Pixels of the photograph for one of the clip.
    double photoScale() const { return mPhotoScale; }
    std::size_t frameBytes() const;
    /// Renders a frame, counted from 0, as I420. @param i420  frameBytes bytes.
    void render(int frame, std::span<std::uint8_t> i420);

  private:
    void prepareScene(const cv::Mat3b& photo, const cv::Rect2d& extent);

    SimulationSettings mSettings;
    std::vector<CameraPose> mPoses;
    std::vector<TrueMotion> mTruth;
    media::ColourMatrix mMatrix;
    double mPhotoScale = 1;
    ScenePlacement mPlacement;  // Of the scene in mScene.
    ColourPlanes mScene;
    std::optional<MovingObject> mObject;
    ColourPlanes mPicture;
};

}  // namespace orbitwalk::tool
