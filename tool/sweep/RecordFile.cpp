#include "sweep/RecordFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

std::vector<std::byte> readLimited(const std::string& path, std::size_t limit) {
    const auto fail = [&] { throw ToolError(path + ": " + std::strerror(errno)); };
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
    if (!file)
        fail();
    std::vector<std::byte> bytes(limit);
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
    if (std::ferror(file.get()))
        fail();
    return bytes;
}

}  // namespace

RecordReader readRecordFile(const std::string& path) {
    auto opened = RecordReader::open(readLimited(path, OBW_METADATA_SIZE + 1));
    if (const auto* refusal = std::get_if<RecordRefusal>(&opened))
        throw ToolError(path + ": not a motion record: " + refusal->text);
    return std::get<RecordReader>(std::move(opened));
}

}  // namespace orbitwalk::tool
