#pragma once

#include <string_view>

/// The files of the player's page and the report's, as they were built in.
namespace orbitwalk::tool::assets {

extern const std::string_view kPlayerPage;    ///< web/player/page.html
extern const std::string_view kPlayerScript;  ///< The player, its record reader and its demuxer.

extern const std::string_view kReportPage;    ///< web/report/page.html
extern const std::string_view kReportStyle;   ///< its style, with uPlot's
extern const std::string_view kReportScript;  ///< its script, with uPlot
extern const std::string_view kPlotLicence;   ///< uPlot's licence

}  // namespace orbitwalk::tool::assets
