#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <opencv2/imgcodecs.hpp>
#include <string>
#include <vector>

#include "commands/Commands.h"
#include "files/OutputFiles.h"
#include "render/ContactSheet.h"
#include "render/Panorama.h"
#include "render/SteadyVideo.h"
#include "sweep/SweepFiles.h"
#include "terminal/Print.h"
#include "terminal/ProgressBar.h"
#include "terminal/SignalGuard.h"
#include "terminal/Stopwatch.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;

struct RenderOptions {
    fs::path directory;
    fs::path video;
    fs::path strip;
    fs::path panorama;
    SteadySettings steady;
    bool refined = false;

    RecordBy recordBy() const { return refined ? RecordBy::Refinement : RecordBy::Engine; }
};

void checkOutputs(const RenderOptions& options) {
    if (options.video.empty() && options.strip.empty() && options.panorama.empty())
        throw ToolError("nothing to render: give -o, --strip or --panorama");
    if (options.steady.compare && options.video.empty())
        throw ToolError("--compare needs a video to write: give -o");
    refuseTakenNames(options.directory, {options.video, options.strip, options.panorama});
}

/// One file, which appears under its name when everything was rendered.
struct Output {
    explicit Output(const fs::path& file) : path(file), files(true), stream(files.create(file)) {}

    fs::path path;
    OutputFiles files;
    std::FILE* stream;
};

void writePng(const cv::Mat& picture, Output& output) {
    std::vector<uchar> bytes;
    if (!cv::imencode(".png", picture, bytes))
        throw ToolError("cannot write " + output.path.string() + ": no PNG encoder");
    output.files.append(output.stream, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

/// What stdout and stderr tell of an output once it is in place.
struct Told {
    std::string summary;
    std::string warning;
};

Told describe(const SteadyVideo& video, double seconds) {
    char text[160];
    std::snprintf(text, sizeof text,
                  "%d frames of %dx%d (%d before the sweep, %d of it, %d after), %.1f s, "
                  "%.1f frames/s",
                  video.frames(), video.size.width, video.size.height, video.leftBorderFrames,
                  video.sweepFrames, video.rightBorderFrames, seconds, video.frames() / seconds);
    if (video.missingPixels == 0)
        return {text, ""};
    return {text, std::to_string(video.missingPixels) + " pixels of " +
                      std::to_string(video.incompleteFrames) +
                      " frames lie inside the crop but outside what was recorded"};
}

Told describe(const char* kind, const cv::Mat& picture, double seconds) {
    char text[100];
    std::snprintf(text, sizeof text, "%s of %dx%d, %.1f s", kind, picture.cols, picture.rows,
                  seconds);
    return {text, ""};
}

/// One run of the command: renders into outputs and then puts all of them in place.
class Rendering {
  public:
    explicit Rendering(const RenderOptions& options)
        : mOptions(options), mSweep(openSweep(options.directory, options.recordBy())) {}

    void run() {
        const auto video = begin(mOptions.video);
        const auto strip = begin(mOptions.strip);
        const auto panorama = begin(mOptions.panorama);
        if (video)
            renderVideo(*video);
        if (strip)
            renderStrip(*strip);
        if (panorama)
            renderPanorama(*panorama);
        mSignals.check();
        for (const auto& output : {video, strip, panorama})
            if (output)
                output->files.commit();
        for (const auto& output : {video, strip, panorama})
            if (output)
                tell(*output);
    }

  private:
    struct Work : Output {
        using Output::Output;
        Told told;
    };

    static std::shared_ptr<Work> begin(const fs::path& file) {
        return file.empty() ? nullptr : std::make_shared<Work>(file);
    }

    static void tell(const Work& work) {
        printOut(work.path.string() + ": " + work.told.summary + "\n");
        if (!work.told.warning.empty())
            std::fprintf(stderr, "orbitwalk: warning: %s\n", work.told.warning.c_str());
    }

    /// Shows progress and ends the command when a signal has come.
    std::function<void(int)> progressOf(ProgressBar& bar) const {
        return [this, &bar](int done) {
            bar.update(done);
            mSignals.check();
        };
    }

    std::int64_t shots() const {
        return std::ssize(playlist(mSweep.record, mOptions.steady.borderFrames));
    }

    void renderVideo(Work& work) const {
        const Stopwatch watch;
        ProgressBar bar("Rendering", shots());
        const SteadyVideo video =
            writeSteadyVideo(mSweep, mOptions.steady, work.stream, work.path, progressOf(bar));
        work.told = describe(video, watch.seconds());
    }

    void renderStrip(Work& work) const {
        const Stopwatch watch;
        const cv::Mat picture = contactSheet(mSweep);
        mSignals.check();
        writePng(picture, work);
        work.told = describe("strip", picture, watch.seconds());
    }

    void renderPanorama(Work& work) const {
        const Stopwatch watch;
        ProgressBar bar("Painting", shots());
        const cv::Mat picture = panorama(mSweep, mOptions.steady.borderFrames,
                                         mOptions.steady.threads, progressOf(bar));
        writePng(picture, work);
        work.told = describe("panorama", picture, watch.seconds());
    }

    const RenderOptions& mOptions;
    const Sweep mSweep;
    const SignalGuard mSignals;
};

}  // namespace

void addRenderCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "render", "Play a captured sweep the way a player does, into a video and pictures");
    const auto options = std::make_shared<RenderOptions>();
    SteadySettings& steady = options->steady;
    command->add_option("DIR", options->directory, "What capture wrote: sweep.mp4, .obw and .csv")
        ->required();
    command->add_option("-o,--output", options->video, "Stabilised video to write, MP4");
    command->add_option("--strip", options->strip,
                        "Contact sheet to write, PNG: frames as recorded above the steady ones");
    command->add_option("--panorama", options->panorama,
                        "The whole sweep as one picture to write, PNG");
    command->add_flag("--refined", options->refined, kRefinedHelp);
    command->add_flag("--compare", steady.compare,
                      "Put the frames as recorded on the left of the steady ones; the video is "
                      "twice as wide, at most 3840 pixels");
    command->add_flag("!--no-border-frames", steady.borderFrames,
                      "Leave out the frames added before and after the sweep");
    auto* quality = command->add_option("--quality", steady.quality,
                                        "Constant rate factor of the encoder, lower is better");
    quality->check(CLI::Range(0, 51))->capture_default_str();
    command->add_option("--bit-rate", steady.bitRate, "Bits a second, instead of --quality")
        ->check(CLI::Range(1000, 1000000000))
        ->excludes(quality);
    command->add_option("--threads", steady.threads, "Threads that warp; 0: one a core")
        ->check(CLI::Range(0, 64))
        ->capture_default_str();
    command->callback([options] {
        checkOutputs(*options);
        Rendering(*options).run();
    });
}

}  // namespace orbitwalk::tool
