#include "files/DirectoryLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <random>
#include <regex>
#include <thread>

namespace fs = std::filesystem;

namespace orbitwalk::tool {
namespace {

constexpr char kPart[] = ".part-";
constexpr char kFormer[] = ".former-";

bool isTemporary(const std::string& name) {
    static const std::regex pattern(R"(\.[^/]+\.(part|former)-[0-9a-f]{16})");
    return std::regex_match(name, pattern);
}

void removeLeftovers(const fs::path& directory) {
    std::error_code ignored;
    for (fs::directory_iterator entry(directory, ignored), end; entry != end;
         entry.increment(ignored))
        if (isTemporary(entry->path().filename().string()) &&
            !fs::is_directory(entry->symlink_status(ignored)))
            fs::remove(entry->path(), ignored);
}

std::string hiddenName(const std::string& name, const char* purpose) {
    std::random_device random;
    char digits[20];
    std::snprintf(digits, sizeof digits, "%08x%08x", static_cast<unsigned>(random()),
                  static_cast<unsigned>(random()));
    return "." + name + purpose + digits;
}

}  // namespace

DirectoryLock::DirectoryLock(const fs::path& directory)
    : mDirectory(
          open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (!mDirectory)
        return;
    if (flock(mDirectory.get(), LOCK_EX | LOCK_NB) == 0)
        removeLeftovers(directory.empty() ? "." : directory);
    // Another run may be removing leftovers right now. One that holds the lock for itself for long
    // is not of this tool and keeps the others from removing anything, too.
    for (int tries = 0; tries < 50 && flock(mDirectory.get(), LOCK_SH | LOCK_NB) != 0; ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

std::string partName(const std::string& name) {
    return hiddenName(name, kPart);
}

std::string formerName(const std::string& name) {
    return hiddenName(name, kFormer);
}

}  // namespace orbitwalk::tool
