#include "render/SteadyVideo.h"

#include <optional>

#include "media/VideoWriter.h"
#include "render/FramePlanes.h"
#include "render/ShotPipeline.h"
#include "render/SideBySide.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

using Pixels = std::vector<std::uint8_t>;

Pixels warped(const Pixels& frame, cv::Size size, const Affine& frameFromOutput) {
    Pixels output(frame.size());
    warpFrame(frame, size, frameFromOutput, output);
    return output;
}

Pixels recorded(const Pixels& frame, const Sweep& sweep) {
    return sweep.record.isFlipped() ? warped(frame, sweep.size(), uncorrected(sweep.record))
                                    : frame;
}

/// @param size  of the video's pictures; compared, two of the sweep's stand side by side.
media::EncoderSettings encoderSettings(const SteadySettings& settings, const Sweep& sweep,
                                       cv::Size size, media::FrameRate rate) {
    media::EncoderSettings encoder;
    encoder.width = size.width;
    encoder.height = size.height;
    encoder.frameRate = rate;
    encoder.matrix = media::colourMatrixOf(sweep.size().width, sweep.size().height);
    encoder.rotation = displayRotation(sweep.record);
    encoder.quality = settings.quality;
    encoder.bitRate = settings.bitRate;
    // The output depends on the number of threads, so that it must not be the machine's; under a
    // bit rate it depends on how far each of them has come as well.
    encoder.threads = settings.bitRate > 0 ? 1 : 4;
    return encoder;
}

SteadyVideo summary(const std::vector<Shot>& shots, cv::Size frame) {
    SteadyVideo video;
    for (const Shot& shot : shots) {
        if (shot.kind != ShotKind::Sweep) {
            ++(shot.kind == ShotKind::LeftBorder ? video.leftBorderFrames
                                                 : video.rightBorderFrames);
            continue;
        }
        ++video.sweepFrames;
        const std::int64_t missing = missingPixels(frame, shot.frameFromOutput);
        video.missingPixels += missing;
        video.incompleteFrames += missing != 0;
    }
    return video;
}

/// A writer knows only its stream.
template <typename Step>
void naming(const std::filesystem::path& file, Step step) {
    try {
        step();
    } catch (const media::MediaError& error) {
        throw ToolError(file.string() + ": " + error.what());
    }
}

}  // namespace

SteadyVideo writeSteadyVideo(const Sweep& sweep, const SteadySettings& settings, std::FILE* stream,
                             const std::filesystem::path& name,
                             const std::function<void(int)>& progress) {
    const std::vector<Shot> shots = playlist(sweep.record, settings.borderFrames);
    const SideBySide sideBySide(sweep.size(), displayRotation(sweep.record));
    const cv::Size size = settings.compare ? sideBySide.size() : sweep.size();
    ShotReader reader(sweep, shots);
    std::optional<media::VideoWriter> writer;
    naming(name, [&] {
        writer.emplace(stream, encoderSettings(settings, sweep, size, reader.frameRate()));
    });
    int written = 0;
    forEachShot(
        reader, settings.threads,
        [&](const ShotFrame& shown) {
            Pixels steady = warped(*shown.frame, sweep.size(), shown.shot.frameFromOutput);
            return settings.compare ? sideBySide(recorded(*shown.frame, sweep), steady) : steady;
        },
        [&](const Pixels& frame) {
            naming(name, [&] { writer->write(frame); });
            progress(++written);
        });
    naming(name, [&] { writer->finish(); });
    SteadyVideo video = summary(shots, sweep.size());
    video.size = size;
    return video;
}

}  // namespace orbitwalk::tool
