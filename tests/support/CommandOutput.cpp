#include "support/CommandOutput.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace test_support {

std::vector<std::string> linesOf(const std::string& command) {
    std::FILE* pipe = popen(command.c_str(), "r");
    std::vector<std::string> lines;
    char line[4096];
    while (std::fgets(line, sizeof line, pipe) != nullptr)
        lines.emplace_back(line, std::string(line).find_last_not_of('\n') + 1);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return lines;
}

}  // namespace test_support
