#include "support/Transcript.h"

#include <gmock/gmock.h>

#include <cstring>
#include <fstream>
#include <regex>

namespace test_support {

std::vector<std::string> transcript(const std::string& name, const std::string& buildType) {
    std::vector<std::string> lines;
    std::ifstream file(TRANSCRIPTS "/" + name + ".log");
    static const std::regex form("(?:\\[(\\w+)\\] )?(.*?)\\|?");
    for (std::string line; std::getline(file, line);) {
        std::smatch parts;
        std::regex_match(line, parts, form);
        if (parts[1].matched && parts[1] != buildType)
            continue;
        const std::string text = std::regex_replace(parts[2].str(), std::regex("\\\\n"), "\n");
        lines.push_back(std::regex_replace(text, std::regex("\\\\t"), "\t"));
    }
    EXPECT_FALSE(lines.empty()) << name;
    return lines;
}

void expectTranscript(const std::vector<std::string>& said, const std::string& name,
                      const std::string& buildType) {
    std::vector<testing::Matcher<std::string>> expected;
    for (const std::string& line : transcript(name, buildType)) {
        std::string pattern;
        for (const char c : line) {
            if (c == '@')
                pattern += "-?(0x[0-9a-f]+|[0-9]+[.][0-9]{6}|[0-9]+)";
            else
                pattern += std::string(std::strchr("[](){}.*+?^$|\\", c) ? "\\" : "") + c;
        }
        expected.push_back(testing::MatchesRegex(pattern));
    }
    EXPECT_THAT(said, testing::ElementsAreArray(expected)) << name << " on a build " << buildType;
}

}  // namespace test_support
