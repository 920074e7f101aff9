#pragma once

#include <string_view>

/// The files of the page as they were built in.
namespace orbitwalk::tool::assets {

extern const std::string_view kPage;         ///< web/page.html
extern const std::string_view kStyle;        ///< web/report.css
extern const std::string_view kScript;       ///< web/report.js
extern const std::string_view kPlotStyle;    ///< uPlot's style sheet
extern const std::string_view kPlotScript;   ///< uPlot
extern const std::string_view kPlotLicence;  ///< uPlot's licence

}  // namespace orbitwalk::tool::assets
