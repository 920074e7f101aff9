#pragma once

#include <map>
#include <string>
#include <string_view>

/// What web pages that need no other file are put together from.
namespace orbitwalk::tool {

/// With padding, on one line.
std::string base64(std::string_view bytes);

/// Code that may stand inside a script element: neither ends it nor opens a comment in it. In
/// strings and patterns, the only places that can hold these, a backslash changes nothing.
std::string scriptText(std::string_view code);

/// Text for people, as markup.
std::string escaped(std::string_view text);

/// A page with each {{name}} replaced.
/// @throws std::out_of_range  for a name that has no text.
std::string filledPage(std::string_view page, const std::map<std::string_view, std::string>& texts);

}  // namespace orbitwalk::tool
