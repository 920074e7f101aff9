#pragma once

#include <string>
#include <vector>

/// Logs as files in tests/logs. There @ stands for a number or an address, \n and \t for what they
/// are in C, a | at the end of a line for nothing behind a space; lines that begin with [user] or
/// [eng] are said on builds of that type only.
namespace test_support {

/// The lines of a log. @param name  of its file, without the ending.
std::vector<std::string> transcript(const std::string& name, const std::string& buildType = "user");

/// Expects a log's lines and no others.
void expectTranscript(const std::vector<std::string>& said, const std::string& name,
                      const std::string& buildType = "user");

}  // namespace test_support
