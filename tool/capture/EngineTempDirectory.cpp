#include "capture/EngineTempDirectory.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "orbitwalk/Engine.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

// The engine takes 199 characters and appends names of its own to the path.
constexpr std::size_t kLongestPath = 190;

void setEngineDirectory(const std::string& path) {
    std::memset(localTmpDir, 0, sizeof localTmpDir);
    path.copy(localTmpDir, sizeof localTmpDir - 1);
}

}  // namespace

EngineTempDirectory::EngineTempDirectory() : mFormer(localTmpDir) {
    const char* variable = std::getenv("TMPDIR");
    const std::string root = variable && *variable ? variable : "/tmp";
    mDirectory = root + "/orbitwalk-XXXXXX";
    if ((mDirectory + "/engine/").size() > kLongestPath)
        throw ToolError("the temporary directory's path is too long: " + root);
    if (!mkdtemp(mDirectory.data()))
        throw ToolError("cannot make a temporary directory in " + root + ": " +
                        std::strerror(errno));
    setEngineDirectory(mDirectory + "/engine/");
}

EngineTempDirectory::~EngineTempDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(mDirectory, ignored);
    setEngineDirectory(mFormer);
}

}  // namespace orbitwalk::tool
