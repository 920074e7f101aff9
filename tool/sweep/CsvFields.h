#pragma once

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

namespace orbitwalk::tool {

/// Cuts the next line off the text, without its end of line.
inline std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

/// Cuts the next field off the line. @return whether it is a number of the wanted kind.
template <typename Number>
bool takeField(std::string_view& line, Number& value) {
    const std::size_t comma = std::min(line.find(','), line.size());
    const char* end = line.data() + comma;
    const auto [stop, error] = std::from_chars(line.data(), end, value);
    line.remove_prefix(std::min(comma + 1, line.size()));
    return error == std::errc{} && stop == end;
}

/// Adds a comma and the fewest digits that read back as the same value, whatever the locale.
template <typename Number>
void appendField(std::string& line, Number value) {
    char digits[64];
    line += ',';
    line.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

}  // namespace orbitwalk::tool
