#include "simulate/Photo.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <opencv2/imgcodecs.hpp>
#include <vector>

#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

// Read here rather than by OpenCV, which prints a warning of its own about a file that it cannot
// open.
std::vector<unsigned char> readBytes(const std::string& name) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(name.c_str(), "rb"),
                                                                 std::fclose);
    std::vector<unsigned char> bytes;
    std::array<unsigned char, 65536> block;
    std::size_t got = 0;
    while (stream && (got = std::fread(block.data(), 1, block.size(), stream.get())) > 0)
        bytes.insert(bytes.end(), block.begin(), block.begin() + got);
    if (!stream || std::ferror(stream.get()) != 0)
        throw ToolError("cannot read " + name + ": " + std::strerror(errno));
    return bytes;
}

}  // namespace

cv::Mat3b readPhoto(const std::filesystem::path& file) {
    const std::string name = file.string();
    const std::vector<unsigned char> bytes = readBytes(name);
    cv::Mat picture;
    try {
        if (!bytes.empty())
            picture = cv::imdecode(bytes, cv::IMREAD_COLOR);
    } catch (const cv::Exception&) {
        picture.release();
    }
    if (picture.empty())
        throw ToolError(name + " is not a picture that can be read");
    return picture;
}

}  // namespace orbitwalk::tool
