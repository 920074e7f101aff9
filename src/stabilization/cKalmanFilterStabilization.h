#pragma once

#include <array>
#include <opencv2/core/types.hpp>
#include <vector>

#include "orbitwalk/Geometry.h"
#include "orbitwalk/MetaData.h"
#include "stabilization/FeedbackSearch.h"
#include "stabilization/iVideoStabilization.h"

/// The stabiliser: state and log around the computations of this folder. Serves one capture; a
/// second Initialize deliberately keeps the running sums and the validity bits.
class cKalmanFilterStabilization final : public iVideoStabilization {
  public:
    int Initialize(int width, int height) override;
    void Release() override {}
    int sendTransformationMatrix(double x, double y, double a) override;
    /// May be repeated: everything derived is rebuilt from the received transforms.
    int doStabilization(int orientation, int captureDirection, int cropTop, int cropLeft,
                        int cropBottom, int cropRight, bool feedback) override;
    int getStabilizationInfo(__kelOBWKDXMetaData* metaData, bool identityForInvalid) override;

    // A variant that the pipeline does not run.

    /// Pins the axis across the capture direction so that the crop margins hold, and lowers
    /// __cropRatio to what that keeps.
    /// @param min, max  smallest and largest path value of that axis.
    /// @param flag      non-zero: pin nothing.
    void __CropSmoothingProcess(double min, double max, int cropTop, int cropLeft, int cropBottom,
                                int cropRight, int orientation, int flag);

  private:
    // Smoothing, in the order of the pipeline. Results are 0 unless a line says otherwise.

    /// @return 1 when smoothing is blocked.
    int __CalculatePrevToCurrSmoothCumulativeTransform(bool feedback);
    /// Fills __gaussianTrajectory. @return 1, or 0 for a radius below 1, which changes nothing.
    int __GaussianSmooth(int radius);
    /// Fills __smoothTrajectory and the crop bounds. @param steps  runs - 1; not 0.
    int __FilterWithFeedBack(int steps, bool feedback);
    /// One run: appends to __smoothTrajectory and narrows the bounds. @return 1 when they keep
    /// enough picture, else 0.
    int __KalmanSmooth(double Q, double R, std::vector<cv::Point2f>& corners, int& minX, int& maxX,
                       int& minY, int& maxY);
    int __ResetCornerParameter(std::vector<cv::Point2f>& corners, int& minX, int& maxX, int& minY,
                               int& maxY) const;
    orbitwalk::SmoothingInput __FilterInput() const;
    /// Fits the bounds to the frame's aspect ratio.
    void __RecalculateBoundary(int& minX, int& maxX, int& minY, int& maxY) const;
    /// Appends to __prevToCurrNewTransform and sets __crossOverPoint.
    int __CalculateprevToCurrNewTransform();

    // Variants that the pipeline does not run.

    /// Fixed noise, raw estimates appended to __smoothTrajectory.
    int __KalmanSmooth();
    /// Keeps __cropRatio within (0, kCropRatio] for a kept share of the frame; unpins when nothing
    /// is kept. @param margins  top, left, bottom, right, for the log.
    void __LimitCropRatio(double ratio, double min, double max, const std::array<int, 4>& margins);

    // The record.

    void __WriteIdentityMatrices(__kelOBWKDXMetaData& metaData) const;
    void __WriteRenderMatrices(__kelOBWKDXMetaData& metaData, bool identityForInvalid) const;
    /// Corrected transform of the v-th rendered frame; the last one beyond their end.
    orbitwalk::Trajectory __RenderedTransform(int v) const;
    void __WriteBorderFrames(__kelOBWKDXMetaData& metaData) const;
    void __LogMargins(const __kelOBWKDXMetaData& metaData) const;
    void __WriteCrop(__kelOBWKDXMetaData& metaData) const;

    bool __init = false;
    int __width = 0;
    int __height = 0;
    // Crop rectangle of the smoothed sweep, pixels of the frame.
    int __minX = 0;
    int __maxX = 0;
    int __minY = 0;
    int __maxY = 0;
    int __crossOverPoint = 0;    ///< See CorrectedTransforms.
    int __smoothingBlocked = 0;  ///< Non-zero: smoothing refuses to run. Nothing sets it today.
    std::vector<orbitwalk::Trajectory> __prevToCurrTransform;     ///< As received.
    std::vector<orbitwalk::Trajectory> __trajectory;              ///< Their running sum.
    std::vector<orbitwalk::Trajectory> __smoothTrajectory;        ///< The smoothed path.
    std::vector<orbitwalk::Trajectory> __prevToCurrNewTransform;  ///< Corrected transforms.
    std::vector<orbitwalk::Trajectory> __gaussianTrajectory;
    double __cropRatio = orbitwalk::kCropRatio;
    int __fixedX = orbitwalk::kNotPinned;
    int __fixedY = orbitwalk::kNotPinned;
    // Kept from the intake on, across a second Initialize; no stage reads them.
    std::vector<orbitwalk::Trajectory>
        __actualTransform;           ///< Change of the running sum at each frame.
    std::vector<bool> __validFrame;  ///< Initialize's frame and every received one.
    orbitwalk::Trajectory __cumulative;
    orbitwalk::Trajectory __prevCumulative;
    int __frameCount = 0;  ///< Received positions + 1.
    orbitwalk::Trajectory __lastInput;
    bool __firstInput = false;
};
