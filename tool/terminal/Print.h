#pragma once

#include <string>

namespace orbitwalk::tool {

/// Prints on stdout, to the end. @throws ToolError with the reason when it cannot.
void printOut(const std::string& text);

}  // namespace orbitwalk::tool
