#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "commands/Commands.h"
#include "files/OutputFiles.h"
#include "media/VideoWriter.h"
#include "simulate/Photo.h"
#include "simulate/Simulation.h"
#include "sweep/Summary.h"
#include "sweep/SweepFiles.h"
#include "sweep/TruthCsv.h"
#include "terminal/CommonOptions.h"
#include "terminal/ProgressBar.h"
#include "terminal/SignalGuard.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;

struct SimulateOptions {
    SimulationSettings settings;
    std::string size = "1920x1080";
    std::string rate = "30";
    std::string direction = "left2right";
    fs::path photo;
    fs::path clip;
    fs::path truth;
    int quality = 12;
    std::int64_t bitRate = 0;
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

FrameSize parseSize(const std::string& text) {
    FrameSize size;
    const char* const end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, size.width);
    const bool times = width.ec == std::errc() && width.ptr != end && *width.ptr == 'x';
    const auto height = times ? std::from_chars(width.ptr + 1, end, size.height) : width;
    const bool ok = times && height.ec == std::errc() && height.ptr == end;
    const auto fits = [](int side) { return side >= 64 && side <= 8192 && side % 2 == 0; };
    if (!ok || !fits(size.width) || !fits(size.height))
        throw UsageError("--size: " + text +
                         " is not WIDTHxHEIGHT with even numbers from 64 to 8192");
    return size;
}

media::FrameRate parseRate(const std::string& text) {
    media::FrameRate rate;
    int end = 0, whole = 0;
    const int got =
        std::sscanf(text.c_str(), "%6d%n/%6d%n", &rate.numerator, &whole, &rate.denominator, &end);
    const int length = got == 2 ? end : whole;
    const bool positive = rate.numerator > 0 && rate.denominator > 0;
    if (got < 1 || length != static_cast<int>(text.size()) || !positive ||
        rate.numerator / rate.denominator > 1000)
        throw UsageError("--rate: " + text + " is not frames a second, such as 30 or 30000/1001");
    return rate;
}

void refuseSharedNames(const SimulateOptions& options) {
    const auto same = [](const fs::path& p, const fs::path& q) {
        return !p.empty() && followed(p) == followed(q);
    };
    if (same(options.truth, options.clip) || same(options.photo, options.clip) ||
        same(options.photo, options.truth))
        throw UsageError("the photograph, the clip and the truth need names of their own");
}

void writeClip(Simulation& simulation, const SimulateOptions& options, std::FILE* stream,
               const SignalGuard& signals) {
    const SimulationSettings& settings = options.settings;
    media::EncoderSettings encoder;
    encoder.width = settings.size.width;
    encoder.height = settings.size.height;
    encoder.frameRate = settings.rate;
    encoder.quality = options.quality;
    encoder.bitRate = options.bitRate;
    encoder.threads = 4;  // The encoder's output depends on their number, not on the machine's.
    media::VideoWriter writer(stream, encoder);
    std::vector<std::uint8_t> frame(simulation.frameBytes());
    ProgressBar bar("Simulating", settings.frames);
    for (int k = 0; k < settings.frames; ++k) {
        simulation.render(k, frame);
        writer.write(frame);
        signals.check();
        bar.update(k + 1);
    }
    writer.finish();
}

Trajectory extentOf(std::span<const TrueMotion> truth) {
    std::vector<Trajectory> path;
    for (const TrueMotion& row : truth)
        path.push_back(row.sum);
    return pathExtent(path);
}

std::string asText(const Simulation& simulation, const SimulateOptions& options, double seconds) {
    const SimulationSettings& settings = options.settings;
    const Trajectory end = simulation.truth().back().sum;
    const Trajectory extent = extentOf(simulation.truth());
    char numbers[300];
    std::snprintf(numbers, sizeof numbers,
                  ": %d frames of %dx%d, scene at %.2f pixels a pixel, %.1f s\n"
                  "picture path: %.1f x %.1f pixels, %.2f degrees; it ends at (%.1f, %.1f)\n",
                  settings.frames, settings.size.width, settings.size.height,
                  simulation.photoScale(), seconds, extent.x, extent.y, extent.a * 180 / CV_PI,
                  end.x, end.y);
    return options.clip.string() + numbers;
}

std::string asJson(const Simulation& simulation, const SimulateOptions& options, double seconds) {
    const SimulationSettings& settings = options.settings;
    const auto motion = [](const Trajectory& m) {
        return nlohmann::ordered_json{{"x", m.x}, {"y", m.y}, {"a", m.a}};
    };
    nlohmann::ordered_json summary{{"clip", options.clip.string()}};
    if (!options.truth.empty())
        summary["truth"] = options.truth.string();
    summary.update({{"width", settings.size.width},
                    {"height", settings.size.height},
                    {"frames", settings.frames},
                    {"frameRate", {settings.rate.numerator, settings.rate.denominator}},
                    {"seed", settings.seed},
                    {"photoScale", simulation.photoScale()},
                    {"pathExtent", motion(extentOf(simulation.truth()))},
                    {"pathEnd", motion(simulation.truth().back().sum)},
                    {"seconds", seconds}});
    // A file name may hold bytes that are not UTF-8; JSON cannot.
    return summary.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

void writeFiles(Simulation& simulation, const SimulateOptions& options,
                const SignalGuard& signals) {
    OutputFiles files(options.common.force);
    std::FILE* const stream = files.create(options.clip);
    if (!options.truth.empty())
        files.write(options.truth, truthCsv(simulation.truth()));
    try {
        writeClip(simulation, options, stream, signals);
    } catch (const media::MediaError& error) {
        throw ToolError(options.clip.string() + ": " + error.what());
    }
    signals.check();
    files.commit();
}

void simulate(SimulateOptions options) {
    const auto start = std::chrono::steady_clock::now();
    options.settings.size = parseSize(options.size);
    options.settings.rate = parseRate(options.rate);
    options.settings.direction = kDirections.at(options.direction);
    refuseSharedNames(options);
    const SignalGuard signals;
    const cv::Mat3b photo = options.photo.empty() ? cv::Mat3b() : readPhoto(options.photo);
    Simulation simulation(options.settings, photo);
    writeFiles(simulation, options, signals);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    printSummary(options.common, asJson(simulation, options, time.count()),
                 asText(simulation, options, time.count()));
}

void addSceneOptions(CLI::App& command, SimulateOptions& options) {
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

void addMotionOptions(CLI::App& command, SimulateOptions& options) {
    SimulationSettings& s = options.settings;
    command.add_option("--frames", s.frames, "Number of frames")
        ->check(within(1, 100000))
        ->capture_default_str();
    command.add_option("--direction", options.direction, "Where the camera goes")
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

void addOutputOptions(CLI::App& command, SimulateOptions& options) {
    command.add_option("-o,--output", options.clip, "Clip to write, MP4")->required();
    command.add_option("--truth", options.truth,
                       "CSV to write with the true motion of the picture, frame by frame");
    command.add_option("--size", options.size, "Size of the frames")->capture_default_str();
    command.add_option("--rate", options.rate, "Frames a second, N or N/D")->capture_default_str();
    auto* quality = command.add_option("--quality", options.quality,
                                       "Constant rate factor of the encoder, lower is better");
    quality->check(within(0, 51))->capture_default_str();
    command.add_option("--bit-rate", options.bitRate, "Bits a second, instead of --quality")
        ->check(within(1000, 1e9))
        ->excludes(quality);
    addCommonOptions(command, options.common, Writes::Files);
}

}  // namespace

void addSimulateCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "simulate", "Sweep a virtual camera across a photograph, and write what truly moved");
    const auto options = std::make_shared<SimulateOptions>();
    addOutputOptions(*command, *options);
    addSceneOptions(*command, *options);
    addMotionOptions(*command, *options);
    command->callback([options] { simulate(*options); });
}

}  // namespace orbitwalk::tool
