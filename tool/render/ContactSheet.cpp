#include "render/ContactSheet.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <string>

#include "render/FramePlanes.h"

namespace orbitwalk::tool {

namespace {

constexpr int kLongSide = 320;
constexpr int kGap = 6;
constexpr int kCaption = 20;
const cv::Scalar kPaper(255, 255, 255);
const cv::Scalar kInk(64, 64, 64);

cv::Size thumbnailSize(cv::Size frame) {
    const double factor = static_cast<double>(kLongSide) / std::max(frame.width, frame.height);
    return {std::max(1, cvRound(frame.width * factor)),
            std::max(1, cvRound(frame.height * factor))};
}

void putThumbnail(cv::Mat3b& sheet, cv::Point corner, const cv::Mat3b& picture,
                  const std::string& caption) {
    cv::Mat3b place = sheet(cv::Rect(corner, thumbnailSize(picture.size())));
    cv::resize(picture, place, place.size(), 0, 0, cv::INTER_AREA);
    cv::putText(sheet, caption, {corner.x, corner.y - 6}, cv::FONT_HERSHEY_SIMPLEX, 0.42, kInk, 1,
                cv::LINE_AA);
}

}  // namespace

std::vector<Shot> sheetShots(const RecordReader& record, int columns) {
    const std::vector<Shot> all = playlist(record, false);
    const int last = static_cast<int>(all.size()) - 1;
    const int count = std::min(columns, last + 1);
    std::vector<Shot> chosen;
    for (int k = 0; k < count; ++k)
        chosen.push_back(all[count > 1 ? k * last / (count - 1) : 0]);
    return chosen;
}

cv::Mat3b contactSheet(const Sweep& sweep, const std::function<void(int)>& progress) {
    const std::vector<Shot> shots = sheetShots(sweep.record, kSheetColumns);
    const cv::Size size = sweep.size();
    const int rotation = displayRotation(sweep.record);
    const cv::Size upright = rotation == 0 ? size : cv::Size(size.height, size.width);
    const cv::Size cell = thumbnailSize(upright) + cv::Size(kGap, kGap + kCaption);
    cv::Mat3b sheet(2 * cell.height + kGap, static_cast<int>(shots.size()) * cell.width + kGap);
    sheet.setTo(kPaper);
    std::vector<std::uint8_t> output(frameBytes(size));
    const auto show = [&](const ShotFrame& shown, const Affine& map, cv::Point corner,
                          const std::string& caption) {
        warpFrame(*shown.frame, size, map, output);
        putThumbnail(sheet, corner, turned(toBgr(output, size), rotation), caption);
    };
    ShotReader reader(sweep, shots);
    cv::Point corner(kGap, kCaption + kGap);
    while (const auto shown = reader.next()) {
        const std::string name = "frame " + std::to_string(shown->shot.frame);
        show(*shown, uncorrected(sweep.record), corner, name + ", recorded");
        show(*shown, shown->shot.frameFromOutput, corner + cv::Point(0, cell.height),
             name + ", steady");
        corner.x += cell.width;
        progress(static_cast<int>(shown->number) + 1);
    }
    return sheet;
}

}  // namespace orbitwalk::tool
