#include "files/OwnFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <span>
#include <string>
#include <variant>

#include "files/TextFile.h"
#include "media/VideoWriter.h"
#include "orbitwalk/RecordReader.h"
#include "terminal/ToolError.h"

extern "C" {
#include <libavutil/crc.h>
}

namespace orbitwalk::tool {

const std::string_view kMark = media::kMadeWith;

namespace {

constexpr std::size_t kEnds = 64 << 10;
constexpr std::size_t kJsonHead = 4096;

std::string readAt(int file, std::size_t offset, std::size_t size) {
    std::string bytes(size, '\0');
    const ssize_t count = pread(file, bytes.data(), size, static_cast<off_t>(offset));
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

bool isRecord(const std::filesystem::path& file, std::size_t size) {
    if (size > OBW_METADATA_SIZE)
        return false;
    const std::string text = readFileUpTo(file, OBW_METADATA_SIZE);
    return std::holds_alternative<RecordReader>(RecordReader::open(std::as_bytes(std::span(text))));
}

bool isTable(std::string_view head) {
    const std::string_view line = head.substr(0, head.find('\n'));
    return line == kSweepTableHeader || line == kTruthTableHeader || line == kMotionTableHeader ||
           line == kBatchTableHeader;
}

bool isOwnJson(std::string_view head) {
    const std::string_view start = head.substr(0, kJsonHead);
    const auto names = [&](const char* key) { return start.find(key) != std::string_view::npos; };
    return head.starts_with('{') && names("\"schema\"") && names("\"toolVersion\"");
}

void appendNumber(std::vector<unsigned char>& bytes, std::uint32_t number) {
    for (const int shift : {24, 16, 8, 0})
        bytes.push_back(static_cast<unsigned char>(number >> shift));
}

/// A text chunk of a PNG with the mark.
std::vector<unsigned char> pngComment() {
    std::string chunk = "tEXtSoftware";
    chunk += '\0';
    chunk += kMark;
    std::vector<unsigned char> bytes;
    appendNumber(bytes, static_cast<std::uint32_t>(chunk.size() - 4));
    bytes.insert(bytes.end(), chunk.begin(), chunk.end());
    appendNumber(bytes, ~av_crc(av_crc_get_table(AV_CRC_32_IEEE_LE), ~0u,
                                reinterpret_cast<const std::uint8_t*>(chunk.data()), chunk.size()));
    return bytes;
}

/// A comment segment of a JPEG with the mark.
std::vector<unsigned char> jpegComment() {
    const std::size_t size = kMark.size() + 2;
    std::string bytes = "\xff\xfe";
    bytes += static_cast<char>(size >> 8);
    bytes += static_cast<char>(size);
    bytes += kMark;
    return {bytes.begin(), bytes.end()};
}

}  // namespace

bool isOwnFile(const std::filesystem::path& file) {
    const Descriptor opened(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat facts {};
    if (!opened || fstat(opened.get(), &facts) != 0 || !S_ISREG(facts.st_mode))
        return false;
    const auto size = static_cast<std::size_t>(facts.st_size);
    const std::string head = readAt(opened.get(), 0, kEnds);
    const std::string tail = readAt(opened.get(), size - std::min(size, kEnds), kEnds);
    const bool isMarked =
        head.find(kMark) != std::string::npos || tail.find(kMark) != std::string::npos;
    return size == 0 || isMarked || isTable(head) || isOwnJson(head) || isRecord(file, size);
}

void markPicture(std::vector<unsigned char>& picture) {
    constexpr std::size_t kPngHeader = 8 + 25;  // The signature and the first chunk, IHDR.
    constexpr std::size_t kJpegStart = 2;
    const bool isJpeg = !picture.empty() && picture.front() == 0xff;
    const std::vector<unsigned char> comment = isJpeg ? jpegComment() : pngComment();
    const auto at = static_cast<std::ptrdiff_t>(isJpeg ? kJpegStart : kPngHeader);
    picture.insert(picture.begin() + at, comment.begin(), comment.end());
}

void requireExtension(std::string_view option, const std::filesystem::path& file,
                      std::initializer_list<std::string_view> extensions) {
    std::string extension = file.extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (std::ranges::find(extensions, extension) != extensions.end())
        return;
    std::string choice;
    for (const std::string_view possible : extensions)
        choice += (choice.empty() ? "" : ", ") + std::string(possible);
    throw UsageError(std::string(option) + ": " + file.string() + " does not end in " + choice);
}

}  // namespace orbitwalk::tool
