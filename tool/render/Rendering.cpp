#include "render/Rendering.h"

#include <cstdio>
#include <vector>

#include "files/OutputFiles.h"
#include "files/OwnFiles.h"
#include "media/PictureFile.h"
#include "render/ContactSheet.h"
#include "render/FramePlanes.h"
#include "render/Panorama.h"
#include "sweep/Steadiness.h"
#include "terminal/FreedMemory.h"
#include "terminal/ProgressBar.h"
#include "terminal/SignalGuard.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;

void check(const RenderOptions& options) {
    if (options.video.empty() && options.strip.empty() && options.panorama.empty())
        throw UsageError("nothing to render: give -o, --strip or --panorama");
    if (options.steady.compare && options.video.empty())
        throw UsageError("--compare needs a video to write: give -o");
    if (!options.video.empty())
        requireExtension("--output", options.video, {".mp4"});
    if (!options.strip.empty())
        requireExtension("--strip", options.strip, {".png"});
    if (!options.panorama.empty())
        requireExtension("--panorama", options.panorama, {".png"});
    refuseTakenNames(options.directory, {options.video, options.strip, options.panorama});
}

std::optional<std::string> borderWarning(const Sweep& sweep) {
    if (sweep.path.empty() && !sweep.refinement)
        return std::nullopt;
    const auto jump = borderJump(recordedMotions(sweep), sweep.record);
    if (!jump || jump->join <= jump->shake)
        return std::nullopt;
    char text[200];
    std::snprintf(text, sizeof text,
                  "the border frames make the picture jump by %.1f px where they join the sweep, "
                  "more than it shook as recorded (%.1f px)",
                  jump->join, jump->shake);
    return text;
}

/// An output that was begun; no stream when it is not wanted.
struct Output {
    fs::path path;
    std::FILE* stream = nullptr;
};

class Rendering {
  public:
    explicit Rendering(const RenderOptions& options)
        : mOptions(options),
          mSweep(openSweep(options.directory, options.recordBy)),
          mOutputs(options.replaceForeign) {
        mSummary.crop = mSweep.record.crop();
        mSummary.rotation = displayRotation(mSweep.record);
        mSummary.steadiness = steadinessOf(mSweep);
        if (mSummary.steadiness)
            mSummary.warnings = warningsOn(*mSummary.steadiness);
        if (options.steady.borderFrames)
            warn(borderWarning(mSweep));
    }

    RenderSummary run() {
        // All are begun first, so that what cannot be written is told before the work.
        const Output video = begin(mOptions.video);
        const Output strip = begin(mOptions.strip);
        const Output panorama = begin(mOptions.panorama);
        if (video.stream)
            renderVideo(video);
        if (strip.stream)
            mSummary.strip = renderPicture(strip, [&] { return makeStrip(); });
        if (panorama.stream)
            mSummary.panorama = renderPicture(panorama, [&] { return paintPanorama(); });
        SignalGuard::check();
        mOutputs.commit();
        mSummary.seconds = mWatch.seconds();
        return mSummary;
    }

  private:
    void warn(std::optional<std::string> warning) {
        if (warning)
            mSummary.warnings.push_back(*std::move(warning));
    }

    Output begin(const fs::path& file) {
        return {file, file.empty() ? nullptr : mOutputs.create(file)};
    }

    /// Shows progress and ends the command when a signal has come.
    static std::function<void(int)> progressOf(ProgressBar& bar) {
        return [&bar](int done) {
            bar.update(done);
            SignalGuard::check();
        };
    }

    std::int64_t shots() const {
        return std::ssize(playlist(mSweep.record, mOptions.steady.borderFrames));
    }

    void renderVideo(const Output& output) {
        const Stopwatch watch;
        ProgressBar bar("Rendering", shots());
        const SteadyVideo video =
            writeSteadyVideo(mSweep, mOptions.steady, output.stream, output.path, progressOf(bar));
        mSummary.video = {{output.path, video.size, watch.seconds()}, video};
        if (video.missingPixels > 0)
            warn(std::to_string(video.missingPixels) + " pixels of " +
                 std::to_string(video.incompleteFrames) +
                 " frames lie inside the crop but outside what was recorded");
    }

    cv::Mat makeStrip() const {
        ProgressBar bar("Choosing", kSheetColumns);
        return contactSheet(mSweep, progressOf(bar));
    }

    cv::Mat paintPanorama() const {
        ProgressBar bar("Painting", shots());
        return turned(panorama(mSweep, mOptions.steady.borderFrames, mOptions.steady.threads,
                               progressOf(bar)),
                      displayRotation(mSweep.record));
    }

    template <typename Make>
    RenderedFile renderPicture(const Output& output, Make make) {
        const Stopwatch watch;
        const cv::Mat picture = make();
        SignalGuard::check();
        std::vector<std::uint8_t> png = media::encodePng(pictureOf(picture));
        markPicture(png);
        mOutputs.append(output.stream, {reinterpret_cast<const char*>(png.data()), png.size()});
        return {output.path, picture.size(), watch.seconds()};
    }

    const Stopwatch mWatch;
    const RenderOptions& mOptions;
    const Sweep mSweep;
    OutputFiles mOutputs;
    RenderSummary mSummary;
};

}  // namespace

RenderSummary renderSweep(const RenderOptions& options) {
    check(options);
    const SignalGuard signals;
    keepFreedMemory();
    try {
        return Rendering(options).run();
    } catch (const media::MediaError&) {
        SignalGuard::check();
        throw;
    }
}

}  // namespace orbitwalk::tool
