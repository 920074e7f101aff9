#pragma once

#include <string>
#include <string_view>

namespace orbitwalk::tool {

/// A page that plays a sweep, with all it needs inside.
/// @param title   shown as the page's; UTF-8.
/// @param video   the bytes of an MP4. @param record  of its motion record.
std::string playerPage(std::string_view title, std::string_view video, std::string_view record);

}  // namespace orbitwalk::tool
