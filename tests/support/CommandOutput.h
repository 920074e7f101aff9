#pragma once

#include <string>
#include <vector>

namespace test_support {

/// Lines that a shell command prints on stdout; it must exit with 0.
std::vector<std::string> linesOf(const std::string& command);

}  // namespace test_support
