#include "files/PageText.h"

#include <cstdint>

extern "C" {
#include <libavutil/base64.h>
}

namespace orbitwalk::tool {

namespace {

std::string replaced(std::string text, std::string_view what, std::string_view with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
        text.replace(at, what.size(), with);
    return text;
}

}  // namespace

std::string base64(std::string_view bytes) {
    // libavutil takes no more than an int counts; whole groups of three need no padding.
    constexpr std::size_t kMostAtOnce = 3 << 20;
    std::string text;
    std::string part(AV_BASE64_SIZE(kMostAtOnce), '\0');
    for (std::size_t i = 0; i < bytes.size(); i += kMostAtOnce) {
        const std::string_view some = bytes.substr(i, kMostAtOnce);
        text += av_base64_encode(part.data(), static_cast<int>(part.size()),
                                 reinterpret_cast<const std::uint8_t*>(some.data()),
                                 static_cast<int>(some.size()));
    }
    return text;
}

std::string scriptText(std::string_view code) {
    return replaced(replaced(std::string(code), "</script", "<\\/script"), "<!--", "<\\!--");
}

std::string escaped(std::string_view text) {
    return replaced(replaced(std::string(text), "&", "&amp;"), "<", "&lt;");
}

std::string filledPage(std::string_view page,
                       const std::map<std::string_view, std::string>& texts) {
    constexpr std::string_view kOpen = "{{";
    constexpr std::string_view kClose = "}}";
    std::string filled;
    for (std::size_t at; (at = page.find(kOpen)) != std::string_view::npos;) {
        filled += page.substr(0, at);
        page.remove_prefix(at + kOpen.size());
        const std::size_t end = page.find(kClose);
        filled += texts.at(page.substr(0, end));
        page.remove_prefix(end + kClose.size());
    }
    return filled += page;
}

}  // namespace orbitwalk::tool
