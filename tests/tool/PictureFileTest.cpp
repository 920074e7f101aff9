#include "media/PictureFile.h"

#include <gtest/gtest.h>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "media/MediaTypes.h"
#include "render/FramePlanes.h"

namespace {

using namespace orbitwalk;
using Bytes = std::vector<unsigned char>;

/// Soft, so that a JPEG's colours at half the size are those of the picture, and unlike from every
/// side.
cv::Mat3b softPicture(cv::Size size) {
    cv::Mat3b picture(size);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            picture(y, x) = cv::Vec3b(cv::saturate_cast<uchar>(40 + 2 * x),
                                      cv::saturate_cast<uchar>(200 - 3 * y),
                                      cv::saturate_cast<uchar>(90 + x - y));
    return picture;
}

Bytes file(const char* extension, const cv::Mat& picture) {
    Bytes bytes;
    cv::imencode(extension, picture, bytes);
    return bytes;
}

cv::Mat3b decoded(const Bytes& bytes) {
    media::Picture picture =
        media::decodePicture({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    const cv::Mat3b rgb(picture.height, picture.width,
                        reinterpret_cast<cv::Vec3b*>(picture.pixels.data()));
    cv::Mat3b bgr;
    cv::cvtColor(rgb, bgr, cv::COLOR_RGB2BGR);
    return bgr;
}

double difference(const cv::Mat& p, const cv::Mat& q) {
    EXPECT_EQ(p.size(), q.size());
    return p.size() == q.size() ? cv::norm(p, q, cv::NORM_INF) : 255;
}

/// A JPEG that says how it is to be turned: 1 to 8 as EXIF counts.
Bytes withOrientation(Bytes jpeg, unsigned char orientation) {
    const Bytes exif{0xff, 0xe1, 0, 34, 'E', 'x',         'i', 'f', 0, 0,    'M', 'M',
                     0,    42,   0, 0,  0,   8,           0,   1,   1, 0x12, 0,   3,
                     0,    0,    0, 1,  0,   orientation, 0,   0,   0, 0,    0,   0};
    jpeg.insert(jpeg.begin() + 2, exif.begin(), exif.end());
    return jpeg;
}

TEST(PictureFile, IsDecodedAsAnotherDecoderDoes) {
    const cv::Mat3b picture = softPicture({48, 32});
    cv::Mat grey, deep, transparent;
    cv::cvtColor(picture, grey, cv::COLOR_BGR2GRAY);
    picture.convertTo(deep, CV_16U, 257);
    cv::cvtColor(picture, transparent, cv::COLOR_BGR2BGRA);
    for (const cv::Mat& one : {cv::Mat(picture), grey, deep, transparent})
        EXPECT_LE(difference(decoded(file(".png", one)),
                             cv::imdecode(file(".png", one), cv::IMREAD_COLOR)),
                  1)
            << one.type();
    for (const char* lossless : {".bmp", ".tiff"})
        EXPECT_EQ(difference(decoded(file(lossless, picture)), picture), 0) << lossless;
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const Bytes jpeg =
            withOrientation(file(".jpg", picture), static_cast<unsigned char>(orientation));
        EXPECT_LE(difference(decoded(jpeg), cv::imdecode(jpeg, cv::IMREAD_COLOR)), 6)
            << orientation;
    }
}

TEST(PictureFile, IsReadByAnotherDecoder) {
    const cv::Mat3b picture = softPicture({49, 31});
    EXPECT_LE(
        difference(cv::imdecode(media::encodeJpeg(tool::pictureOf(picture)), cv::IMREAD_UNCHANGED),
                   picture),
        10);
    cv::Mat4b transparent;
    cv::cvtColor(picture, transparent, cv::COLOR_BGR2BGRA);
    transparent(3, 5)[3] = 7;
    for (const cv::Mat& one : {cv::Mat(picture), cv::Mat(transparent)})
        EXPECT_EQ(
            difference(cv::imdecode(media::encodePng(tool::pictureOf(one)), cv::IMREAD_UNCHANGED),
                       one),
            0);
}

TEST(PictureFile, IsRefusedWhenItIsNone) {
    const Bytes png = file(".png", softPicture({48, 32})),
                jpeg = file(".jpg", softPicture({48, 32}));
    for (const Bytes& bytes :
         {Bytes{}, Bytes{0xff}, Bytes(1000, 'a'), Bytes(png.begin(), png.begin() + 20),
          Bytes(jpeg.begin(), jpeg.begin() + 100)})
        EXPECT_THROW(decoded(bytes), media::MediaError) << bytes.size();
}

}  // namespace
