#include "report/Base64.h"

#include <cstdint>

namespace orbitwalk::tool {

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

}  // namespace orbitwalk::tool
