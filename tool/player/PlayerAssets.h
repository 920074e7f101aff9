#pragma once

#include <string_view>

/// The files of the page as they were built in.
namespace orbitwalk::tool::assets {

extern const std::string_view kPlayerPage;    ///< web/player/page.html
extern const std::string_view kPlayerScript;  ///< The player, its record reader and its demuxer.

}  // namespace orbitwalk::tool::assets
