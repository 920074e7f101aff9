#pragma once

/// @file
/// Measures how the picture moves from one frame to the next, to a hundredth of a pixel.
///
/// Frames come one at a time, so that an app can measure while it captures. No log and no global
/// state; one estimator is used by one thread at a time, several estimators by as many threads. The
/// same frames give the same bits, whatever the number of OpenCV's threads. docs/refine.md tells
/// method, sources and figures. Conventions: orbitwalk/Geometry.h.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "orbitwalk/Export.h"
#include "orbitwalk/Geometry.h"
#include "orbitwalk/refine/Motion.h"

namespace orbitwalk::refine {

/// The luma plane of a frame, which stays the caller's and is not kept.
struct LumaFrame {
    const std::uint8_t* pixels = nullptr;  ///< Row after row, the top one first.
    std::ptrdiff_t stride = 0;             ///< Bytes from a row to the next, at least the width.
    FrameSize size;
};

class OBW_API MotionEstimator {
  public:
    /// @param size  of every frame: each side 16 to 32767 pixels.
    /// @throws std::invalid_argument for another size, std::bad_alloc.
    explicit MotionEstimator(FrameSize size);
    ~MotionEstimator();
    MotionEstimator(MotionEstimator&&) noexcept;
    MotionEstimator& operator=(MotionEstimator&&) noexcept;

    /// Takes the next frame. @return the motion of the picture since the frame before. Not
    /// measured are the first frame, one without texture, and one that shows another scene than
    /// the frame before; the frame is the next one's predecessor all the same.
    /// @throws std::invalid_argument for a null frame, another size or a stride below the width,
    /// and then takes no notice of the frame; std::bad_alloc; std::logic_error with OpenCV's words
    /// for what should not happen.
    FrameMotion next(const LumaFrame& frame);

    /// Forgets the frames: the next one is the first.
    void reset();

  private:
    struct State;
    std::unique_ptr<State> mState;
};

}  // namespace orbitwalk::refine
