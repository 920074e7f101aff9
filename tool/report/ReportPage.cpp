#include "report/ReportPage.h"

#include <stdexcept>

#include "files/OwnFiles.h"
#include "report/ReportAssets.h"

namespace orbitwalk::tool {

namespace {

std::string replaced(std::string text, std::string_view what, std::string_view with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
        text.replace(at, what.size(), with);
    return text;
}

/// Code that may stand inside a script element: neither ends it nor opens a comment in it. In
/// strings and patterns, the only places that can hold these, a backslash changes nothing.
std::string scriptText(std::string_view code) {
    return replaced(replaced(std::string(code), "</script", "<\\/script"), "<!--", "<\\!--");
}

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
    constexpr std::string_view kOpen = "{{";
    constexpr std::string_view kClose = "}}";
    std::string_view rest = assets::kPage;
    std::string page;
    for (std::size_t at; (at = rest.find(kOpen)) != std::string_view::npos;) {
        page += rest.substr(0, at);
        rest.remove_prefix(at + kOpen.size());
        const std::size_t end = rest.find(kClose);
        page += valueOf(rest.substr(0, end), json);
        rest.remove_prefix(end + kClose.size());
    }
    return page += rest;
}

}  // namespace orbitwalk::tool
