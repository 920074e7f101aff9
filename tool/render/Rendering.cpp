#include "render/Rendering.h"

#include <malloc.h>

#include <opencv2/imgcodecs.hpp>
#include <vector>

#include "files/OutputFiles.h"
#include "render/ContactSheet.h"
#include "render/Panorama.h"
#include "terminal/ProgressBar.h"
#include "terminal/SignalGuard.h"
#include "terminal/Stopwatch.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;

/// Frames come and go all the time. Memory that was freed stays at hand for the next one; given
/// back to the system it would come anew page by page, which takes up to half of a panorama's time.
void keepFreedMemory() {
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
}

/// An output that was begun; no stream when it is not wanted.
struct Output {
    fs::path path;
    std::FILE* stream = nullptr;
};

class Rendering {
  public:
    explicit Rendering(const RenderOptions& options)
        : mOptions(options), mSweep(openSweep(options.directory, options.recordBy)) {}

    RenderSummary run() {
        // All are begun first, so that what cannot be written is told before the work.
        const Output video = begin(mOptions.video);
        const Output strip = begin(mOptions.strip);
        const Output panorama = begin(mOptions.panorama);
        if (video.stream)
            renderVideo(video);
        if (strip.stream)
            mSummary.strip = renderPicture(strip, [&] { return contactSheet(mSweep); });
        if (panorama.stream)
            mSummary.panorama = renderPicture(panorama, [&] { return paintPanorama(); });
        SignalGuard::check();
        mOutputs.commit();
        return mSummary;
    }

  private:
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
            mSummary.warnings.push_back(
                std::to_string(video.missingPixels) + " pixels of " +
                std::to_string(video.incompleteFrames) +
                " frames lie inside the crop but outside what was recorded");
    }

    cv::Mat paintPanorama() const {
        ProgressBar bar("Painting", shots());
        return panorama(mSweep, mOptions.steady.borderFrames, mOptions.steady.threads,
                        progressOf(bar));
    }

    template <typename Make>
    RenderedFile renderPicture(const Output& output, Make make) {
        const Stopwatch watch;
        const cv::Mat picture = make();
        SignalGuard::check();
        std::vector<uchar> png;
        if (!cv::imencode(".png", picture, png))
            throw ToolError("cannot write " + output.path.string() + ": no PNG encoder");
        mOutputs.append(output.stream, {reinterpret_cast<const char*>(png.data()), png.size()});
        return {output.path, picture.size(), watch.seconds()};
    }

    const RenderOptions& mOptions;
    const Sweep mSweep;
    OutputFiles mOutputs{true};
    RenderSummary mSummary;
};

}  // namespace

RenderSummary renderSweep(const RenderOptions& options) {
    const SignalGuard signals;
    keepFreedMemory();
    return Rendering(options).run();
}

}  // namespace orbitwalk::tool
