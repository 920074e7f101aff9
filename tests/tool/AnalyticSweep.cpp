#include "tool/AnalyticSweep.h"

#include <cmath>
#include <cstdio>
#include <fstream>

#include "media/VideoWriter.h"
#include "support/SampleRecord.h"

namespace tool_test {

namespace {

void store(std::int32_t (&matrix)[9], double moveX, double moveY) {
    const std::int32_t written[9] = {1000000,
                                     0,
                                     0,
                                     0,
                                     1000000,
                                     0,
                                     static_cast<std::int32_t>(-moveX * 1e6),
                                     static_cast<std::int32_t>(-moveY * 1e6),
                                     1000000};
    std::copy(written, written + 9, matrix);
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
    std::ofstream csv(directory / "sweep.csv");
    csv << "frame,x,y,a,flag,repeated\n";
    for (int i = 0; i < frames; ++i)
        csv << i << ',' << -left(i) << ',' << -top(i) << ",0," << (i != 4) << ",0\n";
}

void AnalyticSweep::writeRecord(const std::filesystem::path& file,
                                const __kelOBWKDXMetaData& record) const {
    const auto bytes = recordBytes(record);
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
}

void AnalyticSweep::writeVideo(const std::filesystem::path& file, int frameCount) const {
    std::FILE* stream = std::fopen(file.c_str(), "w+b");
    {
        orbitwalk::media::EncoderSettings settings;
        settings.width = width;
        settings.height = height;
        settings.quality = 4;
        orbitwalk::media::VideoWriter writer(stream, settings);
        for (int i = 0; i < frameCount; ++i)
            writer.write(sceneFrame(width, height, left(i % frames), top(i % frames)));
        writer.finish();
    }
    std::fclose(stream);
}

}  // namespace tool_test
