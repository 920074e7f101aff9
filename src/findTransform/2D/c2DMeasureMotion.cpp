#include <cmath>
#include <opencv2/imgproc.hpp>

#include "common/Log.h"
#include "common/Stopwatch.h"
#include "findTransform/2D/LumaReduction.h"
#include "findTransform/2D/RigidTransform.h"
#include "findTransform/2D/TrackFilter.h"
#include "findTransform/2D/c2DCalculateTransform.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE 2D_CALCULATE_TRANSFORM";
// The steps of one operation stand in functions of their own and speak in its name.
constexpr char kOperation[] = "CalculatePrevToCurTransform";

int count(const std::vector<cv::Point2f>& points) {
    return static_cast<int>(points.size());
}

bool tooFew(const std::vector<cv::Point2f>& points) {
    return count(points) < orbitwalk::kFewestTracks;
}

/// The motion that a transform [c -s tx; s c ty] stands for, without the scale that it may contain;
/// an empty one is no motion.
orbitwalk::Trajectory motionOf(const cv::Mat& transform) {
    if (transform.empty())
        return {};
    return {transform.at<double>(0, 2), transform.at<double>(1, 2),
            std::atan2(transform.at<double>(1, 0), transform.at<double>(0, 0))};
}

/// From reduced to full-size pixels: only the translation has a unit.
void scaleTranslation(cv::Mat& transform, double factor) {
    transform.at<double>(0, 2) *= factor;
    transform.at<double>(1, 2) *= factor;
}

}  // namespace

int c2DCalculateTransform::CalculatePrevToCurTransform(unsigned char* frame) {
    logInfo("CalculatePrevToCurTransform Enter : src = %p WxH = %dx%d ", static_cast<void*>(frame),
            width, height);
    if (frame == nullptr || !hasBuffers()) {
        appendTransform(repeatLastMotion());
        return 0;
    }
    const int CurIndx = frameIndex % 2;
    const int PrevIndx = (frameIndex - 1) % 2;
    logInfo("CalculatePrevToCurTransform Frm[%d] : CurIndx = %d PrevIndx = %d \n", frameIndex,
            CurIndx, PrevIndx);
    reducePicture(frame, PrevIndx, CurIndx);
    if (frameIndex == 0) {
        ++frameIndex;
        return 0;
    }
    appendTransform(measureMotion(PrevIndx, CurIndx));
    return 0;
}

void c2DCalculateTransform::reducePicture(unsigned char* frame, int PrevIndx, int CurIndx) {
    if (engBuild) {
        const void* const prevBuf = PrevIndx < 0 ? nullptr : frameBuf[PrevIndx].data();
        logInfo(
            "CalculatePrevToCurTransform: resize before, src = %p, rszFactor=%d prevBuf = %p "
            "curBuf = %p",
            static_cast<void*>(frame), rszFactor, prevBuf,
            static_cast<void*>(frameBuf[CurIndx].data()));
    }
    const orbitwalk::ScopedTiming timing("CalculatePrevToCurTransform:ResizeOPT");
    resizeImage_Y(frame, frameBuf[CurIndx].data(), width, height, rszWidth, rszHeight);
}

orbitwalk::Trajectory c2DCalculateTransform::measureMotion(int PrevIndx, int CurIndx) {
    const auto view = [this](int index) {
        return orbitwalk::centralView({rszHeight, rszWidth, CV_8UC1, frameBuf[index].data()});
    };
    cv::Mat prevView = view(PrevIndx);
    cv::Mat curView = view(CurIndx);
    logInfo("CalculatePrevToCurTransform: image range :  %dx%d  %dx%d", prevView.cols,
            prevView.rows, curView.cols, curView.rows);

    std::vector<cv::Point2f> prevPts = selectCorners(prevView);
    if (tooFew(prevPts)) {
        logInfo("%s  prevFeaturePoints insufficeint frame number %d  %d ", kOperation, frameIndex,
                count(prevPts));
        return repeatLastMotion();
    }
    const orbitwalk::ScopedTiming timing(
        "CalculatePrevToCurTransform:profile feature_tracking_and_transform_estimation");
    std::vector<cv::Point2f> curPts;
    if (!trackForward(prevView, curView, prevPts, curPts) ||
        !trackBackward(prevView, curView, prevPts, curPts))
        return repeatLastMotion();
    return estimateMotion(prevPts, curPts);
}

std::vector<cv::Point2f> c2DCalculateTransform::selectCorners(const cv::Mat& view) const {
    std::vector<cv::Point2f> corners;
    {
        const orbitwalk::ScopedTiming timing(
            "CalculatePrevToCurTransform:profile feature_extract_capture");
        cv::goodFeaturesToTrack(view, corners, 2000, 0.05, 10.0, cv::noArray(), 3, false, 0.04);
    }
    logInfo("CalculatePrevToCurTransform:key points : GFTT_OPENCV Point2f size : %d",
            count(corners));
    if (engBuild)
        logInfo("%s prevFeaturePoints  frame number %d roi = %d  w: %d ", kOperation, frameIndex,
                count(corners), view.cols);
    return corners;
}

bool c2DCalculateTransform::trackForward(cv::Mat& prevView, cv::Mat& curView,
                                         std::vector<cv::Point2f>& prevPts,
                                         std::vector<cv::Point2f>& curPts) {
    if (engBuild)
        logInfo("%s forward tracking frame number %d enter prev points currpoints %d %d",
                kOperation, frameIndex, count(prevPts), count(curPts));
    {
        const orbitwalk::ScopedTiming timing(
            "CalculatePrevToCurTransform:profile feature_track_forward");
        TrackPointsWithOpticalFlow(prevView, curView, prevPts, curPts);
    }
    if (engBuild)
        logInfo("%s forward tracking frame number %d exit prev points currpoints %d %d", kOperation,
                frameIndex, count(prevPts), count(curPts));
    if (tooFew(curPts)) {
        logInfo("%s insufficeint forward tracking  frame number %d %d", kOperation, frameIndex,
                count(curPts));
        return false;
    }
    return true;
}

bool c2DCalculateTransform::trackBackward(cv::Mat& prevView, cv::Mat& curView,
                                          std::vector<cv::Point2f>& prevPts,
                                          std::vector<cv::Point2f>& curPts) {
    std::vector<cv::Point2f> backPts;
    if (engBuild)
        logInfo("%s backward tracking frame number %d enter prev points currpoints %d %d",
                kOperation, frameIndex, count(prevPts), count(curPts));
    {
        const orbitwalk::ScopedTiming timing(
            "CalculatePrevToCurTransform:profile feature_track_backward");
        TrackPointsWithOpticalFlowBackward(curView, prevView, curPts, backPts, prevPts);
    }
    if (engBuild)
        logInfo("%s backward tracking frame number %d exit prev points currpoints %d %d",
                kOperation, frameIndex, count(prevPts), count(curPts));
    if (tooFew(prevPts)) {
        logInfo("%s insufficeint backward tracking  frame number %d %d", kOperation, frameIndex,
                count(prevPts));
        return false;
    }
    FilterkeyPoints(prevPts, curPts, backPts);
    logInfo("CalculatePrevToCurTransform:key points : keypoints size after filtering : %d",
            count(prevPts));
    if (tooFew(prevPts)) {
        logInfo("%s insufficeint forward backward tracking frame number %d %d", kOperation,
                frameIndex, count(prevPts));
        return false;
    }
    return true;
}

orbitwalk::Trajectory c2DCalculateTransform::estimateMotion(
    const std::vector<cv::Point2f>& prevPts, const std::vector<cv::Point2f>& curPts) {
    cv::Mat transform = orbitwalk::rigidTransform(prevPts, curPts, false);
    keepPoints(prevPts, curPts);
    if (!transform.empty()) {
        scaleTranslation(transform, rszFactor);
        lastTransform = transform;
    }
    return motionOf(lastTransform);
}

orbitwalk::Trajectory c2DCalculateTransform::repeatLastMotion() {
    keepPoints({}, {});
    return motionOf(lastTransform);
}

void c2DCalculateTransform::appendTransform(const orbitwalk::Trajectory& motion) {
    prevToCurTransforms.push_back(motion);
    logInfo("CalculatePrevToCurTransform : Frame[%d] : Transform[ %f, %f, %f ] ", frameIndex,
            motion.x, motion.y, motion.a);
    ++frameIndex;
}

void c2DCalculateTransform::keepPoints(const std::vector<cv::Point2f>& prevPts,
                                       const std::vector<cv::Point2f>& curPts) {
    if (frameIndex >= kFramesWithPoints)
        return;
    keyPointsPrev[frameIndex] = prevPts;
    keyPointsCur[frameIndex] = curPts;
}
