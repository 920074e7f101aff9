#include <algorithm>
#include <opencv2/video/tracking.hpp>

#include "common/Log.h"
#include "findTransform/2D/OtsuThreshold.h"
#include "findTransform/2D/TrackFilter.h"
#include "findTransform/2D/c2DCalculateTransform.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE 2D_CALCULATE_TRANSFORM";

std::vector<unsigned char> track(const cv::Mat& from, const cv::Mat& to,
                                 const std::vector<cv::Point2f>& points,
                                 std::vector<cv::Point2f>& tracked) {
    const cv::TermCriteria criteria(cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 30, 0.01);
    std::vector<unsigned char> status;
    std::vector<float> error;
    cv::calcOpticalFlowPyrLK(from, to, points, tracked, status, error, cv::Size(21, 21), 3,
                             criteria, 0, 0.0001);
    return status;
}

}  // namespace

int c2DCalculateTransform::TrackPointsWithOpticalFlow(cv::Mat& img0, cv::Mat& img1,
                                                      std::vector<cv::Point2f>& pts0,
                                                      std::vector<cv::Point2f>& pts1) {
    logInfo("TrackPointsWithOpticalFlow : LK_OPENCV");
    orbitwalk::dropLostTracks(track(img0, img1, pts0, pts1), pts0, pts1);
    return 0;
}

int c2DCalculateTransform::TrackPointsWithOpticalFlowBackward(cv::Mat& img0, cv::Mat& img1,
                                                              std::vector<cv::Point2f>& pts0,
                                                              std::vector<cv::Point2f>& pts1,
                                                              std::vector<cv::Point2f>& ptsOther) {
    logInfo("TrackPointsWithOpticalFlowBackward : LK_OPENCV");
    orbitwalk::dropLostTracks(track(img0, img1, pts0, pts1), pts0, pts1, ptsOther);
    return 0;
}

int c2DCalculateTransform::FilterkeyPoints(std::vector<cv::Point2f>& prevPts,
                                           std::vector<cv::Point2f>& curPts,
                                           std::vector<cv::Point2f>& backPts) {
    const auto logSizes = [&, operation = __func__] {
        if (engBuild)
            logInfo("%s backward forward consistency done %d %d", operation,
                    static_cast<int>(prevPts.size()), static_cast<int>(curPts.size()));
    };
    const std::vector<float> disp = orbitwalk::keepConsistentTracks(prevPts, curPts, backPts);
    logSizes();
    if (prevPts.size() < orbitwalk::kFewestTracks)
        return 0;

    std::vector<float> sorted = disp;
    std::sort(sorted.begin(), sorted.end());
    float threshold = sorted[sorted.size() / 2];
    logInfo("OTSUTHRESHOLDING : threshold value median = %f\n", static_cast<double>(threshold));
    OTsuThreshold(sorted, threshold);
    logInfo("OTSUTHRESHOLDING : threshold value otsu  = %f\n", static_cast<double>(threshold));
    orbitwalk::keepSmallerMotions(disp, threshold, prevPts, curPts, backPts);
    logSizes();
    return 0;
}

int c2DCalculateTransform::OTsuThreshold(std::vector<float> values, float& threshold) {
    const auto split = orbitwalk::otsuThreshold(values);
    if (!split)
        return 1;
    threshold = *split;
    return 0;
}

float c2DCalculateTransform::EuclideanDistCalc(cv::Point2f p, cv::Point2f q) {
    return orbitwalk::distance(p, q);
}
