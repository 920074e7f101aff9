#include <android/log.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>

#include "OrbitwalkPlatform.h"
#include "capture/Capture.h"
#include "capture/FrameList.h"
#include "capture/Notes.h"
#include "commands/Commands.h"
#include "terminal/Print.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

struct Arguments {
    CaptureOptions capture;
    std::string direction = "auto";
    std::string skip;
    std::string logLevel;
    bool json = false;
};

const std::map<std::string, int> kLogLevels{
    {"verbose", ANDROID_LOG_VERBOSE}, {"debug", ANDROID_LOG_DEBUG}, {"info", ANDROID_LOG_INFO},
    {"warn", ANDROID_LOG_WARN},       {"error", ANDROID_LOG_ERROR}, {"off", ANDROID_LOG_FATAL + 1}};

void run(Arguments arguments) {
    if (arguments.capture.directory.empty())
        throw ToolError("--output: an empty name is no directory");
    if (!arguments.logLevel.empty())
        OrbitwalkSetLogLevel(kLogLevels.at(arguments.logLevel));
    if (arguments.direction != "auto")
        arguments.capture.direction = arguments.direction == "left2right"
                                          ? OBW_DIRECTION_LEFT2RIGHT
                                          : OBW_DIRECTION_RIGHT2LEFT;
    if (!arguments.skip.empty())
        arguments.capture.skip = parseFrameList(arguments.skip);
    const Summary summary = captureSweep(arguments.capture);
    for (const std::string& note : notesOn(summary))
        std::fprintf(stderr, "orbitwalk: note: %s\n", note.c_str());
    for (const std::string& warning : warningsOf(summary))
        std::fprintf(stderr, "orbitwalk: warning: %s\n", warning.c_str());
    printOut(arguments.json ? toJsonText(summary) : toText(summary));
}

}  // namespace

void addCaptureCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "capture",
        "Capture a video: sweep.mp4, its motion record sweep.obw, its path sweep.csv, and a "
        "summary, sweep.json");
    auto arguments = std::make_shared<Arguments>();
    CaptureOptions& capture = arguments->capture;
    command->add_option("VIDEO", capture.video, "Any video that FFmpeg reads")->required();
    command->add_option("-o,--output", capture.directory, "Directory of the results")->required();
    command
        ->add_option("--orientation", capture.orientation,
                     "Device orientation in degrees; the record holds 90 and 270 swapped")
        ->check(CLI::IsMember({0, 90, 180, 270, 360}))
        ->default_str("0");
    command->add_flag("--front-flip", capture.frontCameraFlipped,
                      "The front camera's preview is mirrored");
    command->add_option("--direction", arguments->direction, "Direction of the sweep")
        ->check(CLI::IsMember({"auto", "left2right", "right2left"}))
        ->capture_default_str();
    command->add_option("--first", capture.first, "First frame to render, counted from 0");
    command->add_option("--last", capture.last, "Last frame to render");
    command->add_option("--skip", arguments->skip, "Frames not to render, as in 3,7,10-14");
    command->add_flag("--realtime", capture.realtime, "Feed frames at the video's own rate");
    command->add_option("--log-level", arguments->logLevel, "Show the engine's log")
        ->check(CLI::IsMember(&kLogLevels));
    command->add_flag("--json", arguments->json, "Summary as JSON");
    command->callback([arguments] { run(*arguments); });
}

}  // namespace orbitwalk::tool
