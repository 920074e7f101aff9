#include <cmath>

#include "common/Log.h"
#include "common/Stopwatch.h"
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

/// The motion that a transform [c -s tx; s c ty] stands for, without the scale that it may contain.
orbitwalk::Trajectory motionOf(const cv::Matx23d& transform) {
    return {transform(0, 2), transform(1, 2), std::atan2(transform(1, 0), transform(0, 0))};
}

/// From reduced to full-size pixels: only the translation has a unit.
void scaleTranslation(cv::Matx23d& transform, double factor) {
    transform(0, 2) *= factor;
    transform(1, 2) *= factor;
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
    settlePreparation();
    reducePicture(frame, PrevIndx, CurIndx);
    if (frameIndex == 0)
        ++frameIndex;
    else
        appendTransform(measureMotion(pictures[PrevIndx], pictures[CurIndx]));
    prepareForNextFrame(CurIndx);
    return 0;
}

void c2DCalculateTransform::prepareForNextFrame(int index) {
    if (!preparation)
        return;
    preparedIndex = index;
    preparation->begin();
}

void c2DCalculateTransform::settlePreparation() {
    if (preparation)
        preparation->settle();
}

void c2DCalculateTransform::reducePicture(unsigned char* frame, int PrevIndx, int CurIndx) {
    if (engBuild) {
        const void* const prevBuf = PrevIndx < 0 ? nullptr : pictures[PrevIndx].pixels();
        logInfo(
            "CalculatePrevToCurTransform: resize before, src = %p, rszFactor=%d prevBuf = %p "
            "curBuf = %p",
            static_cast<void*>(frame), rszFactor, prevBuf,
            static_cast<const void*>(pictures[CurIndx].pixels()));
    }
    const orbitwalk::ScopedTiming timing("CalculatePrevToCurTransform:ResizeOPT");
    resizeImage_Y(frame, pictures[CurIndx].rewrite(), width, height, rszWidth, rszHeight);
}

orbitwalk::Trajectory c2DCalculateTransform::measureMotion(orbitwalk::Picture& prev,
                                                           orbitwalk::Picture& cur) {
    logInfo("CalculatePrevToCurTransform: image range :  %dx%d  %dx%d", prev.view().cols,
            prev.view().rows, cur.view().cols, cur.view().rows);

    selectCorners(prev);
    if (tooFew(prevPts)) {
        logInfo("%s  prevFeaturePoints insufficeint frame number %d  %d ", kOperation, frameIndex,
                count(prevPts));
        return repeatLastMotion();
    }
    const orbitwalk::ScopedTiming timing(
        "CalculatePrevToCurTransform:profile feature_tracking_and_transform_estimation");
    if (!trackForward(prev, cur) || !trackBackward(prev, cur))
        return repeatLastMotion();
    return estimateMotion();
}

void c2DCalculateTransform::selectCorners(orbitwalk::Picture& picture) {
    {
        const orbitwalk::ScopedTiming timing(
            "CalculatePrevToCurTransform:profile feature_extract_capture");
        prevPts = picture.corners();
    }
    logInfo("CalculatePrevToCurTransform:key points : GFTT_OPENCV Point2f size : %d",
            count(prevPts));
    if (engBuild)
        logInfo("%s prevFeaturePoints  frame number %d roi = %d  w: %d ", kOperation, frameIndex,
                count(prevPts), picture.view().cols);
}

bool c2DCalculateTransform::trackForward(orbitwalk::Picture& prev, orbitwalk::Picture& cur) {
    curPts.clear();
    if (engBuild)
        logInfo("%s forward tracking frame number %d enter prev points currpoints %d %d",
                kOperation, frameIndex, count(prevPts), count(curPts));
    {
        const orbitwalk::ScopedTiming timing(
            "CalculatePrevToCurTransform:profile feature_track_forward");
        TrackPointsWithOpticalFlow(prev, cur, prevPts, curPts);
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

bool c2DCalculateTransform::trackBackward(orbitwalk::Picture& prev, orbitwalk::Picture& cur) {
    if (engBuild)
        logInfo("%s backward tracking frame number %d enter prev points currpoints %d %d",
                kOperation, frameIndex, count(prevPts), count(curPts));
    {
        const orbitwalk::ScopedTiming timing(
            "CalculatePrevToCurTransform:profile feature_track_backward");
        TrackPointsWithOpticalFlowBackward(cur, prev, curPts, backPts, prevPts);
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

orbitwalk::Trajectory c2DCalculateTransform::estimateMotion() {
    auto transform = orbitwalk::fitToConsensus(prevPts, curPts, false, inliers);
    keepPoints(prevPts, curPts);
    if (transform) {
        scaleTranslation(*transform, rszFactor);
        lastTransform = *transform;
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

void c2DCalculateTransform::keepPoints(std::span<const cv::Point2f> prev,
                                       std::span<const cv::Point2f> cur) {
    const auto frame = static_cast<std::size_t>(frameIndex);
    if (frame >= kFramesWithPoints || keyPointsPrev.size() + prev.size() > kMostKeyPoints)
        return;
    keyPointsEnd.resize(frame + 1, keyPointsPrev.size());
    keyPointsPrev.insert(keyPointsPrev.end(), prev.begin(), prev.end());
    keyPointsCur.insert(keyPointsCur.end(), cur.begin(), cur.end());
    keyPointsEnd[frame] = keyPointsPrev.size();
}
