#include "simulate/SimulatedClip.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <vector>

#include "files/OutputFiles.h"
#include "files/OwnFiles.h"
#include "media/VideoWriter.h"
#include "simulate/Scene.h"
#include "simulate/Simulation.h"
#include "sweep/Degrees.h"
#include "sweep/Summary.h"
#include "sweep/SweepFiles.h"
#include "sweep/Tables.h"
#include "terminal/Print.h"
#include "terminal/ProgressBar.h"
#include "terminal/SignalGuard.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;

void checkNames(const ClipOptions& options) {
    requireExtension("--output", options.clip, {".mp4"});
    if (!options.truth.empty())
        requireExtension("--truth", options.truth, {".csv"});
    const auto same = [](const fs::path& p, const fs::path& q) {
        return !p.empty() && followed(p) == followed(q);
    };
    if (same(options.truth, options.clip) || same(options.photo, options.clip) ||
        same(options.photo, options.truth))
        throw UsageError("the photograph, the clip and the truth need names of their own");
}

void writeClip(Simulation& simulation, const ClipOptions& options, std::FILE* stream) {
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
        SignalGuard::check();
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

void writeFiles(Simulation& simulation, const ClipOptions& options) {
    OutputFiles files(options.replaceForeign);
    std::FILE* const stream = files.create(options.clip);
    if (!options.truth.empty())
        files.write(options.truth, truthCsv(simulation.truth()));
    try {
        writeClip(simulation, options, stream);
    } catch (const media::MediaError& error) {
        throw ToolError(options.clip.string() + ": " + error.what());
    }
    SignalGuard::check();
    files.commit();
}

}  // namespace

ClipSummary simulateClip(const ClipOptions& options) {
    const Stopwatch watch;
    checkNames(options);
    const SignalGuard signals;
    const cv::Mat3b photo = options.photo.empty() ? cv::Mat3b() : readPhoto(options.photo);
    Simulation simulation(options.settings, photo);
    writeFiles(simulation, options);
    return {simulation.photoScale(), extentOf(simulation.truth()), simulation.truth().back().sum,
            watch.seconds()};
}

std::string toText(const ClipOptions& options, const ClipSummary& summary) {
    const SimulationSettings& settings = options.settings;
    char numbers[300];
    std::snprintf(numbers, sizeof numbers,
                  ": %d frames of %dx%d, scene at %.2f pixels a pixel, %.1f s\n"
                  "picture path: %.1f x %.1f pixels, %.2f degrees; it ends at (%.1f, %.1f)\n",
                  settings.frames, settings.size.width, settings.size.height, summary.photoScale,
                  summary.seconds, summary.extent.x, summary.extent.y, degrees(summary.extent.a),
                  summary.end.x, summary.end.y);
    return shown(options.clip) + numbers;
}

std::string toJsonText(const ClipOptions& options, const ClipSummary& summary) {
    const SimulationSettings& settings = options.settings;
    const auto motion = [](const Trajectory& m) {
        return nlohmann::ordered_json{{"x", m.x}, {"y", m.y}, {"a", m.a}};
    };
    nlohmann::ordered_json json{{"clip", options.clip.string()}};
    if (!options.truth.empty())
        json["truth"] = options.truth.string();
    json.update({{"width", settings.size.width},
                 {"height", settings.size.height},
                 {"frames", settings.frames},
                 {"frameRate", {settings.rate.numerator, settings.rate.denominator}},
                 {"seed", settings.seed},
                 {"photoScale", summary.photoScale},
                 {"pathExtent", motion(summary.extent)},
                 {"pathEnd", motion(summary.end)},
                 {"seconds", summary.seconds}});
    // A file name may hold bytes that are not UTF-8; JSON cannot.
    return jsonText(json);
}

}  // namespace orbitwalk::tool
