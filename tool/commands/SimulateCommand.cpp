#include <map>
#include <memory>
#include <string>

#include "commands/Commands.h"
#include "simulate/SimulatedClip.h"
#include "terminal/ToolError.h"

extern "C" {
#include <libavutil/parseutils.h>
}

namespace orbitwalk::tool {

namespace {

struct SimulateArguments {
    ClipOptions clip;
    std::string size = "1920x1080";
    std::string rate = "30";
    std::string direction = "left2right";
    CommonOptions common;
};

const std::map<std::string, SweepDirection> kDirections{{"left2right", SweepDirection::Left2Right},
                                                        {"right2left", SweepDirection::Right2Left},
                                                        {"top2bottom", SweepDirection::Top2Bottom},
                                                        {"bottom2top", SweepDirection::Bottom2Top}};

// CLI::Range lets NaN pass.
CLI::Validator within(double smallest, double largest) {
    const std::string range =
        CLI::detail::to_string(smallest) + " to " + CLI::detail::to_string(largest);
    const auto check = [=](const std::string& text) {
        double value = 0;
        const bool ok =
            CLI::detail::lexical_cast(text, value) && value >= smallest && value <= largest;
        return ok ? std::string() : text + " is not a number from " + range;
    };
    return CLI::Validator(check, range);
}

/// libavutil's parsers read over blanks and signs within.
bool isPlain(const std::string& text) {
    return text.find_first_of(" \t\n+-") == std::string::npos;
}

FrameSize parseSize(const std::string& text) {
    FrameSize size;
    const bool ok =
        isPlain(text) && av_parse_video_size(&size.width, &size.height, text.c_str()) == 0;
    const auto fits = [](int side) { return side >= 64 && side <= 8192 && side % 2 == 0; };
    if (!ok || !fits(size.width) || !fits(size.height))
        throw UsageError("--size: " + text +
                         " is not WIDTHxHEIGHT with even numbers from 64 to 8192");
    return size;
}

media::FrameRate parseRate(const std::string& text) {
    AVRational rate{};
    const bool ok = isPlain(text) && av_parse_video_rate(&rate, text.c_str()) == 0;
    if (!ok || rate.num / rate.den > 1000)
        throw UsageError("--rate: " + text + " is not frames a second, such as 30 or 30000/1001");
    return {rate.num, rate.den};
}

void simulate(SimulateArguments arguments) {
    ClipOptions& clip = arguments.clip;
    clip.settings.size = parseSize(arguments.size);
    clip.settings.rate = parseRate(arguments.rate);
    clip.settings.direction = kDirections.at(arguments.direction);
    clip.replaceForeign = arguments.common.force;
    const ClipSummary summary = simulateClip(clip);
    printSummary(arguments.common, toJsonText(clip, summary), toText(clip, summary));
}

void addSceneOptions(CLI::App& command, ClipOptions& options) {
    SimulationSettings& s = options.settings;
    command.add_option("PHOTO", options.photo,
                       "Photograph to sweep across; without one a textured scene is made");
    command.add_option("--softness", s.softness, "Sigma of the lens's blur, pixels")
        ->check(within(0, 20))
        ->capture_default_str();
    command.add_option("--noise", s.noise, "Noise of the sensor, grey levels rms")
        ->check(within(0, 50))
        ->capture_default_str();
    command
        .add_option("--exposure-drift", s.exposureDrift,
                    "Change of brightness over the clip; 0.1 ends 10 % brighter")
        ->check(within(-0.95, 3))
        ->capture_default_str();
    command
        .add_option("--object", s.object,
                    "Height of an object that crosses in front, as a share of the frame's")
        ->check(within(0, 1))
        ->capture_default_str();
    command.add_option("--seed", s.seed, "Seed of everything random")
        ->check(CLI::Validator(
            [](const std::string& text) {
                const bool digits = text.find_first_not_of("0123456789") == std::string::npos;
                return digits ? std::string() : text + " is not a whole number of 0 or more";
            },
            ""))
        ->capture_default_str();
}

void addMotionOptions(CLI::App& command, SimulateArguments& arguments) {
    SimulationSettings& s = arguments.clip.settings;
    command.add_option("--frames", s.frames, "Number of frames")
        ->check(within(1, 100000))
        ->capture_default_str();
    command.add_option("--direction", arguments.direction, "Where the camera goes")
        ->check(CLI::IsMember(&kDirections))
        ->capture_default_str();
    command.add_option("--speed", s.speed, "Speed of the sweep, pixels a frame")
        ->check(within(0, 1000))
        ->capture_default_str();
    command.add_option("--shake", s.shake, "Largest shake of the hand in x and y, pixels")
        ->check(within(0, 1000))
        ->capture_default_str();
    command.add_option("--roll", s.roll, "Largest roll of the hand, radians")
        ->check(within(0, 1.5))
        ->capture_default_str();
}

void addOutputOptions(CLI::App& command, SimulateArguments& arguments) {
    ClipOptions& options = arguments.clip;
    command.add_option("-o,--output", options.clip, "Clip to write, MP4")->required();
    command.add_option(
        "--truth", options.truth,
        "CSV to write with the true motion of the picture, frame by frame; angles in "
        "radians");
    command.add_option("--size", arguments.size, "Size of the frames")->capture_default_str();
    command.add_option("--rate", arguments.rate, "Frames a second, N or N/D")
        ->capture_default_str();
    auto* quality = command.add_option("--quality", options.quality,
                                       "Constant rate factor of the encoder, lower is better");
    quality->check(within(0, 51))->capture_default_str();
    command.add_option("--bit-rate", options.bitRate, "Bits a second, instead of --quality")
        ->check(within(1000, 1e9))
        ->excludes(quality);
    addCommonOptions(command, arguments.common, Writes::Files);
}

}  // namespace

void addSimulateCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "simulate", "Sweep a virtual camera across a photograph, and write what truly moved");
    const auto arguments = std::make_shared<SimulateArguments>();
    addOutputOptions(*command, *arguments);
    addSceneOptions(*command, arguments->clip);
    addMotionOptions(*command, *arguments);
    command->callback([arguments] { simulate(*arguments); });
}

}  // namespace orbitwalk::tool
