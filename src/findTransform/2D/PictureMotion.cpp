#include "findTransform/2D/PictureMotion.h"

#include <cmath>

namespace orbitwalk {

Trajectory motionOf(const cv::Mat& transform) {
    if (transform.empty())
        return {};
    return {transform.at<double>(0, 2), transform.at<double>(1, 2),
            std::atan2(transform.at<double>(1, 0), transform.at<double>(0, 0))};
}

void scaleTranslation(cv::Mat& transform, double factor) {
    transform.at<double>(0, 2) *= factor;
    transform.at<double>(1, 2) *= factor;
}

}  // namespace orbitwalk
