#include "batch/ClipJob.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "files/OutputFiles.h"
#include "files/TextFile.h"
#include "sweep/SweepFiles.h"
#include "terminal/Print.h"
#include "terminal/ProgressBar.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

using Json = nlohmann::ordered_json;

/// Sends stdout into a file while it lives.
class Redirection {
  public:
    explicit Redirection(const std::string& file)
        : mFormer(dup(STDOUT_FILENO)),
          mFile(open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
        if (!mFormer || !mFile || dup2(mFile.get(), STDOUT_FILENO) < 0)
            throw ToolError("cannot write " + file + ": " + std::strerror(errno));
    }
    ~Redirection() { dup2(mFormer.get(), STDOUT_FILENO); }
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;

  private:
    Descriptor mFormer;
    Descriptor mFile;
};

std::string commandLineOf(const Arguments& arguments) {
    std::string line = "orbitwalk";
    for (const std::string& argument : arguments)
        line += ' ' + shown(argument);
    return line + '\n';
}

Json parsed(const char* file) {
    return Json::parse(readTextFile(file));
}

/// What the summary tells of the clip: as the files in its folder have it.
Json resultJson(const Clip& clip) {
    const Json sweep = parsed(kSweepSummaryName);
    Json result{{"frames", sweep.at("frames")},
                {"complete", sweep.at("complete")},
                {"verdict", sweep.value("verdict", Json())}};
    if (clip.refine)
        result["refined"] = parsed(kRefinedSummaryName).at("verdict");
    if (clip.evaluate)
        result["evaluation"] = parsed("evaluation.json");
    return result;
}

/// Regular files of the working directory.
std::vector<std::string> fileNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("."))
        if (entry.is_regular_file())
            names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
}

void writeSidecar(const Json& sidecar) {
    OutputFiles outputs(false);
    outputs.write(kClipSidecarName, jsonText(sidecar));
    outputs.commit();
}

}  // namespace

int runClip(const ClipJob& job, const std::function<int(const Arguments&)>& runCommand) {
    // Before the work: a clip that changes meanwhile is not taken for the one that was read.
    Json sidecar = identityOf(job);
    Json seconds = Json::object();
    for (const ClipStage& stage : stagesOf(job)) {
        std::fputs(commandLineOf(stage.arguments).c_str(), stderr);
        const Redirection printed(stage.outputFile.empty() ? "/dev/null" : stage.outputFile);
        const Stopwatch watch;
        if (const int status = runCommand(stage.arguments); status != 0)
            return status;
        seconds[stage.name] = watch.seconds();
    }
    sidecar["result"] = resultJson(job.clip);
    sidecar["files"] = fileNames();
    sidecar["seconds"] = seconds;
    writeSidecar(sidecar);
    return 0;
}

}  // namespace orbitwalk::tool
