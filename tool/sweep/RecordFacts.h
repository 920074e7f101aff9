#pragma once

#include <string>

#include "orbitwalk/Engine.h"
#include "orbitwalk/MetaData.h"
#include "orbitwalk/RecordReader.h"

namespace orbitwalk::tool {

/// "landscape" and the like, "unknown" where the format has no name for the code.
std::string orientationName(int degrees);
std::string directionName(int direction);
std::string cameraName(int type);

/// What became of a sweep's smoothing.
enum class Smoothing {
    Smoothed,
    FellBack,     ///< No smoothing kept enough of the picture: nothing is corrected.
    TooFewFrames  ///< Fewer than three frames are rendered: nothing is corrected.
};

/// The record shows it: the engine does not correct where two frames or less are selected, and
/// what it falls back to is a crop of one pixel less than the frame with identity matrices.
Smoothing smoothingOf(const __kelOBWKDXMetaData& record);

/// Frames in the range whose flag is 1.
int renderedFrames(const __kelOBWKDXMetaData& record);

/// Share of the frame's area that the crop shows.
double viewKeptBy(const RecordReader& record);

/// In words, and as a word of JSON.
const char* wordsOf(Smoothing smoothing);
const char* keyOf(Smoothing smoothing);
/// The same for the direction of a capture; "vertical" for either way up or down.
const char* keyOf(OBWDirection direction);

}  // namespace orbitwalk::tool
