// where_goes RECORD FRAME X Y
//
// Which point of the frame a player shows at a point of the picture, and back: pixels of the
// full-size frame, y down. Needs the headers alone, no library.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <span>
#include <stdexcept>
#include <utility>
#include <variant>
#include <vector>

#include "orbitwalk/RecordReader.h"

namespace {

orbitwalk::RecordReader open(const char* name) {
    std::ifstream file(name, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    auto opened = orbitwalk::RecordReader::open(std::as_bytes(std::span(bytes)));
    if (const auto* refusal = std::get_if<orbitwalk::RecordRefusal>(&opened))
        throw std::runtime_error(refusal->text);
    return std::get<orbitwalk::RecordReader>(std::move(opened));
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 5)
        throw std::runtime_error("where_goes RECORD FRAME X Y");
    const orbitwalk::RecordReader record = open(argv[1]);
    const int frame = std::atoi(argv[2]);
    const orbitwalk::PicturePoint point{std::atof(argv[3]), std::atof(argv[4])};
    const auto crop = record.crop();
    const orbitwalk::RenderMatrix matrix = record.renderMatrix(frame);
    const orbitwalk::PicturePoint shown =
        matrix.frameFromOutput(record.isFlipped() ? record.mirrored(point) : point);
    const orbitwalk::PicturePoint unmirrored = matrix.outputFromFrame(shown);
    const orbitwalk::PicturePoint back =
        record.isFlipped() ? record.mirrored(unmirrored) : unmirrored;
    std::printf("frame %d is %s, crop %d %d %d %d\n", frame,
                record.isRendered(frame) ? "shown" : "not shown", crop.x, crop.y, crop.width,
                crop.height);
    std::printf("picture (%.3f, %.3f) shows frame (%.3f, %.3f)\n", point.x, point.y, shown.x,
                shown.y);
    std::printf("which stands at (%.3f, %.3f)\n", back.x, back.y);
} catch (const std::exception& error) {
    std::cerr << "where_goes: " << error.what() << '\n';
    return 1;
}
