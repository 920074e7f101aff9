#include "findTransform/2D/c2DCalculateTransform.h"

#include <algorithm>
#include <opencv2/video/tracking.hpp>
#include <system_error>
#include <utility>

#include "common/BuildType.h"
#include "common/Log.h"
#include "findTransform/2D/LumaReduction.h"
#include "findTransform/2D/TrackFilter.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE 2D_CALCULATE_TRANSFORM";

}  // namespace

ifindTransform* ifindTransform::Create() {
    return new c2DCalculateTransform;
}

int ifindTransform::Destroy(ifindTransform* finder) {
    // Said here and not by the destructor: a finder that a later start replaces ends without a
    // word.
    if (finder != nullptr) {
        logInfo("c2DCalculateTransform::~c2DCalculateTransform Enter");
        logInfo("c2DCalculateTransform::~c2DCalculateTransform Exit");
    }
    delete finder;
    return 1;
}

c2DCalculateTransform::c2DCalculateTransform() : rszFactor(orbitwalk::kReduction) {
    logInfo("c2DCalculateTransform::c2DCalculateTransform Enter");
}

int c2DCalculateTransform::Initialize(int frameWidth, int frameHeight) {
    logInfo("c2DCalculateTransform::Initialize : Enter : WidthxHeight = %dx%d ", frameWidth,
            frameHeight);
    if (!orbitwalk::canReduce(frameWidth, frameHeight)) {
        logError("c2DCalculateTransform::Initialize Error: WidthxHeight = %dx%d", frameWidth,
                 frameHeight);
        return 1;
    }
    const int reducedWidth = frameWidth / orbitwalk::kReduction;
    const int reducedHeight = frameHeight / orbitwalk::kReduction;
    // Everything that may throw comes first. The pictures begin as zeros: the reduction leaves some
    // of their bytes unwritten and the tracker's windows reach those.
    orbitwalk::Picture even, odd;
    for (orbitwalk::Picture* const picture : {&even, &odd})
        picture->reset({reducedWidth, reducedHeight});
    auto rows = orbitwalk::reductionTable(frameHeight, reducedHeight);
    auto columns = orbitwalk::reductionTable(frameWidth, reducedWidth);
    reserveForCapture();
    orbitwalk::keepTemporaries(even.view().size());
    startPreparing();

    width = frameWidth;
    height = frameHeight;
    lastTransform = cv::Matx23d::eye();
    rszWidth = reducedWidth;
    rszHeight = reducedHeight;
    rszFactor = orbitwalk::kReduction;
    pictures = {std::move(even), std::move(odd)};
    rowIndexTable = std::move(rows);
    colIndexTable = std::move(columns);
    readBuildType();
    return 0;
}

void c2DCalculateTransform::reserveForCapture() {
    prevToCurTransforms.reserve(kFramesWithPoints + 1);
    trajectory.reserve(kFramesWithPoints + 1);
    keyPointsPrev.reserve(kMostKeyPoints);
    keyPointsCur.reserve(kMostKeyPoints);
    keyPointsEnd.reserve(kFramesWithPoints);
    for (auto* const points : {&prevPts, &curPts, &backPts, &inliers.from, &inliers.to})
        points->reserve(orbitwalk::kMostCorners);
    for (auto* const values : {&displacements, &sortedDisplacements})
        values->reserve(orbitwalk::kMostCorners);
    trackStatus.reserve(orbitwalk::kMostCorners);
}

/// A finder without the thread measures the same, later.
void c2DCalculateTransform::startPreparing() try {
    settlePreparation();
    if (!preparation && orbitwalk::TaskThread::pays())
        preparation =
            std::make_unique<orbitwalk::TaskThread>([this] { pictures[preparedIndex].prepare(); });
} catch (const std::system_error&) {
}

void c2DCalculateTransform::readBuildType() {
    const orbitwalk::BuildType buildType;
    logInfo("c2DCalculateTransform::Initialize -- buildType = %s", buildType.text());
    engBuild = buildType.isEngineering();
    if (engBuild)
        logInfo("c2DCalculateTransform::Initialize -- ENGINEERING build");
}

void c2DCalculateTransform::Release() {
    logInfo("c2DCalculateTransform::Release Enter");
    preparation.reset();
    for (orbitwalk::Picture& picture : pictures)
        picture.reset();
    std::vector<std::uint16_t>().swap(rowIndexTable);
    std::vector<std::uint16_t>().swap(colIndexTable);
    logInfo("c2DCalculateTransform::Release Exit");
}

void c2DCalculateTransform::resizeImage_Y(unsigned char* src, unsigned char* dst, int srcWidth,
                                          int /*srcHeight*/, int dstWidth, int dstHeight) {
    orbitwalk::reduceLuma(src, srcWidth, std::span(rowIndexTable).first(dstHeight),
                          std::span(colIndexTable).first(dstWidth), dst);
}

int c2DCalculateTransform::getTrajectory(unsigned char* frame, float* x, float* y, float* a) {
    const int result = CalculatePrevToCurTransform(frame);
    double X = 0, Y = 0, A = 0;
    getCumulativeTransform(&X, &Y, &A);
    *x = static_cast<float>(X);
    *y = static_cast<float>(Y);
    *a = static_cast<float>(A);
    return result;
}

void c2DCalculateTransform::getCumulativeTransform(double* x, double* y, double* a) {
    orbitwalk::Trajectory sum;
    if (cumulativeCount != 0) {
        const orbitwalk::Trajectory& motion = prevToCurTransforms.at(cumulativeCount - 1);
        sum = cumulative + motion;
        logInfo("c2DCalculateTransform::getTransform : Frame[%d] : Transform [ %f, %f, %f ] ",
                cumulativeCount, motion.x, motion.y, motion.a);
    }
    logInfo(
        "c2DCalculateTransform::getCumulativeTransform : Frame[%d] : Trajectory [ %f, %f, %f ] ",
        cumulativeCount, sum.x, sum.y, sum.a);
    trajectory.push_back(sum);
    cumulative = sum;
    *x = sum.x;
    *y = sum.y;
    *a = sum.a;
    ++cumulativeCount;
}

void c2DCalculateTransform::track(orbitwalk::Picture& from, orbitwalk::Picture& to,
                                  const std::vector<cv::Point2f>& points,
                                  std::vector<cv::Point2f>& tracked) {
    const cv::Size window(orbitwalk::kTrackingWindow, orbitwalk::kTrackingWindow);
    const cv::TermCriteria criteria(cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 30, 0.01);
    cv::calcOpticalFlowPyrLK(from.pyramid(), to.pyramid(), points, tracked, trackStatus,
                             cv::noArray(), window, orbitwalk::kTopLevel, criteria, 0, 0.0001);
    orbitwalk::loseTracksOutside(to.view().size(), window.width, tracked, trackStatus);
}

int c2DCalculateTransform::TrackPointsWithOpticalFlow(orbitwalk::Picture& img0,
                                                      orbitwalk::Picture& img1,
                                                      std::vector<cv::Point2f>& pts0,
                                                      std::vector<cv::Point2f>& pts1) {
    logInfo("TrackPointsWithOpticalFlow : LK_OPENCV");
    track(img0, img1, pts0, pts1);
    orbitwalk::dropLostTracks(trackStatus, pts0, pts1);
    return 0;
}

int c2DCalculateTransform::TrackPointsWithOpticalFlowBackward(orbitwalk::Picture& img0,
                                                              orbitwalk::Picture& img1,
                                                              std::vector<cv::Point2f>& pts0,
                                                              std::vector<cv::Point2f>& pts1,
                                                              std::vector<cv::Point2f>& ptsOther) {
    logInfo("TrackPointsWithOpticalFlowBackward : LK_OPENCV");
    track(img0, img1, pts0, pts1);
    orbitwalk::dropLostTracks(trackStatus, pts0, pts1, ptsOther);
    return 0;
}

int c2DCalculateTransform::FilterkeyPoints(std::vector<cv::Point2f>& keptPrev,
                                           std::vector<cv::Point2f>& keptCur,
                                           std::vector<cv::Point2f>& keptBack) {
    const auto logSizes = [&, operation = __func__] {
        if (engBuild)
            logInfo("%s backward forward consistency done %d %d", operation,
                    static_cast<int>(keptPrev.size()), static_cast<int>(keptCur.size()));
    };
    orbitwalk::keepConsistentTracks(keptPrev, keptCur, keptBack, displacements);
    logSizes();
    if (keptPrev.size() < orbitwalk::kFewestTracks)
        return 0;

    std::vector<float>& sorted = sortedDisplacements;
    sorted = displacements;
    std::sort(sorted.begin(), sorted.end());
    float threshold = sorted[sorted.size() / 2];
    logInfo("OTSUTHRESHOLDING : threshold value median = %f\n", static_cast<double>(threshold));
    OTsuThreshold(sorted, threshold);
    logInfo("OTSUTHRESHOLDING : threshold value otsu  = %f\n", static_cast<double>(threshold));
    orbitwalk::keepSmallerMotions(displacements, threshold, keptPrev, keptCur, keptBack);
    logSizes();
    return 0;
}

int c2DCalculateTransform::OTsuThreshold(const std::vector<float>& values, float& threshold) {
    const auto split = orbitwalk::otsuThreshold(values);
    if (!split)
        return 1;
    threshold = *split;
    return 0;
}

float c2DCalculateTransform::EuclideanDistCalc(cv::Point2f p, cv::Point2f q) {
    return orbitwalk::distance(p, q);
}
