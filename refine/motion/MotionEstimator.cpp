#include "orbitwalk/refine/MotionEstimator.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <opencv2/core.hpp>
#include <set>
#include <stdexcept>
#include <string>

#include "motion/SimilarityFit.h"
#include "motion/Tracker.h"
#include "motion/WorkingPicture.h"

namespace orbitwalk::refine {

namespace {

constexpr int kSmallestSide = 16;
constexpr int kLargestSide = 32767;
/// What the tracker's noise reaches, pixels of the working picture.
constexpr double kDistanceFloor = 0.15;
/// Below any of these a motion counts as not measured: tracks that agree, their share of those
/// begun, and the share of the picture that they lie in.
constexpr int kLeastTracks = 8;
constexpr double kLeastAgreeing = 0.2;
constexpr double kLeastSpread = 0.06;
constexpr int kSpreadCells = 8;
/// Largest residual of a motion, as a share of the frame's longer side.
constexpr double kLargestResidual = 0.01;

/// A key frame serves as long as this much of it is still followed...
constexpr double kKeyAgreeing = 0.5;
constexpr double kKeySpread = 0.25;
/// ...nearly upright and of one size, as the tracker's windows neither turn nor grow...
constexpr double kKeyAngle = 0.1;
constexpr double kKeyLogScale = 0.05;
/// ...and it says what the steps since then say, in working pixels: in a scene with depth the two
/// may follow different planes.
constexpr double kKeyDeparture = 0.5;
/// How much of the difference from the key frame's word a step takes over.
constexpr double kKeyGain = 0.5;

bool isUsable(FrameSize size) {
    const auto [shorter, longer] = std::minmax(size.width, size.height);
    return shorter >= kSmallestSide && longer <= kLargestSide;
}

SimilarityTransform weakened(SimilarityTransform map, double gain) {
    return {gain * map.x, gain * map.y, gain * map.angle, gain * map.logScale, map.about};
}

}  // namespace

struct MotionEstimator::State {
    FrameSize size;
    int reduction = reductionFor(size);
    int window = trackWindowFor(reduction);
    bool hasFrame = false;
    cv::Mat1b picture{};
    TrackedFrame now{};
    TrackedFrame before{};
    CornerFinder findCorners{window};
    TrackedFrame key{};  ///< An earlier frame, with every other corner; empty corners: none.
    SimilarityTransform sinceKey{};  ///< From the key frame to the frame before.

    PicturePoint fullSize(cv::Point2f p) const {
        return {reduction * double{p.x}, reduction * double{p.y}};
    }

    std::vector<Track> tracksOf(const TrackedPoints& points) const {
        const PicturePoint centre = frameCentre(size);
        std::vector<Track> tracks;
        for (std::size_t i = 0; i < points.from.size(); ++i)
            tracks.push_back({fullSize(points.from[i]) - centre, fullSize(points.to[i]) - centre});
        return tracks;
    }

    double spreadOf(const std::vector<Track>& tracks, const std::vector<double>& weights) const {
        std::set<int> cells;
        for (std::size_t i = 0; i < tracks.size(); ++i)
            if (weights[i] > 0) {
                const PicturePoint p = tracks[i].from + frameCentre(size);
                cells.insert(static_cast<int>(p.y * kSpreadCells / size.height) * kSpreadCells +
                             static_cast<int>(p.x * kSpreadCells / size.width));
            }
        return static_cast<double>(cells.size()) / (kSpreadCells * kSpreadCells);
    }

    /// @param begun  corners that were followed.
    FrameMotion judged(const TrackedPoints& points, std::size_t begun) const {
        const std::vector<Track> tracks = tracksOf(points);
        const SimilarityFit fit = fitSimilarity(tracks, kDistanceFloor * reduction);
        FrameMotion result;
        result.motion = fit.motion;
        result.motion.about = frameCentre(size);
        result.quality.tracks = static_cast<int>(
            std::ranges::count_if(fit.weights, [](double weight) { return weight > 0; }));
        result.quality.spread = spreadOf(tracks, fit.weights);
        result.quality.residual = fit.residual;
        result.measured = result.quality.tracks >= kLeastTracks &&
                          result.quality.tracks >= kLeastAgreeing * static_cast<double>(begun) &&
                          result.quality.spread >= kLeastSpread &&
                          fit.residual <= kLargestResidual * std::max(size.width, size.height);
        return result;
    }

    /// The motion since the frame before, by the two frames alone.
    FrameMotion step() const { return judged(follow(before, now, window), before.corners.size()); }

    std::vector<cv::Point2f> expected(const SimilarityTransform& motion) const {
        std::vector<cv::Point2f> points;
        for (const cv::Point2f corner : key.corners) {
            const PicturePoint p = motion(fullSize(corner));
            points.emplace_back(static_cast<float>(p.x / reduction),
                                static_cast<float>(p.y / reduction));
        }
        return points;
    }

    /// How far a map moves any point of the frame at most, to first order, in working pixels.
    double departure(const SimilarityTransform& map) const {
        const double reach = std::hypot(size.width, size.height) / 2;
        return (std::hypot(map.x, map.y) + reach * std::hypot(map.angle, map.logScale)) / reduction;
    }

    /// What the key frame makes of the motion from it to this frame, by the steps.
    /// @return nothing moved when it has no say; the caller then takes another key frame.
    bool corrects(SimilarityTransform& fromKey) const {
        if (std::abs(fromKey.angle) > kKeyAngle || std::abs(fromKey.logScale) > kKeyLogScale)
            return false;
        const FrameMotion direct =
            judged(followNear(key, now, window, expected(fromKey)), key.corners.size());
        const SimilarityTransform difference = direct.motion * fromKey.inverse();
        if (!direct.measured ||
            direct.quality.tracks < kKeyAgreeing * static_cast<double>(key.corners.size()) ||
            direct.quality.spread < kKeySpread || departure(difference) > kKeyDeparture)
            return false;
        fromKey = weakened(difference, kKeyGain) * fromKey;
        return true;
    }

    /// Takes the drift of the summed steps back, bit by bit.
    void correctDrift(FrameMotion& motion) {
        if (!key.corners.empty() && motion.measured) {
            SimilarityTransform fromKey = motion.motion * sinceKey;
            if (corrects(fromKey)) {
                motion.motion = fromKey * sinceKey.inverse();
                sinceKey = fromKey;
                return;
            }
        }
        key.corners.clear();
    }

    void makeKey() {
        makeTrackingPyramid(picture, window, key.pyramid);
        for (std::size_t i = 0; i < now.corners.size(); i += 2)
            key.corners.push_back(now.corners[i]);
        sinceKey = {0, 0, 0, 0, frameCentre(size)};
    }

    FrameMotion next(const LumaFrame& frame) {
        const SimilarityTransform still{0, 0, 0, 0, frameCentre(size)};
        makeWorkingPicture(frame, reduction, picture);
        makeTrackingPyramid(picture, window, now.pyramid);
        FrameMotion motion;
        if (hasFrame) {
            motion = step();
            correctDrift(motion);
        }
        if (!motion.measured)
            motion.motion = still;
        now.corners = findCorners(now.pyramid);
        if (key.corners.empty())
            makeKey();
        std::swap(before, now);
        hasFrame = true;
        return motion;
    }
};

MotionEstimator::MotionEstimator(FrameSize size) {
    if (!isUsable(size))
        throw std::invalid_argument("a frame's sides are 16 to 32767 pixels");
    mState = std::make_unique<State>(State{.size = size});
}

MotionEstimator::~MotionEstimator() = default;
MotionEstimator::MotionEstimator(MotionEstimator&&) noexcept = default;
MotionEstimator& MotionEstimator::operator=(MotionEstimator&&) noexcept = default;

FrameMotion MotionEstimator::next(const LumaFrame& frame) {
    if (frame.pixels == nullptr)
        throw std::invalid_argument("there is no frame");
    if (frame.size != mState->size)
        throw std::invalid_argument("the frame has another size");
    if (frame.stride < frame.size.width)
        throw std::invalid_argument("the stride is below the width");
    try {
        return mState->next(frame);
    } catch (const cv::Exception& failure) {
        if (failure.code == cv::Error::StsNoMem)
            throw std::bad_alloc();
        throw std::logic_error(std::string("OpenCV: ") + failure.what());
    }
}

void MotionEstimator::reset() {
    mState->hasFrame = false;
    mState->key.corners.clear();
}

}  // namespace orbitwalk::refine
