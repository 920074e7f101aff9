#include "files/TextFile.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "terminal/ToolError.h"

namespace orbitwalk::tool {

std::string readTextFile(const std::filesystem::path& file, std::size_t limit) {
    const auto fail = [&] { throw ToolError(file.string() + ": " + std::strerror(errno)); };
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.c_str(), "rb"),
                                                                 std::fclose);
    if (!stream)
        fail();
    std::string text;
    std::array<char, 65536> bytes;
    while (const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), stream.get())) {
        text.append(bytes.data(), count);
        if (text.size() > limit)
            throw ToolError(file.string() + ": it is too large, more than " +
                            std::to_string(limit) + " bytes");
    }
    if (std::ferror(stream.get()))
        fail();
    return text;
}

}  // namespace orbitwalk::tool
