#include "render/SideBySide.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

#include "render/FramePlanes.h"

namespace orbitwalk::tool {

namespace {

constexpr int kWidestPair = 3840;

/// Fills one half of a plane.
void place(const cv::Mat1b& plane, cv::Mat1b& pair, int half) {
    const int width = pair.cols / 2;
    cv::Mat1b target = pair(cv::Rect(half * width, 0, width, pair.rows));
    if (plane.size() == target.size())
        plane.copyTo(target);
    else
        cv::resize(plane, target, target.size(), 0, 0, cv::INTER_AREA);
}

}  // namespace

cv::Size pairSize(cv::Size frame) {
    const int half = std::min(frame.width, kWidestPair / 2);
    const int height = std::max(2, frame.height * half / frame.width / 2 * 2);
    return {2 * half, height};
}

std::vector<std::uint8_t> sideBySide(std::span<const std::uint8_t> left,
                                     std::span<const std::uint8_t> right, cv::Size size) {
    const cv::Size both = pairSize(size);
    std::vector<std::uint8_t> output(frameBytes(both));
    FramePlanes pair = planesOf(std::span(output), both);
    int half = 0;
    for (const auto frame : {left, right}) {
        const FramePlanes planes = planesOf(frame, size);
        place(planes.y, pair.y, half);
        place(planes.cb, pair.cb, half);
        place(planes.cr, pair.cr, half);
        ++half;
    }
    return output;
}

}  // namespace orbitwalk::tool
