#include "tool/PanVideo.h"

#include <cstdlib>
#include <opencv2/imgproc.hpp>

#include "support/VideoFile.h"

namespace test_support {
namespace {

/// Soft blotches of random brightness, some thirty pixels each: corners all over.
cv::Mat texture(cv::Size size) {
    cv::RNG random(7);
    cv::Mat grid(size.height / 30 + 4, size.width / 30 + 4, CV_8UC1);
    random.fill(grid, cv::RNG::UNIFORM, 20, 236);
    cv::Mat scene;
    cv::resize(grid, scene, size, 0, 0, cv::INTER_CUBIC);
    return scene;
}

}  // namespace

std::vector<std::vector<std::uint8_t>> panFrames(const Pan& pan) {
    const int travelX = std::abs(pan.stepX) * (pan.frames - 1);
    const int travelY = std::abs(pan.stepY) * (pan.frames - 1);
    const cv::Mat scene = texture({pan.width + travelX, pan.height + travelY});
    cv::RNG random(11);
    std::vector<std::vector<std::uint8_t>> frames;
    for (int i = 0; i < pan.frames; ++i) {
        const cv::Rect window((pan.stepX > 0 ? travelX : 0) - i * pan.stepX,
                              (pan.stepY > 0 ? travelY : 0) - i * pan.stepY, pan.width, pan.height);
        auto& frame = frames.emplace_back(pan.width * pan.height * 3 / 2, std::uint8_t{128});
        cv::Mat luma(pan.height, pan.width, CV_8UC1, frame.data());
        cv::Mat noise(luma.size(), CV_16SC1);
        random.fill(noise, cv::RNG::NORMAL, 0, 1.5);
        cv::add(scene(window), noise, luma, cv::noArray(), CV_8U);
    }
    return frames;
}

void writePanVideo(const std::filesystem::path& file, const Pan& pan) {
    orbitwalk::media::EncoderSettings settings;
    settings.width = pan.width;
    settings.height = pan.height;
    const auto frames = panFrames(pan);
    writeVideo(file, settings, pan.frames, [&](int i) { return frames[i]; });
}

}  // namespace test_support
