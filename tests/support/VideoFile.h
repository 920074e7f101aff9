#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "media/VideoEncoder.h"

namespace test_support {

/// I420.
using Frame = std::vector<std::uint8_t>;

/// Writes so many frames as an MP4.
void writeVideo(const std::filesystem::path& file,
                const orbitwalk::media::EncoderSettings& settings, int frames,
                const std::function<Frame(int)>& frameAt);

/// What VideoReader gives for a file, all of it.
std::vector<Frame> readVideo(const std::filesystem::path& file);

}  // namespace test_support
