#pragma once

#include <string>

#include "report/Pictures.h"
#include "report/ReportData.h"

namespace orbitwalk::tool {

/// What report.js draws, as JSON in ASCII without "<": it may stand inside a script element.
/// Pictures are data: URIs; pixels are rounded to a thousandth, degrees to a hundred-thousandth.
std::string reportJson(const ReportData& data, const ReportPictures& pictures);

}  // namespace orbitwalk::tool
