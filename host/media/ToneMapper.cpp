#include "media/ToneMapper.h"

#include <cstdio>
#include <string>

#include "media/AvSupport.h"
#include "media/ColourMatrix.h"
#include "media/FilterLibrary.h"
#include "media/MediaTypes.h"

namespace orbitwalk::media {

namespace {

bool isHighDynamicRange(const AVFrame& picture) {
    return picture.color_trc == AVCOL_TRC_SMPTE2084 || picture.color_trc == AVCOL_TRC_ARIB_STD_B67;
}

bool isWideGamut(const AVFrame& picture) {
    return picture.color_primaries == AVCOL_PRI_BT2020 ||
           picture.colorspace == AVCOL_SPC_BT2020_NCL || picture.colorspace == AVCOL_SPC_BT2020_CL;
}

/// What such videos leave unsaid; the filters do not guess.
void completeColours(AVFrame& picture) {
    if (picture.color_primaries == AVCOL_PRI_UNSPECIFIED)
        picture.color_primaries = AVCOL_PRI_BT2020;
    if (picture.colorspace == AVCOL_SPC_UNSPECIFIED)
        picture.colorspace = AVCOL_SPC_BT2020_NCL;
    if (picture.color_trc == AVCOL_TRC_UNSPECIFIED)
        picture.color_trc = AVCOL_TRC_BT709;
}

std::string filtersFor(const AVFrame& picture) {
    const bool highDefinition =
        colourMatrixOf(picture.width, picture.height) == ColourMatrix::Bt709;
    const std::string matrix = std::string("m=") + (highDefinition ? "709" : "170m");
    if (!isWideColour(picture))
        return "zscale=" + matrix + ":r=tv,format=yuv420p";
    // Curves are applied to linear light; white of an ordinary video stands at 100 cd/m2.
    const std::string compress =
        isHighDynamicRange(picture)
            ? "zscale=t=linear:npl=100,format=gbrpf32le,zscale=p=bt709,tonemap=hable:desat=0,"
            : "";
    return compress + "zscale=p=bt709:t=bt709:" + matrix + ":r=tv,format=yuv420p";
}

[[noreturn]] void fail(int result) {
    throw MediaError("its colours (HDR, BT.2020 or another matrix) cannot be converted: " +
                     avErrorText(result));
}

void check(int result) {
    if (result < 0)
        fail(result);
}

/// Ends of a chain of filters, owned by the graph once it is parsed.
struct Ends {
    explicit Ends(const FilterLibrary& library)
        : filters(library), in(library.inoutAlloc()), out(library.inoutAlloc()) {}
    ~Ends() {
        filters.inoutFree(&in);
        filters.inoutFree(&out);
    }
    Ends(const Ends&) = delete;
    Ends& operator=(const Ends&) = delete;

    const FilterLibrary& filters;
    AVFilterInOut* in;
    AVFilterInOut* out;
};

}  // namespace

bool isWideColour(const AVFrame& picture) {
    return isHighDynamicRange(picture) || isWideGamut(picture);
}

bool hasOtherMatrix(const AVFrame& picture) {
    if (colourMatrixOf(picture.width, picture.height) == ColourMatrix::Bt601)
        return picture.colorspace == AVCOL_SPC_BT709;
    return picture.colorspace == AVCOL_SPC_BT470BG || picture.colorspace == AVCOL_SPC_SMPTE170M;
}

ToneMapper::~ToneMapper() {
    if (mGraph)
        FilterLibrary::get().graphFree(&mGraph);
}

const AVFrame& ToneMapper::map(const AVFrame& picture) {
    mInput = makeFrame();
    check(av_frame_ref(mInput.get(), &picture));
    if (isWideColour(picture))
        completeColours(*mInput);
    if (!mGraph)
        prepare(*mInput);
    const FilterLibrary& filters = FilterLibrary::get();
    check(filters.addFrame(mSource, mInput.get()));
    mMapped = makeFrame();
    check(filters.getFrame(mSink, mMapped.get()));
    return *mMapped;
}

void ToneMapper::prepare(const AVFrame& picture) {
    const FilterLibrary& filters = FilterLibrary::get();
    mGraph = filters.graphAlloc();
    Ends ends(filters);
    if (!mGraph || !ends.in || !ends.out)
        fail(AVERROR(ENOMEM));
    mGraph->nb_threads = 1;  // Frames come one at a time; a pool would only wait.
    char format[128];
    std::snprintf(format, sizeof format,
                  "video_size=%dx%d:pix_fmt=%d:time_base=1/1:pixel_aspect=1/1", picture.width,
                  picture.height, picture.format);
    check(filters.graphCreateFilter(&mSource, filters.getByName("buffer"), "in", format, nullptr,
                                    mGraph));
    check(filters.graphCreateFilter(&mSink, filters.getByName("buffersink"), "out", nullptr,
                                    nullptr, mGraph));
    // Named as the chain of filters sees them: what comes out of the source is its input.
    *ends.out = {av_strdup("in"), mSource, 0, nullptr};
    *ends.in = {av_strdup("out"), mSink, 0, nullptr};
    check(filters.graphParse(mGraph, filtersFor(picture).c_str(), &ends.in, &ends.out, nullptr));
    check(filters.graphConfig(mGraph, nullptr));
}

}  // namespace orbitwalk::media
