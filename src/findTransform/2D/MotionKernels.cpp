#include "orbitwalk/MotionKernels.h"

#include <opencv2/imgproc.hpp>
#include <opencv2/video/tracking.hpp>

void NURV::goodFeaturesToTrack(cv::InputArray image, cv::OutputArray corners, int maxCorners,
                               double qualityLevel, double minDistance, cv::InputArray mask,
                               int blockSize, bool useHarrisDetector, double k) {
    cv::goodFeaturesToTrack(image, corners, maxCorners, qualityLevel, minDistance, mask, blockSize,
                            useHarrisDetector, k);
}

int NURV::buildOpticalFlowPyramid(cv::InputArray img, cv::OutputArrayOfArrays pyramid,
                                  cv::Size winSize, int maxLevel, bool withDerivatives,
                                  int pyrBorder, int derivBorder, bool tryReuseInputImage) {
    return cv::buildOpticalFlowPyramid(img, pyramid, winSize, maxLevel, withDerivatives, pyrBorder,
                                       derivBorder, tryReuseInputImage);
}

void NURV::calcOpticalFlowPyrLK(cv::InputArray prevImg, cv::InputArray nextImg,
                                cv::InputArray prevPts, cv::InputOutputArray nextPts,
                                cv::OutputArray status, cv::OutputArray err, cv::Size winSize,
                                int maxLevel, cv::TermCriteria criteria, int flags,
                                double minEigThreshold) {
    cv::calcOpticalFlowPyrLK(prevImg, nextImg, prevPts, nextPts, status, err, winSize, maxLevel,
                             criteria, flags, minEigThreshold);
}
