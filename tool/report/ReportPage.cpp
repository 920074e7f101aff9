#include "report/ReportPage.h"

#include <stdexcept>

#include "files/OwnFiles.h"
#include "files/PageText.h"
#include "report/ReportAssets.h"

namespace orbitwalk::tool {

namespace {

std::string_view valueOf(std::string_view name, std::string_view json) {
    static const std::string plotScript = scriptText(assets::kPlotScript);
    static const std::string script = scriptText(assets::kScript);
    if (name == "mark")
        return kMark;
    if (name == "licence")
        return assets::kPlotLicence;
    if (name == "plot-style")
        return assets::kPlotStyle;
    if (name == "style")
        return assets::kStyle;
    if (name == "data")
        return json;
    if (name == "plot-script")
        return plotScript;
    if (name == "script")
        return script;
    throw std::logic_error("the page has an unknown place: " + std::string(name));
}

}  // namespace

std::string reportPage(std::string_view json) {
    return filledPage(assets::kPage, [&](std::string_view name) { return valueOf(name, json); });
}

}  // namespace orbitwalk::tool
