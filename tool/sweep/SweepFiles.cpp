#include "sweep/SweepFiles.h"

#include <set>

#include "terminal/ToolError.h"

namespace orbitwalk::tool {

std::filesystem::path followed(const std::filesystem::path& path) {
    std::error_code error;
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(path, error);
    return error ? std::filesystem::absolute(path, error).lexically_normal() : canonical;
}

void refuseTakenNames(const std::filesystem::path& sweepDirectory,
                      std::initializer_list<std::filesystem::path> outputs) {
    std::set<std::filesystem::path> taken;
    for (const char* name : kSweepNames)
        taken.insert(followed(sweepDirectory / name));
    for (const std::filesystem::path& output : outputs)
        if (!output.empty() && !taken.insert(followed(output)).second)
            throw ToolError("cannot write " + output.string() + ": that name is taken");
}

}  // namespace orbitwalk::tool
