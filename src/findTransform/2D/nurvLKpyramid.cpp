#include <opencv2/video/tracking.hpp>

#include "orbitwalk/MotionKernels.h"

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
