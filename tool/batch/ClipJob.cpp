#include "batch/ClipJob.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "sweep/Checksum.h"
#include "sweep/Summary.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr int kClipSchema = 1;

Json jsonOf(const std::optional<Arguments>& options) {
    return options ? Json(*options) : Json(nullptr);
}

Json optionsJson(const Clip& clip) {
    return {{"capture", clip.capture},
            {"refine", jsonOf(clip.refine)},
            {"render", jsonOf(clip.render)},
            {"evaluate", jsonOf(clip.evaluate)}};
}

std::optional<Arguments> optionsIn(const Json& json) {
    return json.is_null() ? std::nullopt : std::optional(json.get<Arguments>());
}

bool namesFile(const fs::path& path) {
    std::error_code cannotTell;
    return fs::is_regular_file(path, cannotTell);
}

/// The options with every file of theirs under a name that holds in any folder.
Arguments absolute(const Arguments& options, const fs::path& base) {
    Arguments result;
    for (const std::string& option : options) {
        const fs::path file = base / option;
        result.push_back(namesFile(file) ? file.string() : option);
    }
    return result;
}

void append(Arguments& arguments, const Arguments& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
}

/// Whether capture can refine as it decodes: of refine's options it has one.
bool refinesInCapture(const Arguments& options) {
    return options.empty() || options.front().starts_with("--keep=") ||
           (options.size() == 2 && options.front() == "--keep");
}

Arguments withRefined(Arguments arguments, const Clip& clip) {
    if (clip.refine && std::ranges::find(arguments, "--refined") == arguments.end())
        arguments.emplace_back("--refined");
    return arguments;
}

void addInputs(const Arguments& options, const fs::path& base, Json& inputs) {
    for (const std::string& option : options)
        if (namesFile(base / option))
            inputs[option] = sha256OfFile(base / option);
}

}  // namespace

std::vector<ClipStage> stagesOf(const ClipJob& job) {
    const Clip& clip = job.clip;
    std::vector<ClipStage> stages;
    Arguments capture{"capture", (job.base / clip.video).string(), "-o", "."};
    append(capture, absolute(clip.capture, job.base));
    const bool together = clip.refine && refinesInCapture(*clip.refine);
    if (together) {
        capture.emplace_back("--refine");
        append(capture, *clip.refine);
    }
    stages.push_back({"capture", capture, {}});
    if (clip.refine && !together) {
        Arguments refine{"refine", "."};
        append(refine, *clip.refine);
        stages.push_back({"refine", refine, {}});
    }
    Arguments render{"render", ".", "--strip", "strip.png"};
    if (clip.render) {
        append(render, {"-o", "steady.mp4"});
        append(render, absolute(*clip.render, job.base));
    }
    stages.push_back({"render", withRefined(render, clip), {}});
    if (clip.evaluate) {
        Arguments evaluate{"evaluate", ".", "--json"};
        append(evaluate, absolute(*clip.evaluate, job.base));
        stages.push_back({"evaluate", withRefined(evaluate, clip), "evaluation.json"});
    }
    for (const char* page : {"report", "player"})
        stages.push_back(
            {page, withRefined({page, ".", "-o", std::string(page) + ".html"}, clip), {}});
    return stages;
}

Json identityOf(const ClipJob& job) {
    const Clip& clip = job.clip;
    Json inputs = Json::object();
    inputs[clip.video] = sha256OfFile(job.base / clip.video);
    addInputs(clip.capture, job.base, inputs);
    for (const auto& options : {clip.refine, clip.render, clip.evaluate})
        addInputs(options.value_or(Arguments{}), job.base, inputs);
    return {{"schema", kClipSchema}, {"toolVersion", toolVersion()}, {"id", clip.id},
            {"video", clip.video},   {"options", optionsJson(clip)}, {"inputs", inputs}};
}

Json toJson(const ClipJob& job) {
    return {{"base", job.base.string()},
            {"id", job.clip.id},
            {"video", job.clip.video},
            {"options", optionsJson(job.clip)}};
}

ClipJob parseClipJob(const std::string& text) {
    const Json json = Json::parse(text);
    const Json& options = json.at("options");
    return {{json.at("id").get<std::string>(), json.at("video").get<std::string>(),
             options.at("capture").get<Arguments>(), optionsIn(options.at("refine")),
             optionsIn(options.at("render")), optionsIn(options.at("evaluate"))},
            fs::path(json.at("base").get<std::string>())};
}

}  // namespace orbitwalk::tool
