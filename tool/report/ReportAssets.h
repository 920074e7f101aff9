#pragma once

#include <string_view>

/// The files of the page as they were built in.
namespace orbitwalk::tool::assets {

extern const std::string_view kPage;         ///< web/report/page.html
extern const std::string_view kStyle;        ///< its style, with uPlot's
extern const std::string_view kScript;       ///< its script, with uPlot
extern const std::string_view kPlotLicence;  ///< uPlot's licence

}  // namespace orbitwalk::tool::assets
