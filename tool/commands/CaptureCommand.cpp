#include <android/log.h>

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "OrbitwalkPlatform.h"
#include "capture/Capture.h"
#include "capture/Notes.h"
#include "commands/Commands.h"
#include "terminal/Print.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

struct CaptureArguments {
    CommonOptions common;
    CaptureOptions capture;
    std::string start;
    std::string duration;
    std::string direction = "auto";
    std::string skip;
    std::string logLevel;
    bool refine = false;
    PlanWish wish;
};

const std::map<std::string, int> kLogLevels{
    {"verbose", ANDROID_LOG_VERBOSE}, {"debug", ANDROID_LOG_DEBUG}, {"info", ANDROID_LOG_INFO},
    {"warn", ANDROID_LOG_WARN},       {"error", ANDROID_LOG_ERROR}, {"off", ANDROID_LOG_FATAL + 1}};

std::optional<std::chrono::microseconds> timeOf(const char* option, const std::string& text) {
    if (text.empty())
        return std::nullopt;
    const auto time = media::parseTime(text);
    if (!time || time->count() < 0)
        throw UsageError(std::string(option) + ": no time such as 12.5 or 1:02.5: " + text);
    return time;
}

/// The JSON of a capture, and in it that of its refinement.
std::string withRefined(const std::string& summary, const RefinedSummary& refined) {
    auto json = nlohmann::ordered_json::parse(summary);
    json["refined"] = toJson(refined);
    return jsonText(json);
}

void run(CaptureArguments arguments) {
    if (arguments.capture.directory.empty())
        throw UsageError("--output: an empty name is no directory");
    if (!arguments.logLevel.empty())
        OrbitwalkSetLogLevel(kLogLevels.at(arguments.logLevel));
    if (arguments.direction != "auto")
        arguments.capture.range.direction = arguments.direction == "left2right"
                                                ? OBW_DIRECTION_LEFT2RIGHT
                                                : OBW_DIRECTION_RIGHT2LEFT;
    if (!arguments.skip.empty())
        arguments.capture.range.skip = parseFrameList(arguments.skip);
    arguments.capture.start = timeOf("--start", arguments.start);
    arguments.capture.duration = timeOf("--duration", arguments.duration);
    arguments.capture.replaceForeign = arguments.common.force;
    if (arguments.refine)
        arguments.capture.refine = arguments.wish;
    const auto [summary, video, refined] = captureSweep(arguments.capture);
    for (const std::string& note : notesOn(summary, video))
        printNote(note);
    for (const std::string& warning : warningsOf(summary, video))
        printWarning(warning);
    if (refined) {
        for (const std::string& warning : warningsOn(steadinessOf(*refined)))
            printWarning("refined: " + warning);
        printSummary(arguments.common, withRefined(toJsonText(summary), *refined),
                     toText(summary) + toText(*refined));
    } else {
        printSummary(arguments.common, toJsonText(summary), toText(summary));
    }
}

}  // namespace

void addCaptureCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "capture",
        "Capture a video: sweep.mp4, its motion record sweep.obw, its path sweep.csv, and a "
        "summary, sweep.json");
    auto arguments = std::make_shared<CaptureArguments>();
    CaptureOptions& capture = arguments->capture;
    command->add_option("VIDEO", capture.video, "Any video that FFmpeg reads")->required();
    command->add_option("-o,--output", capture.directory, "Directory of the results")->required();
    command
        ->add_option("--orientation", capture.orientation,
                     "Device orientation in degrees: 90 where the video has to be turned clockwise "
                     "by 270 to stand upright, 270 where by 90; the record holds these two swapped")
        ->check(CLI::IsMember({0, 90, 270, 360}))
        ->default_str("0");
    command->add_flag("--front-flip", capture.frontCameraFlipped,
                      "The front camera's preview is mirrored");
    command->add_option("--direction", arguments->direction, "Direction of the sweep")
        ->check(CLI::IsMember({"auto", "left2right", "right2left"}))
        ->capture_default_str();
    command->add_option("--start", arguments->start,
                        "Take the video from here on: seconds after its first frame, or "
                        "[HH:]MM:SS.fraction");
    command->add_option("--duration", arguments->duration, "Take so much of the video");
    command->add_option("--first", capture.range.first,
                        "First frame to render, counted from 0 at --start");
    command->add_option("--last", capture.range.last, "Last frame to render, counted likewise");
    command->add_option("--skip", arguments->skip, "Frames not to render, as in 3,7,10-14");
    command->add_flag("--realtime", capture.realtime, "Feed frames at the video's own rate");
    auto* refine = command->add_flag(
        "--refine", arguments->refine,
        "Refine the sweep as well, from the same decoded frames: refined.obw, .csv and .json");
    command
        ->add_option("--keep", arguments->wish.keep,
                     "Share of the width and height that the refined crop keeps; without it the "
                     "largest crop that leaves a twentieth of the shake")
        ->needs(refine);
    command->add_option("--log-level", arguments->logLevel, "Show the engine's log")
        ->check(CLI::IsMember(&kLogLevels));
    addCommonOptions(*command, arguments->common, Writes::Files);
    command->callback([arguments] { run(*arguments); });
}

}  // namespace orbitwalk::tool
