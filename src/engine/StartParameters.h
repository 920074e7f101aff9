#pragma once

#include <cstdint>
#include <cstdio>

#include "orbitwalk/Engine.h"

namespace orbitwalk {

/// What a start has taken over.
struct CaptureSettings {
    _OBW_ENGINE_INIT_PARAM param{};   ///< Of the last start, also of one that was then refused.
    std::FILE* fpMP4 = nullptr;       ///< The caller's stream.
    void* pCallerMetaInfo = nullptr;  ///< The caller's record, of metaInfoSize bytes.
    std::int32_t metaInfoSize = 0;
};

/// Slots that the frame queue starts with.
inline constexpr std::int32_t kFrameSlots = 15;

/// Whether the pipeline can handle frames of this size, in pixels: large enough to reduce, sides
/// that fit the 16.16 steps of the reduction, and the bytes of the first slots within a signed
/// 32-bit integer (which the bytes of one frame then are as well).
bool isUsableFrameSize(std::int32_t width, std::int32_t height);

/// Orientation as the record keeps it: 90 and 270 change places, degrees.
std::int32_t recordedOrientation(std::int32_t orientation);

/// The flag as the caller's byte says it, 1 or 0. A caller in another language may have written any
/// value into it.
std::int32_t frontCamFlipped(const _OBW_ENGINE_INIT_PARAM& param);

}  // namespace orbitwalk
