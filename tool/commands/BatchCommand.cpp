#include <unistd.h>

#include <algorithm>
#include <memory>
#include <thread>

#include "batch/Batch.h"
#include "batch/ClipJob.h"
#include "batch/ClipProcess.h"
#include "commands/Commands.h"
#include "terminal/Print.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

struct BatchArguments {
    BatchOptions batch;
    std::string shard;
    CommonOptions common;
};

struct ClipArguments {
    pid_t parent = 0;
    std::string job;
};

/// A clip keeps about two cores busy: the encoder has one, measuring the other.
int defaultJobs() {
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()) / 2);
}

void run(BatchArguments arguments) {
    BatchOptions& options = arguments.batch;
    if (!arguments.shard.empty())
        options.shard = parseShard(arguments.shard);
    options.force = arguments.common.force;
    const BatchResult result = runBatch(options);
    printSummary(arguments.common, toJsonText(result), toText(result));
    if (result.failed > 0)
        throw ToolError(std::to_string(result.failed) + " of " + std::to_string(result.clips()) +
                        " clips failed: see ID.error.txt in " + options.directory.string());
}

void runOneClip(const ClipArguments& arguments) {
    if (!endWithParent(arguments.parent))
        throw ToolError("a clip is made by orbitwalk batch alone");
    const int status = runClip(parseClipJob(arguments.job), [](const Arguments& command) {
        Arguments words = command;
        std::vector<char*> argv{const_cast<char*>("orbitwalk")};
        for (std::string& word : words)
            argv.push_back(word.data());
        return runProgram(static_cast<int>(argv.size()), argv.data());
    });
    if (status != 0)
        throw CommandFailed{status};
}

}  // namespace

void addBatchCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "batch", "Capture, refine, render and judge many videos: a folder each, and an overview");
    const auto arguments = std::make_shared<BatchArguments>();
    BatchOptions& options = arguments->batch;
    options.jobs = defaultJobs();
    command
        ->add_option("MANIFEST", options.manifest,
                     "CSV with the columns id, video and, as options or yes, capture, refine, "
                     "render, evaluate; or one JSON object a line")
        ->required();
    command
        ->add_option("-o,--output", options.directory,
                     "Directory of the results; what is complete in it stays")
        ->required();
    command
        ->add_option("--jobs", options.jobs,
                     "Clips at a time, each in a process of its own; one for two cores without it")
        ->check(CLI::Range(1, 1024));
    command->add_option("--shard", arguments->shard,
                        "INDEX/COUNT: take every COUNT-th clip only, counted from INDEX, from 0");
    addCommonOptions(*command, arguments->common, Writes::Files);
    command->callback([arguments] { run(*arguments); });
}

void addRunClipCommand(CLI::App& app) {
    // Without a group: it is no command for people.
    auto* command = app.add_subcommand(kRunClipCommand, "Make one clip of a batch")->group("");
    const auto arguments = std::make_shared<ClipArguments>();
    command->add_option("PARENT", arguments->parent)->required();
    command->add_option("JOB", arguments->job)->required();
    command->callback([arguments] { runOneClip(*arguments); });
}

}  // namespace orbitwalk::tool
