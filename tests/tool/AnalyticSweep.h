#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "orbitwalk/MetaData.h"
#include "sweep/Tables.h"

/// A scene that is a smooth function of the place, and a sweep across it: everything that a
/// renderer makes of it can be told by evaluating the function.
namespace test_support {

struct SceneColour {
    double y = 0;
    double cb = 0;
    double cr = 0;
};

/// @param x, y  pixels.
SceneColour sceneAt(double x, double y);

/// One frame of the scene, I420, its top left pixel at (x, y); colour samples level with every
/// other column, half-way between two rows.
std::vector<std::uint8_t> sceneFrame(int width, int height, double x, double y);

/// A sweep of 10 frames of 320x240 to the right and down, unsteady by up to 6 pixels, whose
/// corrections put it on the straight line (8, 1) a frame; frame 4 is left out. Two border frames a
/// side. Crop (32, 24), 256x192.
struct AnalyticSweep {
    static constexpr int width = 320;
    static constexpr int height = 240;
    static constexpr int frames = 10;
    static constexpr int shake[frames][2] = {{0, 0}, {3, -2}, {-4, 5}, {6, 1},  {-20, 9},
                                             {2, 4}, {-5, 0}, {1, -6}, {-3, 2}, {0, 0}};

    /// Scene point at the top left of a recorded frame.
    static double left(int frame) { return 8 * frame + shake[frame][0]; }
    static double top(int frame) { return frame + shake[frame][1]; }

    /// As the motion finder measures it: the picture goes against the camera.
    static std::vector<orbitwalk::tool::SweepRow> measuredPath();
    __kelOBWKDXMetaData record() const;
    /// Writes sweep.mp4, sweep.obw and a sweep.csv into a directory, which is made. The path is
    /// one with the record's flags whose smoothing leaves the record's crop, which measuredPath
    /// does not: the corrections are no smoothing's. The motions of the frames 3 and 8 are
    /// repeated.
    void write(const std::filesystem::path& directory) const;
    void writeRecord(const std::filesystem::path& file, const __kelOBWKDXMetaData& record) const;
    void writeVideo(const std::filesystem::path& file, int frameCount) const;
};

}  // namespace test_support
