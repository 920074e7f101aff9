#pragma once

#include <opencv2/core/mat.hpp>

namespace test_support {

/// A picture as a camera over a wide textured scene sees it.
struct View {
    double x = 0;        ///< Scene pixels from its middle, to the right.
    double y = 0;        ///< Scene pixels, down.
    double degrees = 0;  ///< Turn of the picture on the screen, clockwise.
    double zoom = 1;     ///< Picture pixels a scene pixel.
};

/// Even, 640x480.
cv::Size pictureSize();
cv::Mat1b takePicture(const View& view);

}  // namespace test_support
