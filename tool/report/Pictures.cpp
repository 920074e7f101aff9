#include "report/ReportData.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <set>

#include "media/PictureFile.h"
#include "render/ContactSheet.h"
#include "render/FramePlanes.h"

namespace orbitwalk::tool {

namespace {

constexpr int kStripSide = 480;
constexpr int kCropSide = 1280;

/// @param longSide  the most that the longer side of the picture may measure.
std::string jpeg(const cv::Mat3b& picture, int longSide) {
    cv::Mat3b shrunk = picture;
    const double factor = static_cast<double>(longSide) / std::max(picture.cols, picture.rows);
    if (factor < 1) {
        const cv::Size size(std::max(1, cvRound(picture.cols * factor)),
                            std::max(1, cvRound(picture.rows * factor)));
        cv::resize(picture, shrunk, size, 0, 0, cv::INTER_AREA);
    }
    const std::vector<std::uint8_t> bytes = media::encodeJpeg(pictureOf(shrunk));
    return {bytes.begin(), bytes.end()};
}

std::string warpedJpeg(const std::vector<std::uint8_t>& frame, const Sweep& sweep,
                       const Affine& map) {
    std::vector<std::uint8_t> output(frameBytes(sweep.size()));
    warpFrame(frame, sweep.size(), map, output);
    return jpeg(turned(toBgr(output, sweep.size()), displayRotation(sweep.record)), kStripSide);
}

}  // namespace

ReportPictures reportPictures(const Sweep& sweep, int cropFrame,
                              const std::function<void(int)>& progress) {
    std::set<int> chosen;
    for (const Shot& shot : sheetShots(sweep.record, kSheetColumns))
        chosen.insert(shot.frame);
    ReportPictures pictures;
    ShotReader reader(sweep, playlist(sweep.record, false));
    int done = 0;
    while (const auto shown = reader.next()) {
        const int frame = shown->shot.frame;
        if (chosen.contains(frame))
            pictures.strip.push_back(
                {frame, warpedJpeg(*shown->frame, sweep, uncorrected(sweep.record)),
                 warpedJpeg(*shown->frame, sweep, shown->shot.frameFromOutput)});
        if (frame == cropFrame)
            pictures.crop = jpeg(toBgr(*shown->frame, sweep.size()), kCropSide);
        progress(++done);
    }
    return pictures;
}

}  // namespace orbitwalk::tool
