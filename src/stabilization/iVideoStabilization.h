#pragma once

#include "orbitwalk/MetaData.h"

/// Smooths the path of one capture and writes the render matrices. No locks: one thread at a time.
/// Order of calls: Create, Initialize, sendTransformationMatrix per frame, doStabilization,
/// getStabilizationInfo, Release, Destroy. Array growth may throw std::bad_alloc.
class iVideoStabilization {
  public:
    /// @return a new stabiliser, released by Destroy.
    static iVideoStabilization* Create();
    /// Deletes the stabiliser; null is allowed. @return always 1.
    static int Destroy(iVideoStabilization* stabilizer);

    virtual ~iVideoStabilization() = default;

    /// @param width, height  frame size in pixels.
    /// @return 0, or 1 for a size that is not positive, which changes nothing.
    virtual int Initialize(int width, int height) = 0;
    /// Does nothing; the arrays live until Destroy.
    virtual void Release() = 0;
    /// Takes the cumulative position of the next frame: pixels, pixels, radians.
    /// @return 1, or 0 before Initialize, when nothing is recorded.
    virtual int sendTransformationMatrix(double x, double y, double a) = 0;
    /// Smooths the path. Orientation (degrees), direction (OBWDirection) and crop margins are only
    /// logged.
    /// @param feedback  true: search for the smoothing that keeps a large enough common picture;
    ///                  false: no correction at all.
    /// @return 0; 1 when there is nothing to smooth; 2 before Initialize.
    virtual int doStabilization(int orientation, int captureDirection, int cropTop, int cropLeft,
                                int cropBottom, int cropRight, bool feedback) = 0;
    /// Writes render matrices, crop rectangle and border frames into the record, whose header and
    /// flags are filled already. Counts beyond the record's arrays are limited to them; every
    /// matrix written is finite and invertible, whatever the positions were.
    /// @param identityForInvalid  true: a frame that is not rendered gets the identity; false: it
    ///                            consumes the next corrected transform like a rendered one.
    /// @return 0; 2 before Initialize or for a null record, when nothing is written.
    /// @throws cv::Exception, std::bad_alloc when memory runs out.
    virtual int getStabilizationInfo(__kelOBWKDXMetaData* metaData, bool identityForInvalid) = 0;
};
