#include "files/PageText.h"

#include <cstdint>

namespace orbitwalk::tool {

namespace {

std::string replaced(std::string text, std::string_view what, std::string_view with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
        text.replace(at, what.size(), with);
    return text;
}

}  // namespace

std::string base64(std::string_view bytes) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t k = i; k < i + 3; ++k)
            group = group << 8 | (k < bytes.size() ? static_cast<unsigned char>(bytes[k]) : 0u);
        for (int shift = 18; shift >= 0; shift -= 6)
            text += kDigits[group >> shift & 63];
        for (std::size_t k = bytes.size(); k < i + 3; ++k)
            text[text.size() - (i + 3 - k)] = '=';
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
                       const std::function<std::string_view(std::string_view name)>& valueOf) {
    constexpr std::string_view kOpen = "{{";
    constexpr std::string_view kClose = "}}";
    std::string filled;
    for (std::size_t at; (at = page.find(kOpen)) != std::string_view::npos;) {
        filled += page.substr(0, at);
        page.remove_prefix(at + kOpen.size());
        const std::size_t end = page.find(kClose);
        filled += valueOf(page.substr(0, end));
        page.remove_prefix(end + kClose.size());
    }
    return filled += page;
}

}  // namespace orbitwalk::tool
