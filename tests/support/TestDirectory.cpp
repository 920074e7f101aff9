#include "support/TestDirectory.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;

namespace test_support {

TestDirectory::TestDirectory() {
    std::string path = (fs::temp_directory_path() / "orbitwalk-test-XXXXXX").string();
    if (!mkdtemp(path.data()))
        throw std::runtime_error("no temporary directory");
    mPath = path;
}

TestDirectory::~TestDirectory() {
    fs::remove_all(mPath);
}

std::vector<std::string> namesIn(const fs::path& directory) {
    std::vector<std::string> names;
    if (fs::is_directory(directory))
        for (const auto& entry : fs::directory_iterator(directory))
            names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
}

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void writeFile(const fs::path& file, const std::string& content) {
    std::ofstream(file, std::ios::binary) << content;
}

}  // namespace test_support
