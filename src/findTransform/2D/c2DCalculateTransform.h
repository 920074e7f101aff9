#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <opencv2/core.hpp>
#include <span>
#include <vector>

#include "common/TaskThread.h"
#include "findTransform/2D/Picture.h"
#include "findTransform/2D/RigidTransform.h"
#include "findTransform/ifindTransform.h"
#include "orbitwalk/Geometry.h"

/// Finder of 2D rigid motion: corners of the previous quarter-size picture, tracked forwards and
/// backwards by pyramidal Lucas-Kanade, filtered, and fitted by RANSAC.
///
/// A frame whose motion cannot be measured repeats the last measured motion. That holds for frames
/// handed over before Initialize and after Release too. When OpenCV or an allocation throws out of
/// getTrajectory, the frame does not count and the next one is compared with the frame before it.
///
/// Where there is more than one core, what the next frame needs of this one is made beside the
/// caller after a frame's call, from the finder's own memory. It changes no result and says
/// nothing: whoever needs it sooner waits, and what failed is tried again where it is needed.
class c2DCalculateTransform : public ifindTransform {
  public:
    c2DCalculateTransform();
    c2DCalculateTransform(const c2DCalculateTransform&) = delete;
    c2DCalculateTransform& operator=(const c2DCalculateTransform&) = delete;

    /// Frame count, sums and key points outlive a second call; a refused size changes nothing.
    int Initialize(int width, int height) override;
    void Release() override;
    int getTrajectory(unsigned char* frame, float* x, float* y, float* a) override;

    /// Measures one frame. After a null first frame the records are one ahead of
    /// getCumulativeTransform, which then adds each motion a frame late. @return always 0.
    int CalculatePrevToCurTransform(unsigned char* frame);
    /// Adds the next record to the sum; one call per call of CalculatePrevToCurTransform.
    void getCumulativeTransform(double* x, double* y, double* a);
    /// Reduces through the index tables, which hold the sizes that Initialize was given.
    void resizeImage_Y(unsigned char* src, unsigned char* dst, int srcWidth, int srcHeight,
                       int dstWidth, int dstHeight);

    /// Tracks pts0 from img0 into img1 as pts1 and drops the lost tracks. @return always 0.
    int TrackPointsWithOpticalFlow(orbitwalk::Picture& img0, orbitwalk::Picture& img1,
                                   std::vector<cv::Point2f>& pts0, std::vector<cv::Point2f>& pts1);
    /// The same, with the lost tracks dropped from ptsOther as well. @return always 0.
    int TrackPointsWithOpticalFlowBackward(orbitwalk::Picture& img0, orbitwalk::Picture& img1,
                                           std::vector<cv::Point2f>& pts0,
                                           std::vector<cv::Point2f>& pts1,
                                           std::vector<cv::Point2f>& ptsOther);
    /// Keeps the consistent tracks and, of 20 or more, the smaller motions. @return always 0.
    int FilterkeyPoints(std::vector<cv::Point2f>& keptPrev, std::vector<cv::Point2f>& keptCur,
                        std::vector<cv::Point2f>& keptBack);
    /// @return 0, or 1 with the threshold untouched when the histogram cannot be allocated.
    int OTsuThreshold(const std::vector<float>& values, float& threshold);
    float EuclideanDistCalc(cv::Point2f p, cv::Point2f q);

  private:
    bool hasBuffers() const { return !pictures[0].empty(); }
    void reserveForCapture();
    void startPreparing();
    void readBuildType();
    void prepareForNextFrame(int index);
    void settlePreparation();
    void reducePicture(unsigned char* frame, int PrevIndx, int CurIndx);
    orbitwalk::Trajectory measureMotion(orbitwalk::Picture& prev, orbitwalk::Picture& cur);
    void selectCorners(orbitwalk::Picture& picture);
    bool trackForward(orbitwalk::Picture& prev, orbitwalk::Picture& cur);
    bool trackBackward(orbitwalk::Picture& prev, orbitwalk::Picture& cur);
    void track(orbitwalk::Picture& from, orbitwalk::Picture& to,
               const std::vector<cv::Point2f>& points, std::vector<cv::Point2f>& tracked);
    orbitwalk::Trajectory estimateMotion();
    orbitwalk::Trajectory repeatLastMotion();
    void appendTransform(const orbitwalk::Trajectory& motion);
    void keepPoints(std::span<const cv::Point2f> prev, std::span<const cv::Point2f> cur);

    std::vector<orbitwalk::Trajectory> prevToCurTransforms;
    std::vector<orbitwalk::Trajectory> trajectory;
    orbitwalk::Trajectory cumulative;
    int cumulativeCount = 0;
    std::vector<std::uint16_t> rowIndexTable;
    std::vector<std::uint16_t> colIndexTable;
    /// Last accepted transform from the previous frame to the current one, translation in full-size
    /// pixels.
    cv::Matx23d lastTransform = cv::Matx23d::eye();
    int frameIndex = 0;
    /// Matched points of the first frames, for diagnosis, one frame's after the other's: those of
    /// frame i end at keyPointsEnd[i]. At most 2 MB; the motions above grow for the whole capture,
    /// by 48 bytes a frame.
    static constexpr std::size_t kFramesWithPoints = 1000;
    static constexpr std::size_t kMostKeyPoints = 1 << 17;
    std::vector<cv::Point2f> keyPointsPrev;
    std::vector<cv::Point2f> keyPointsCur;
    std::vector<std::size_t> keyPointsEnd;
    /// Reduced pictures of frames of even and of odd number.
    std::array<orbitwalk::Picture, 2> pictures;
    int rszFactor;
    int width = 0;
    int height = 0;
    int rszWidth = 0;
    int rszHeight = 0;
    bool engBuild = false;

    // Room to work in, kept from frame to frame: the points of the frame that is being measured,
    // where tracks lead back to, what the tracker says of each, and the filter's and the fit's.
    std::vector<cv::Point2f> prevPts, curPts, backPts;
    std::vector<unsigned char> trackStatus;
    std::vector<float> displacements, sortedDisplacements;
    orbitwalk::PointPairs inliers;

    /// Which picture preparation makes ready; the thread has it and nothing else while it runs.
    int preparedIndex = 0;
    std::unique_ptr<orbitwalk::TaskThread> preparation;  ///< Last: it ends first. Null on one core.
};
