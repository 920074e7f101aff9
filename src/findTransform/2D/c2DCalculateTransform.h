#pragma once

#include <cstdint>
#include <map>
#include <opencv2/core.hpp>
#include <vector>

#include "findTransform/ifindTransform.h"
#include "orbitwalk/Geometry.h"

/// Finder of 2D rigid motion: corners of the previous quarter-size picture, tracked forwards and
/// backwards by pyramidal Lucas-Kanade, filtered, and fitted by RANSAC.
///
/// A frame whose motion cannot be measured repeats the last measured motion. That holds for frames
/// handed over before Initialize and after Release too. When OpenCV or an allocation throws out of
/// getTrajectory, the frame does not count and the next one is compared with the frame before it.
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
    int TrackPointsWithOpticalFlow(cv::Mat& img0, cv::Mat& img1, std::vector<cv::Point2f>& pts0,
                                   std::vector<cv::Point2f>& pts1);
    /// The same, with the lost tracks dropped from ptsOther as well. @return always 0.
    int TrackPointsWithOpticalFlowBackward(cv::Mat& img0, cv::Mat& img1,
                                           std::vector<cv::Point2f>& pts0,
                                           std::vector<cv::Point2f>& pts1,
                                           std::vector<cv::Point2f>& ptsOther);
    /// Keeps the consistent tracks and, of 20 or more, the smaller motions. @return always 0.
    int FilterkeyPoints(std::vector<cv::Point2f>& prevPts, std::vector<cv::Point2f>& curPts,
                        std::vector<cv::Point2f>& backPts);
    /// @return 0, or 1 with the threshold untouched when the histogram cannot be allocated.
    int OTsuThreshold(std::vector<float> values, float& threshold);
    float EuclideanDistCalc(cv::Point2f p, cv::Point2f q);

  private:
    bool hasBuffers() const { return !frameBuf[0].empty(); }
    void readBuildType();
    void reducePicture(unsigned char* frame, int PrevIndx, int CurIndx);
    orbitwalk::Trajectory measureMotion(int PrevIndx, int CurIndx);
    std::vector<cv::Point2f> selectCorners(const cv::Mat& view) const;
    bool trackForward(cv::Mat& prevView, cv::Mat& curView, std::vector<cv::Point2f>& prevPts,
                      std::vector<cv::Point2f>& curPts);
    bool trackBackward(cv::Mat& prevView, cv::Mat& curView, std::vector<cv::Point2f>& prevPts,
                       std::vector<cv::Point2f>& curPts);
    orbitwalk::Trajectory estimateMotion(const std::vector<cv::Point2f>& prevPts,
                                         const std::vector<cv::Point2f>& curPts);
    orbitwalk::Trajectory repeatLastMotion();
    void appendTransform(const orbitwalk::Trajectory& motion);
    void keepPoints(const std::vector<cv::Point2f>& prevPts,
                    const std::vector<cv::Point2f>& curPts);

    std::vector<orbitwalk::Trajectory> prevToCurTransforms;
    std::vector<orbitwalk::Trajectory> trajectory;
    orbitwalk::Trajectory cumulative;
    int cumulativeCount = 0;
    std::vector<std::uint16_t> rowIndexTable;
    std::vector<std::uint16_t> colIndexTable;
    /// Last accepted transform from the previous frame to the current one, 2x3 CV_64F, translation
    /// in full-size pixels.
    cv::Mat lastTransform;
    int frameIndex = 0;
    /// Matched points of the first frames, for diagnosis: 32 kB a frame at most, 32 MB in all. The
    /// motions above grow for the whole capture, by 48 bytes a frame.
    static constexpr int kFramesWithPoints = 1000;
    std::map<int, std::vector<cv::Point2f>> keyPointsPrev;
    std::map<int, std::vector<cv::Point2f>> keyPointsCur;
    /// Reduced pictures of frames of even and of odd number.
    std::vector<unsigned char> frameBuf[2];
    int rszFactor;
    int width = 0;
    int height = 0;
    int rszWidth = 0;
    int rszHeight = 0;
    bool engBuild = false;
};
