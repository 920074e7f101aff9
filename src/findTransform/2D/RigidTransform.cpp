// OpenCV's video module declares a deprecated function of the exported name: its header stays out.
#include "findTransform/2D/RigidTransform.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

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

std::vector<cv::Point2f> toPoints(const cv::Mat& array) {
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

double inlierTolerance(const PointPairs& pairs) {
    const cv::Rect around = cv::boundingRect(pairs.to);
    return std::max(around.width, around.height) * kInlierTolerance;
}

/// City-block distance between the image of the first point and the second one.
double residual(const double* m, cv::Point2f from, cv::Point2f to) {
    return std::abs(m[0] * from.x + m[1] * from.y + m[2] - to.x) +
           std::abs(m[3] * from.x + m[4] * from.y + m[5] - to.y);
}

cv::Mat fit(const std::vector<cv::Point2f>& from, const std::vector<cv::Point2f>& to,
            bool fullAffine) {
    cv::Mat M(2, 3, CV_64F);
    getRTMatrix(from.data(), to.data(), static_cast<int>(from.size()), M, fullAffine);
    return M;
}

cv::Mat fitToSample(const PointPairs& pairs, const SampleIndices& sample, bool fullAffine) {
    std::vector<cv::Point2f> from, to;
    for (const int i : sample) {
        from.push_back(pairs.from[i]);
        to.push_back(pairs.to[i]);
    }
    return fit(from, to, fullAffine);
}

PointPairs inliersOf(const cv::Mat& M, const PointPairs& pairs, double tolerance) {
    PointPairs inliers;
    for (std::size_t i = 0; i < pairs.from.size(); ++i) {
        if (residual(M.ptr<double>(), pairs.from[i], pairs.to[i]) < tolerance) {
            inliers.from.push_back(pairs.from[i]);
            inliers.to.push_back(pairs.to[i]);
        }
    }
    return inliers;
}

/// Random samples until one agrees with half of the pairs, then a fit to all that agree.
cv::Mat fitToConsensus(const PointPairs& pairs, bool fullAffine) {
    if (pairs.from.size() < 3)
        return {};
    const double tolerance = inlierTolerance(pairs);
    const double wanted = static_cast<double>(pairs.from.size()) * kInlierRatio;
    cv::RNG random(0xffffffffffffffffULL);
    for (int iteration = 0; iteration < kMaxIterations; ++iteration) {
        const auto sample = drawSample(random, pairs.from, pairs.to);
        if (!sample)
            continue;
        const cv::Mat M = fitToSample(pairs, *sample, fullAffine);
        const PointPairs inliers = inliersOf(M, pairs, tolerance);
        if (static_cast<double>(inliers.from.size()) >= wanted)
            return fit(inliers.from, inliers.to, fullAffine);
    }
    return {};
}

}  // namespace

cv::Mat rigidTransform(cv::InputArray src, cv::InputArray dst, bool fullAffine) {
    const cv::Mat a = src.getMat();
    const cv::Mat b = dst.getMat();
    checkAlike(a, b);
    if (a.empty())
        return {};
    if (isPointSet(a))
        return fitToConsensus({toPoints(a), toPoints(b)}, fullAffine);
    checkImage(a);
    const TrackedGrid grid = trackGrid(a, b);
    cv::Mat M = fitToConsensus(grid.pairs, fullAffine);
    if (!M.empty()) {
        M.at<double>(0, 2) /= grid.scale;
        M.at<double>(1, 2) /= grid.scale;
    }
    return M;
}

}  // namespace orbitwalk

cv::Mat cv::estimateRigidTransform(InputArray src, InputArray dst, bool fullAffine) {
    return orbitwalk::rigidTransform(src, dst, fullAffine);
}
