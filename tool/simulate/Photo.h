#pragma once

#include <filesystem>
#include <opencv2/core.hpp>

namespace orbitwalk::tool {

/// Reads a picture of any format that OpenCV decodes, upright, as 8-bit BGR.
/// @throws ToolError naming the file and the reason.
cv::Mat3b readPhoto(const std::filesystem::path& file);

}  // namespace orbitwalk::tool
