#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "support/TestDirectory.h"
#include "tool/AnalyticSweep.h"
#include "tool/RunTool.h"

namespace test_support {

/// A sweep alone in a directory, for the commands that read one.
class SweepFixture : public testing::Test {
  protected:
    SweepFixture() { sweep.write(input); }

    struct Refusal {
        std::vector<std::string> arguments;  ///< After the command and the sweep.
        const char* complaint;
        std::function<void()> damage = [] {};
        int exitCode = 1;
    };
    /// Expects that the command refuses each, of a sweep that is whole but for the damage, and
    /// leaves nothing beside it.
    template <std::size_t N>
    void expectRefusals(const std::string& command, const Refusal (&refusals)[N]) const {
        const TestDirectory whole;
        std::filesystem::copy(input, whole / "sweep");
        for (const Refusal& refusal : refusals) {
            SCOPED_TRACE(testing::PrintToString(refusal.arguments));
            std::filesystem::remove_all(input);
            std::filesystem::copy(whole / "sweep", input);
            refusal.damage();
            std::vector<std::string> arguments{command, input};
            arguments.insert(arguments.end(), refusal.arguments.begin(), refusal.arguments.end());
            expectRefusal(runTool(arguments), refusal.complaint, refusal.exitCode);
            EXPECT_EQ(namesIn(directory / ""), std::vector<std::string>{"sweep"});
        }
    }

    const AnalyticSweep sweep{};
    const TestDirectory directory;
    const std::filesystem::path input = directory / "sweep";
};

}  // namespace test_support
