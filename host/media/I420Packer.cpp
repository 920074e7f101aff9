#include "media/I420Packer.h"

#include <algorithm>
#include <new>

#include "media/AvSupport.h"
#include "media/ColourMatrix.h"
#include "media/MediaTypes.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace orbitwalk::media {

namespace {

int evenPart(int side) {
    return side & ~1;
}

/// Whether black is 0 and white 255, as some phones record, rather than 16 and 235.
bool isFullRange(const AVFrame& picture) {
    return picture.color_range == AVCOL_RANGE_JPEG || picture.format == AV_PIX_FMT_YUVJ420P ||
           picture.format == AV_PIX_FMT_YUVJ422P || picture.format == AV_PIX_FMT_YUVJ444P;
}

std::uint8_t* copyPlane(const std::uint8_t* source, int stride, int width, int height,
                        std::uint8_t* target) {
    for (int y = 0; y < height; ++y)
        target = std::copy_n(source + std::ptrdiff_t{y} * stride, width, target);
    return target;
}

}  // namespace

void I420Packer::pack(const AVFrame& picture, std::vector<std::uint8_t>& i420) {
    const int width = evenPart(picture.width);
    const int height = evenPart(picture.height);
    const bool same = picture.format == AV_PIX_FMT_YUV420P && !isFullRange(picture);
    const AVFrame& source = same ? picture : convert(picture);
    i420.resize(std::size_t(width) * std::size_t(height) * 3 / 2);
    std::uint8_t* target = i420.data();
    target = copyPlane(source.data[0], source.linesize[0], width, height, target);
    target = copyPlane(source.data[1], source.linesize[1], width / 2, height / 2, target);
    copyPlane(source.data[2], source.linesize[2], width / 2, height / 2, target);
}

const AVFrame& I420Packer::convert(const AVFrame& picture) {
    if (!mScaler || mFormat != picture.format || mFullRange != isFullRange(picture))
        prepareScaler(picture);
    const int result = sws_scale(mScaler.get(), picture.data, picture.linesize, 0,
                                 evenPart(picture.height), mConverted->data, mConverted->linesize);
    if (result < 0)
        throw MediaError("cannot convert a picture: " + avErrorText(result));
    return *mConverted;
}

void I420Packer::prepareScaler(const AVFrame& picture) {
    const int width = evenPart(picture.width);
    const int height = evenPart(picture.height);
    // The ranges must be known when the scaler is initialised: it chooses its plain copy then.
    ScalerPtr scaler(sws_alloc_context());
    if (!scaler)
        throw std::bad_alloc();
    const struct {
        const char* name;
        int value;
    } options[] = {{"srcw", width},
                   {"srch", height},
                   {"dstw", width},
                   {"dsth", height},
                   {"src_format", picture.format},
                   {"dst_format", AV_PIX_FMT_YUV420P},
                   {"src_range", isFullRange(picture)},
                   {"dst_range", 0},
                   {"sws_flags", SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INP}};
    for (const auto& option : options)
        av_opt_set_int(scaler.get(), option.name, option.value, 0);
    if (const int result = sws_init_context(scaler.get(), nullptr, nullptr); result < 0)
        throw MediaError("cannot convert the picture format: " + avErrorText(result));
    if (av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format))->flags &
        AV_PIX_FMT_FLAG_RGB) {
        const bool highDefinition = colourMatrixOf(width, height) == ColourMatrix::Bt709;
        sws_setColorspaceDetails(
            scaler.get(), sws_getCoefficients(SWS_CS_DEFAULT), isFullRange(picture),
            sws_getCoefficients(highDefinition ? SWS_CS_ITU709 : SWS_CS_ITU601), 0, 0, 1 << 16,
            1 << 16);
    }

    mConverted = makeFrame();
    mConverted->format = AV_PIX_FMT_YUV420P;
    mConverted->width = width;
    mConverted->height = height;
    if (av_frame_get_buffer(mConverted.get(), 0) < 0)
        throw std::bad_alloc();
    mScaler = std::move(scaler);
    mFormat = picture.format;
    mFullRange = isFullRange(picture);
}

}  // namespace orbitwalk::media
