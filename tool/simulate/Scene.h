#pragma once

#include <filesystem>
#include <opencv2/core.hpp>

/// The picture that the virtual camera sweeps across.
namespace orbitwalk::tool {

/// Reads a picture of any format that FFmpeg decodes, upright, as 8-bit BGR.
/// @throws ToolError naming the file and the reason.
cv::Mat3b readPhoto(const std::filesystem::path& file);

/// A picture of its own for sweeps without a photograph: coloured ellipses and boxes that cover one
/// another, with sizes of every order (the dead-leaves model, whose edges and statistics are those
/// of natural scenes), and a fine grain on every surface. Depends on size and generator alone.
cv::Mat3b texturedScene(cv::Size size, cv::RNG random);

}  // namespace orbitwalk::tool
