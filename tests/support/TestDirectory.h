#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace test_support {

/// A fresh directory that is removed with all that it holds.
class TestDirectory {
  public:
    TestDirectory();
    ~TestDirectory();
    TestDirectory(const TestDirectory&) = delete;
    TestDirectory& operator=(const TestDirectory&) = delete;

    std::filesystem::path operator/(const std::filesystem::path& name) const {
        return mPath / name;
    }

  private:
    std::filesystem::path mPath;
};

/// Names in a directory, sorted, hidden ones too; empty when there is no such directory.
std::vector<std::string> namesIn(const std::filesystem::path& directory);

std::string contentOf(const std::filesystem::path& file);
void writeFile(const std::filesystem::path& file, const std::string& content);

}  // namespace test_support
