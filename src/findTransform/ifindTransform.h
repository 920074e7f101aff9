#pragma once

/// Measures the motion of the picture from frame to frame and sums it up. No locks: one thread at a
/// time, frames strictly in order. Order of calls: Create, Initialize, getTrajectory per frame,
/// Release, Destroy. OpenCV and allocation may throw.
class ifindTransform {
  public:
    /// @return a new finder, released by Release and Destroy.
    static ifindTransform* Create();
    /// Logs the end of the finder and deletes it; null is allowed. @return always 1.
    static int Destroy(ifindTransform* finder);

    virtual ~ifindTransform() = default;

    /// @param width, height  frame size in pixels.
    /// @return 0, or 1 for a size that is refused: not positive, too small to reduce, or too large
    /// for the
    ///         16.16 steps of the reduction.
    virtual int Initialize(int width, int height) = 0;
    /// Frees the working buffers.
    virtual void Release() = 0;
    /// @param luma     height rows of width bytes; null: the frame has no picture and the last
    /// motion is
    ///                 repeated, as it is before Initialize and after Release.
    /// @param x, y, a  receive the cumulative motion of the picture since the first frame: pixels
    /// of the
    ///                 full-size frame, y down, and radians.
    /// @return always 0.
    virtual int getTrajectory(unsigned char* luma, float* x, float* y, float* a) = 0;
};
