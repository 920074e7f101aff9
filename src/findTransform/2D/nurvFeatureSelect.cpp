#include <opencv2/imgproc.hpp>

#include "orbitwalk/MotionKernels.h"

void NURV::goodFeaturesToTrack(cv::InputArray image, cv::OutputArray corners, int maxCorners,
                               double qualityLevel, double minDistance, cv::InputArray mask,
                               int blockSize, bool useHarrisDetector, double k) {
    cv::goodFeaturesToTrack(image, corners, maxCorners, qualityLevel, minDistance, mask, blockSize,
                            useHarrisDetector, k);
}
