#include "simulate/Scene.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "files/TextFile.h"
#include "media/MediaTypes.h"
#include "media/PictureFile.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

struct Leaf {
    cv::RotatedRect outline;
    cv::Scalar colour;
    bool round;
};

// The density of the inverse square: every order of size covers about as many pixels as it has
// edges to show.
float leafRadius(cv::RNG& random, double smallest, double largest) {
    const double u = random.uniform(0.0, 1.0);
    return static_cast<float>(1 / ((1 - u) / smallest + u / largest));
}

std::vector<Leaf> scatterLeaves(cv::Size size, cv::RNG& random) {
    constexpr int pixelsPerLeaf = 900;
    const double largest = std::max(8.0, std::min(size.width, size.height) / 5.0);
    std::vector<Leaf> leaves(static_cast<std::size_t>(size.area()) / pixelsPerLeaf + 1);
    for (Leaf& leaf : leaves) {
        const float radius = leafRadius(random, 6, largest);
        const cv::Point2f centre(random.uniform(0.f, float(size.width)),
                                 random.uniform(0.f, float(size.height)));
        const cv::Size2f sides(2 * radius, 2 * radius * random.uniform(0.4f, 1.f));
        leaf.outline = cv::RotatedRect(centre, sides, random.uniform(0.f, 180.f));
        const double grey = random.uniform(30, 226);
        for (int c = 0; c < 3; ++c)
            leaf.colour[c] = std::clamp(grey + random.uniform(-30, 31), 0.0, 255.0);
        leaf.round = random.uniform(0, 2) == 0;
    }
    // Large ones first: otherwise they would hide most of the detail.
    std::stable_sort(leaves.begin(), leaves.end(), [](const Leaf& p, const Leaf& q) {
        return p.outline.size.width > q.outline.size.width;
    });
    return leaves;
}

void draw(const Leaf& leaf, cv::Mat3b& picture) {
    if (leaf.round) {
        cv::ellipse(picture, leaf.outline, leaf.colour, cv::FILLED, cv::LINE_AA);
        return;
    }
    cv::Point2f corners[4];
    leaf.outline.points(corners);
    const std::vector<cv::Point> polygon(corners, corners + 4);
    cv::fillConvexPoly(picture, polygon, leaf.colour, cv::LINE_AA);
}

void addGrain(cv::Mat3b& picture, cv::RNG& random) {
    cv::Mat1f grain(picture.size());
    random.fill(grain, cv::RNG::NORMAL, 0, 16);
    cv::GaussianBlur(grain, grain, {7, 7}, 1);
    cv::Mat coloured;
    cv::merge(std::vector<cv::Mat>(3, grain), coloured);
    cv::add(picture, coloured, picture, cv::noArray(), CV_8U);
}

}  // namespace

cv::Mat3b readPhoto(const std::filesystem::path& file) {
    constexpr std::size_t kMost = std::size_t{1} << 30;
    const std::string bytes = readTextFile(file, kMost);
    try {
        media::Picture photo = media::decodePicture(bytes);
        cv::Mat3b picture;
        cv::cvtColor(
            cv::Mat3b(photo.height, photo.width, reinterpret_cast<cv::Vec3b*>(photo.pixels.data())),
            picture, cv::COLOR_RGB2BGR);
        return picture;
    } catch (const media::MediaError&) {
        throw ToolError(file.string() + " is not a picture that can be read");
    }
}

cv::Mat3b texturedScene(cv::Size size, cv::RNG random) {
    cv::Mat3b picture(size, cv::Vec3b(140, 130, 120));
    for (const Leaf& leaf : scatterLeaves(size, random))
        draw(leaf, picture);
    addGrain(picture, random);
    return picture;
}

}  // namespace orbitwalk::tool
