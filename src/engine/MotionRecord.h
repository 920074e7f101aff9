#pragma once

#include <cstdint>
#include <memory>

#include "engine/SweepSelection.h"
#include "orbitwalk/Engine.h"
#include "orbitwalk/MetaData.h"

/// @file
/// What the engine writes into the motion record; the stabiliser writes the rest.

namespace orbitwalk {

/// The working record of a capture that begins. @throws std::bad_alloc
std::unique_ptr<__kelOBWKDXMetaData> beginRecord(const _OBW_ENGINE_INIT_PARAM& param);

/// Stores how far a frame stands along the sweep from the reference frame.
/// @param orientation  degrees
/// @param dx, dy       pixels
void insertTransformInfoInOBWMetaData(__kelOBWKDXMetaData& record, std::int32_t orientation,
                                      double dx, double dy, int frameIndex);

/// Writes the number of frames, the range of the rendered ones and the flip flag.
/// @param orientation  degrees, only logged
void fillHeader(__kelOBWKDXMetaData& record, const _OBW_ENGINE_INIT_PARAM& param,
                std::int32_t numFrames, RenderRange range, std::int32_t orientation);

}  // namespace orbitwalk
