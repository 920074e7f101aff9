#pragma once

#include <filesystem>
#include <string>

#include "files/TextFile.h"

namespace orbitwalk::tool {

/// Marks a directory as one that a run of the tool writes to, and removes what killed runs left.
/// All runs that write there hold a shared lock on the directory itself, which ends with their
/// process, however that ends; who gets the lock for itself alone knows that every temporary file
/// there belongs to nobody. Where a file system has no such locks, leftovers stay.
class DirectoryLock {
  public:
    explicit DirectoryLock(const std::filesystem::path& directory);

  private:
    Descriptor mDirectory;
};

/// Hidden names beside a file's own, new each time, that DirectoryLock knows: of the file being
/// written, and of the one that it replaces.
std::string partName(const std::string& name);
std::string formerName(const std::string& name);

}  // namespace orbitwalk::tool
