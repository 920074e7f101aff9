// OpenCV's video module declares a deprecated function of the exported name: its header stays out.
#include "findTransform/2D/RigidTransform.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <span>

#include "findTransform/2D/RigidFit.h"
#include "findTransform/2D/RigidGrid.h"
#include "orbitwalk/MotionKernels.h"

namespace orbitwalk {

const char* const kRigidTransformName =
    "cv::Mat cv::estimateRigidTransform(cv::InputArray, cv::InputArray, bool)";

namespace {

constexpr int kMaxIterations = 500;
constexpr double kInlierRatio = 0.5;
/// Of the larger side of the rectangle around the second point set.
constexpr double kInlierTolerance = 0.05;

bool isPointSet(const cv::Mat& array) {
    return array.checkVector(2, -1, false) >= 0;
}

Points toPoints(const cv::Mat& array) {
    cv::Mat floats;
    array.convertTo(floats, CV_32F);
    const auto* const first = floats.ptr<cv::Point2f>();
    return {first, first + floats.checkVector(2)};
}

void checkAlike(const cv::Mat& a, const cv::Mat& b) {
    if (a.size != b.size)
        cv::error(cv::Error::StsUnmatchedSizes, "Both input images must have the same size",
                  kRigidTransformName, __FILE__, __LINE__);
    if (a.type() != b.type())
        cv::error(cv::Error::StsUnmatchedFormats, "Both input images must have the same data type",
                  kRigidTransformName, __FILE__, __LINE__);
}

void checkImage(const cv::Mat& image) {
    if (image.depth() != CV_8U)
        cv::error(cv::Error::StsUnsupportedFormat,
                  "Both input images must have either 8uC1 or 8uC3 type", kRigidTransformName,
                  __FILE__, __LINE__);
    const int cn = image.channels();
    if (!(cn == 1 || cn == 3 || cn == 4))
        cv::error(cv::Error::StsAssert, "cn == 1 || cn == 3 || cn == 4", kRigidTransformName,
                  __FILE__, __LINE__);
}

double inlierTolerance(const Points& to) {
    const cv::Rect around = cv::boundingRect(to);
    return std::max(around.width, around.height) * kInlierTolerance;
}

/// City-block distance between the image of the first point and the second one.
double residual(const cv::Matx23d& M, cv::Point2f from, cv::Point2f to) {
    const double* const m = M.val;
    return std::abs(m[0] * from.x + m[1] * from.y + m[2] - to.x) +
           std::abs(m[3] * from.x + m[4] * from.y + m[5] - to.y);
}

cv::Matx23d fit(std::span<const cv::Point2f> from, std::span<const cv::Point2f> to,
                bool fullAffine) {
    cv::Matx23d m;
    cv::Mat M(2, 3, CV_64F, m.val);
    getRTMatrix(from.data(), to.data(), static_cast<int>(from.size()), M, fullAffine);
    return m;
}

cv::Matx23d fitToSample(const Points& from, const Points& to, const SampleIndices& sample,
                        bool fullAffine) {
    const cv::Point2f a[] = {from[sample[0]], from[sample[1]], from[sample[2]]};
    const cv::Point2f b[] = {to[sample[0]], to[sample[1]], to[sample[2]]};
    return fit(a, b, fullAffine);
}

void findInliers(const cv::Matx23d& M, const Points& from, const Points& to, double tolerance,
                 PointPairs& inliers) {
    inliers.from.clear();
    inliers.to.clear();
    for (std::size_t i = 0; i < from.size(); ++i) {
        if (residual(M, from[i], to[i]) < tolerance) {
            inliers.from.push_back(from[i]);
            inliers.to.push_back(to[i]);
        }
    }
}

cv::Mat matrixOf(const std::optional<cv::Matx23d>& transform) {
    return transform ? cv::Mat(*transform) : cv::Mat();
}

}  // namespace

std::optional<cv::Matx23d> fitToConsensus(const Points& from, const Points& to, bool fullAffine,
                                          PointPairs& inliers) {
    if (from.size() < 3)
        return std::nullopt;
    const double tolerance = inlierTolerance(to);
    const double wanted = static_cast<double>(from.size()) * kInlierRatio;
    cv::RNG random(0xffffffffffffffffULL);
    for (int iteration = 0; iteration < kMaxIterations; ++iteration) {
        const auto sample = drawSample(random, from, to);
        if (!sample)
            continue;
        findInliers(fitToSample(from, to, *sample, fullAffine), from, to, tolerance, inliers);
        if (static_cast<double>(inliers.from.size()) >= wanted)
            return fit(inliers.from, inliers.to, fullAffine);
    }
    return std::nullopt;
}

cv::Mat rigidTransform(cv::InputArray src, cv::InputArray dst, bool fullAffine) {
    const cv::Mat a = src.getMat();
    const cv::Mat b = dst.getMat();
    checkAlike(a, b);
    if (a.empty())
        return {};
    PointPairs inliers;
    if (isPointSet(a))
        return matrixOf(fitToConsensus(toPoints(a), toPoints(b), fullAffine, inliers));
    checkImage(a);
    const TrackedGrid grid = trackGrid(a, b);
    auto M = fitToConsensus(grid.pairs.from, grid.pairs.to, fullAffine, inliers);
    if (M) {
        (*M)(0, 2) /= grid.scale;
        (*M)(1, 2) /= grid.scale;
    }
    return matrixOf(M);
}

}  // namespace orbitwalk

cv::Mat cv::estimateRigidTransform(InputArray src, InputArray dst, bool fullAffine) {
    return orbitwalk::rigidTransform(src, dst, fullAffine);
}
