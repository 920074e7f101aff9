#pragma once

#include <string>
#include <string_view>

#include "report/ReportData.h"

namespace orbitwalk::tool {

/// What report.js draws, as JSON in ASCII without "<": it may stand inside a script element.
/// Pictures are data: URIs; pixels are rounded to a thousandth, degrees to a hundred-thousandth.
std::string reportJson(const ReportData& data, const ReportPictures& pictures);

/// What a page tells and plays.
struct ReportContent {
    std::string_view json;    ///< See reportJson.
    std::string_view video;   ///< The bytes of the sweep's MP4.
    std::string_view record;  ///< Of its motion record.
};

/// The finished page: one HTML file with its styles, its scripts, the data and the sweep, which
/// loads nothing.
std::string reportPage(const ReportContent& content);

}  // namespace orbitwalk::tool
