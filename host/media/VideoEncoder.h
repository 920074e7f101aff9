#pragma once

#include <vector>

#include "media/AvHandles.h"
#include "media/EncoderSettings.h"

namespace orbitwalk::media {

/// Encoders of this machine that take I420, the preferred first: libx264, other H.264, MPEG-4.
std::vector<const AVCodec*> encoderCandidates();

/// Opens the first of the candidates that accepts the settings, for use in an MP4.
/// @throws MediaError when none does.
CodecPtr openEncoder(const std::vector<const AVCodec*>& candidates,
                     const EncoderSettings& settings);

}  // namespace orbitwalk::media
