#pragma once

#include <cstdint>

#include "media/AvHandles.h"
#include "media/MediaTypes.h"

namespace orbitwalk::media {

/// Average rate by the container's word, or 30 when it does not say or says nonsense.
FrameRate frameRateOf(const AVStream& stream);

/// The container's frame count, or else its duration times the rate; 0 when it says neither.
std::int64_t expectedFramesOf(const AVFormatContext& container, const AVStream& stream);

/// By how much a player turns the picture, clockwise, to the nearest of 0, 90, 180 and 270 degrees.
int rotationDegreesOf(const AVStream& stream);

/// Width of a pixel over its height, by the container's word or else the picture's; 1 when neither
/// says.
double pixelAspectOf(const AVFormatContext& container, const AVStream& stream,
                     const AVFrame& picture);

bool hasAudio(const AVFormatContext& container);

}  // namespace orbitwalk::media
