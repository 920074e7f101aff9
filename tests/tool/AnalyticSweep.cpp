#include "tool/AnalyticSweep.h"

#include <algorithm>
#include <cmath>
#include <fstream>

#include "support/SampleRecord.h"
#include "support/TestDirectory.h"
#include "support/VideoFile.h"

namespace test_support {

namespace {

void store(std::int32_t (&matrix)[9], double moveX, double moveY) {
    std::ranges::fill(matrix, 0);
    matrix[0] = matrix[4] = matrix[8] = 1000000;
    matrix[6] = static_cast<std::int32_t>(-moveX * 1e6);
    matrix[7] = static_cast<std::int32_t>(-moveY * 1e6);
}

}  // namespace

SceneColour sceneAt(double x, double y) {
    return {126 + 50 * std::sin(0.11 * x + 0.07 * y) + 40 * std::cos(0.05 * x - 0.09 * y),
            128 + 60 * std::sin(0.04 * x + 0.03 * y), 128 + 60 * std::cos(0.03 * x - 0.05 * y)};
}

std::vector<std::uint8_t> sceneFrame(int width, int height, double x, double y) {
    std::vector<std::uint8_t> frame;
    const auto add = [&](double value) {
        frame.push_back(static_cast<std::uint8_t>(std::lround(value)));
    };
    for (int j = 0; j < height; ++j)
        for (int i = 0; i < width; ++i)
            add(sceneAt(x + i, y + j).y);
    for (const auto plane : {&SceneColour::cb, &SceneColour::cr})
        for (int j = 0; j < height / 2; ++j)
            for (int i = 0; i < width / 2; ++i)
                add(sceneAt(x + 2 * i, y + 2 * j + 0.5).*plane);
    return frame;
}

std::vector<orbitwalk::tool::SweepRow> AnalyticSweep::measuredPath() {
    std::vector<orbitwalk::tool::SweepRow> rows;
    for (int i = 0; i < frames; ++i)
        rows.push_back({{-left(i), -top(i), 0}, i != 4, false});
    return rows;
}

__kelOBWKDXMetaData AnalyticSweep::record() const {
    __kelOBWKDXMetaData record = sampleRecord();
    record.width = width;
    record.height = height;
    record.numFrames = frames;
    record.startIndex = 0;
    record.endIndex = frames - 1;
    const std::int32_t crop[4] = {32, 24, 256, 192};
    std::copy(crop, crop + 4, record.cropParam);
    for (int i = 0; i < frames; ++i) {
        record.renderFlag[i] = i != 4;
        store(record.renderMat[i], shake[i][0], shake[i][1]);
    }
    record.leftBorderFrames = record.rightBorderFrames = 2;
    for (int k = 0; k < 2; ++k) {
        store(record.leftBorderMat[k], 16 - 8 * k, 0);
        store(record.rightBorderMat[k], -8 - 8 * k, 0);
    }
    return record;
}

void AnalyticSweep::write(const std::filesystem::path& directory) const {
    std::filesystem::create_directories(directory);
    writeVideo(directory / "sweep.mp4", frames);
    writeRecord(directory / "sweep.obw", record());
    constexpr int jolt[frames][2] = {{0, 0},   {23, 9},  {-16, 5}, {-19, -16}, {0, 0},
                                     {-5, -9}, {8, -20}, {28, 2},  {12, 10},   {0, -11}};
    std::ofstream csv(directory / "sweep.csv");
    csv << "frame,x,y,a,flag,repeated\n";
    for (int i = 0; i < frames; ++i)
        csv << i << ',' << -8 * i - jolt[i][0] << ',' << -i - jolt[i][1] << ",0.00" << i % 3 << ','
            << (i != 4) << ',' << (i == 3 || i == 8) << '\n';
}

void AnalyticSweep::writeRecord(const std::filesystem::path& file,
                                const __kelOBWKDXMetaData& record) const {
    const auto bytes = recordBytes(record);
    writeFile(file, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

void AnalyticSweep::writeVideo(const std::filesystem::path& file, int frameCount) const {
    orbitwalk::media::EncoderSettings settings;
    settings.width = width;
    settings.height = height;
    settings.quality = 4;
    test_support::writeVideo(file, settings, frameCount, [](int i) {
        return sceneFrame(width, height, left(i % frames), top(i % frames));
    });
}

}  // namespace test_support
