#pragma once

#include <map>
#include <string>
#include <string_view>

/// What web pages that need no other file are put together from.
namespace orbitwalk::tool {

/// With padding, on one line.
std::string base64(std::string_view bytes);

/// Code that may stand inside a script element: neither ends it nor opens a comment in it. In
/// strings and patterns, the only places that can hold these, a backslash changes nothing.
std::string scriptText(std::string_view code);

/// Text for people, as markup.
std::string escaped(std::string_view text);

/// A page with each {{name}} replaced.
/// @throws std::out_of_range  for a name that has no text.
std::string filledPage(std::string_view page, const std::map<std::string_view, std::string>& texts);

/// The files of the player's page and the report's, as they were built in.
namespace assets {

extern const std::string_view kPlayerPage;    ///< web/player/page.html
extern const std::string_view kPlayerScript;  ///< The player, its record reader and its demuxer.

extern const std::string_view kReportPage;    ///< web/report/page.html
extern const std::string_view kReportStyle;   ///< its style, with uPlot's
extern const std::string_view kReportScript;  ///< its script, with uPlot
extern const std::string_view kPlotLicence;   ///< uPlot's licence

}  // namespace assets

}  // namespace orbitwalk::tool
