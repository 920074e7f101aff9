#include "findTransform/2D/RigidGrid.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

#include "orbitwalk/MotionKernels.h"

namespace orbitwalk {
namespace {

constexpr int kGridRows = 15;
constexpr int kReducedWidth = 160;
constexpr int kReducedHeight = 120;
constexpr int kLevels = 3;
const cv::Size kWindow(21, 21);

cv::Mat toGray(const cv::Mat& image) {
    if (image.channels() == 1)
        return image;
    cv::Mat gray;
    cv::cvtColor(image, gray, image.channels() == 3 ? cv::COLOR_BGR2GRAY : cv::COLOR_BGRA2GRAY);
    return gray;
}

cv::Mat reduce(const cv::Mat& image, double scale) {
    if (scale <= 1)
        return image;
    const cv::Size size(std::max(cvRound(image.cols / scale), 1),
                        std::max(cvRound(image.rows / scale), 1));
    cv::Mat reduced;
    cv::resize(image, reduced, size, 0, 0, cv::INTER_AREA);
    return reduced;
}

std::vector<cv::Point2f> cellCentres(cv::Size image) {
    const int columns =
        std::max(cvRound(static_cast<double>(kGridRows) * image.width / image.height), 1);
    std::vector<cv::Point2f> points;
    for (int row = 0; row < kGridRows; ++row)
        for (int column = 0; column < columns; ++column)
            points.emplace_back((static_cast<float>(column) + 0.5f) *
                                    static_cast<float>(image.width) / static_cast<float>(columns),
                                (static_cast<float>(row) + 0.5f) *
                                    static_cast<float>(image.height) /
                                    static_cast<float>(kGridRows));
    return points;
}

}  // namespace

TrackedGrid trackGrid(const cv::Mat& first, const cv::Mat& second) {
    TrackedGrid grid;
    grid.scale = std::max({1.0, static_cast<double>(first.cols) / kReducedWidth,
                           static_cast<double>(first.rows) / kReducedHeight});
    const cv::Mat from = reduce(toGray(first), grid.scale);
    const cv::Mat to = reduce(toGray(second), grid.scale);
    std::vector<cv::Mat> pyramidFrom, pyramidTo;
    NURV::buildOpticalFlowPyramid(from, pyramidFrom, kWindow, kLevels);
    NURV::buildOpticalFlowPyramid(to, pyramidTo, kWindow, kLevels);

    const std::vector<cv::Point2f> points = cellCentres(from.size());
    std::vector<cv::Point2f> tracked;
    std::vector<unsigned char> status;
    NURV::calcOpticalFlowPyrLK(
        pyramidFrom, pyramidTo, points, tracked, status, cv::noArray(), kWindow, kLevels,
        cv::TermCriteria(cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 40, 0.1), 0, 0.0001);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (status[i] != 0) {
            grid.pairs.from.push_back(points[i]);
            grid.pairs.to.push_back(tracked[i]);
        }
    }
    return grid;
}

}  // namespace orbitwalk
