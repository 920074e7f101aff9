#include "terminal/Print.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "terminal/ToolError.h"

namespace orbitwalk::tool {

void printOut(const std::string& text) {
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0)
        throw ToolError(std::string("cannot print the output: ") + std::strerror(errno));
}

}  // namespace orbitwalk::tool
