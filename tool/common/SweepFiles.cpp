#include "common/SweepFiles.h"

#include <set>

#include "common/ToolError.h"

namespace orbitwalk::tool {

void refuseTakenNames(const std::filesystem::path& sweepDirectory,
                      std::initializer_list<std::filesystem::path> outputs) {
    std::set<std::filesystem::path> taken;
    for (const char* name : kSweepNames)
        taken.insert(std::filesystem::weakly_canonical(sweepDirectory / name));
    for (const std::filesystem::path& output : outputs)
        if (!output.empty() && !taken.insert(std::filesystem::weakly_canonical(output)).second)
            throw ToolError("cannot write " + output.string() + ": that name is taken");
}

}  // namespace orbitwalk::tool
