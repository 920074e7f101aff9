#include "render/Panorama.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "render/FramePlanes.h"
#include "render/ShotPipeline.h"
#include "sweep/Steadiness.h"

namespace orbitwalk::tool {

namespace {

/// Share of the crop's shorter side over which a picture fades in.
constexpr double kFeather = 0.04;

struct Piece {
    cv::Mat3b picture;
    cv::Mat1b weight;
    cv::Point corner;
};

/// Rises from the crop rectangle's edges inwards; 0 outside.
cv::Mat1b cropWeight(cv::Size frame, const CropRectangle& crop) {
    const double feather = std::max(1.0, kFeather * std::min(crop.width, crop.height));
    cv::Mat1b weight(frame, 0);
    for (int y = 0; y < crop.height; ++y)
        for (int x = 0; x < crop.width; ++x) {
            const int inside = std::min({x + 1, y + 1, crop.width - x, crop.height - y});
            weight(crop.y + y, crop.x + x) = cv::saturate_cast<uchar>(255 * inside / feather);
        }
    return weight;
}

/// A picture shrunk to the canvas's scale, so that the warp afterwards only moves and turns it.
template <typename Picture>
Picture shrunk(const Picture& picture, cv::Size size) {
    if (size == picture.size())
        return picture;
    Picture small;
    cv::resize(picture, small, size, 0, 0, cv::INTER_AREA);
    return small;
}

cv::Vec3b mean(const cv::Vec3b& p, int weightP, const cv::Vec3b& q, int weightQ) {
    const int sum = weightP + weightQ;
    cv::Vec3b result;
    for (int c = 0; c < 3; ++c)
        result[c] = static_cast<uchar>((weightP * p[c] + weightQ * q[c] + sum / 2) / sum);
    return result;
}

/// Cuts the pictures of a layout from their frames.
class PieceCutter {
  public:
    PieceCutter(const Sweep& sweep, const PanoramaLayout& layout)
        : mFrame(sweep.size()),
          mSmall(std::max(1, cvRound(mFrame.width * layout.scale)),
                 std::max(1, cvRound(mFrame.height * layout.scale))),
          mSmallFromFrame(enlargement(static_cast<double>(mSmall.width) / mFrame.width,
                                      static_cast<double>(mSmall.height) / mFrame.height)),
          mWeight(shrunk(cropWeight(mFrame, sweep.record.crop()), mSmall)) {}

    Piece cut(const Placement& place, const std::vector<std::uint8_t>& frame) const {
        const Affine pictureFromPiece =
            inverse(place.canvasFromPicture) * translation(place.bounds.x, place.bounds.y);
        const Affine frameFromPiece = place.shot.frameFromPicture * pictureFromPiece;
        Piece piece;
        piece.corner = place.bounds.tl();
        cv::warpAffine(shrunk(toBgr(frame, mFrame), mSmall), piece.picture,
                       matrixOf(mSmallFromFrame * frameFromPiece), place.bounds.size(),
                       cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
        cv::warpAffine(mWeight, piece.weight, matrixOf(mSmallFromFrame * pictureFromPiece),
                       place.bounds.size(), cv::INTER_LINEAR | cv::WARP_INVERSE_MAP);
        return piece;
    }

  private:
    const cv::Size mFrame;
    const cv::Size mSmall;  ///< The frame at the canvas's scale.
    const Affine mSmallFromFrame;
    const cv::Mat1b mWeight;  ///< Of mSmall.
};

}  // namespace

PanoramaCanvas::PanoramaCanvas(cv::Size size) : mColour(size, {}), mCover(size, 0) {}

void PanoramaCanvas::paint(const cv::Mat3b& picture, const cv::Mat1b& weight, cv::Point corner) {
    for (int y = 0; y < picture.rows; ++y) {
        const cv::Vec3b* upper = picture[y];
        const uchar* share = weight[y];
        cv::Vec3b* colour = mColour[corner.y + y] + corner.x;
        uchar* cover = mCover[corner.y + y] + corner.x;
        for (int x = 0; x < picture.cols; ++x) {
            const int above = 255 * share[x];
            const int below = cover[x] * (255 - share[x]);
            if (above == 0)
                continue;
            if (below == 0)  // Most pixels, and no divisions.
                colour[x] = upper[x];
            else
                colour[x] = mean(upper[x], above, colour[x], below);
            cover[x] = static_cast<uchar>((above + below + 254) / 255);
        }
    }
}

cv::Mat4b PanoramaCanvas::picture() const {
    cv::Mat4b result;
    cv::merge(std::vector<cv::Mat>{mColour, mCover > 0}, result);
    return result;
}

cv::Mat4b panorama(const Sweep& sweep, bool withBorderFrames, int threads,
                   const std::function<void(int)>& progress) {
    const std::vector<Shot> shots = playlist(sweep.record, withBorderFrames);
    const PanoramaLayout layout = layOut(sweep.record, shots, recordedMotions(sweep));
    const PieceCutter cutter(sweep, layout);
    PanoramaCanvas canvas(layout.canvas);
    ShotReader reader(sweep, shots);
    int painted = 0;
    forEachShot(
        reader, threads,
        [&](const ShotFrame& shown) {
            return cutter.cut(layout.placements[shown.number], *shown.frame);
        },
        [&](const Piece& piece) {
            canvas.paint(piece.picture, piece.weight, piece.corner);
            progress(++painted);
        });
    cv::Mat4b picture = canvas.picture();
    if (sweep.record.isFlipped())
        cv::flip(picture, picture, 1);
    return picture;
}

}  // namespace orbitwalk::tool
