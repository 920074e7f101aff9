#include "media/StreamFacts.h"

#include <algorithm>
#include <cmath>

extern "C" {
#include <libavutil/display.h>
}

namespace orbitwalk::media {

FrameRate frameRateOf(const AVStream& stream) {
    constexpr double kFastest = 1000;
    for (const AVRational rate : {stream.avg_frame_rate, stream.r_frame_rate})
        if (rate.num > 0 && rate.den > 0 && av_q2d(rate) <= kFastest)
            return {rate.num, rate.den};
    return {};
}

std::int64_t expectedFramesOf(const AVFormatContext& container, const AVStream& stream) {
    if (stream.nb_frames > 0)
        return stream.nb_frames;
    const FrameRate rate = frameRateOf(stream);
    const AVRational framePeriod{rate.denominator, rate.numerator};
    if (stream.duration > 0)
        return av_rescale_q(stream.duration, stream.time_base, framePeriod);
    if (container.duration > 0)
        return av_rescale_q(container.duration, av_get_time_base_q(), framePeriod);
    return 0;
}

int rotationDegreesOf(const AVStream& stream) {
    std::size_t size = 0;
    const auto* matrix = reinterpret_cast<const std::int32_t*>(
        av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size));
    if (!matrix || size < 9 * sizeof(std::int32_t))
        return 0;
    const double counterClockwise = av_display_rotation_get(matrix);
    if (!std::isfinite(counterClockwise))
        return 0;
    const int quarters = static_cast<int>(std::lround(-counterClockwise / 90));
    return ((quarters % 4) + 4) % 4 * 90;
}

double pixelAspectOf(const AVFormatContext& container, const AVStream& stream,
                     const AVFrame& picture) {
    // Neither the container nor its streams nor the picture are changed.
    const AVRational ratio = av_guess_sample_aspect_ratio(const_cast<AVFormatContext*>(&container),
                                                          const_cast<AVStream*>(&stream),
                                                          const_cast<AVFrame*>(&picture));
    return ratio.num > 0 && ratio.den > 0 ? av_q2d(ratio) : 1;
}

bool hasAudio(const AVFormatContext& container) {
    return std::any_of(
        container.streams, container.streams + container.nb_streams,
        [](const AVStream* stream) { return stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO; });
}

}  // namespace orbitwalk::media
