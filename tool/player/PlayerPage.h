#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orbitwalk::tool {

/// Bytes of the longest video that a page may hold: browsers take no text much longer, and base64
/// adds a third.
inline constexpr std::size_t kEmbeddedVideoLimit = 384'000'000;

/// A page that plays a sweep, with all it needs inside.
/// @param title   shown as the page's; UTF-8.
/// @param video   the bytes of an MP4. @param record  of its motion record.
std::string playerPage(std::string_view title, std::string_view video, std::string_view record);

}  // namespace orbitwalk::tool
