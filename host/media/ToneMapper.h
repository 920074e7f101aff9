#pragma once

#include "media/AvHandles.h"

struct AVFilterGraph;
struct AVFilterContext;

namespace orbitwalk::media {

/// Whether a picture's colours or brightness go beyond what an 8-bit BT.709 video shows: BT.2020
/// primaries or matrix, or the transfer PQ or HLG.
bool isWideColour(const AVFrame& picture);

/// Whether a picture says that it is coded by another matrix than that of its size.
bool hasOtherMatrix(const AVFrame& picture);

/// Brings wide pictures, and those of another matrix, into the range of an ordinary video, by
/// libavfilter: I420 of video range in the matrix that their size stands for. Bright parts of PQ
/// and HLG are compressed, not cut off, up to 1000 cd/m2 or what the file says of its brightest.
/// One thread.
class ToneMapper {
  public:
    ToneMapper() = default;
    ~ToneMapper();
    ToneMapper(const ToneMapper&) = delete;
    ToneMapper& operator=(const ToneMapper&) = delete;

    /// @return valid until the next call.
    /// @throws MediaError where FFmpeg lacks the filters.
    const AVFrame& map(const AVFrame& picture);

  private:
    void prepare(const AVFrame& picture);

    FramePtr mInput;
    FramePtr mMapped;
    AVFilterGraph* mGraph = nullptr;
    AVFilterContext* mSource = nullptr;  ///< Part of mGraph, as the next.
    AVFilterContext* mSink = nullptr;
};

}  // namespace orbitwalk::media
