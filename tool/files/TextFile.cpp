#include "files/TextFile.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <span>

#include "terminal/SignalGuard.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

/// Reads what has come of a file. @return 0 at its end, -1 and errno when there is nothing yet.
ssize_t readSome(int file, std::span<char> bytes) {
    // A pipe that nobody has opened for writing yet is at its end for read(), but not for poll().
    pollfd source{file, POLLIN, 0};
    if (poll(&source, 1, kSignalPollMilliseconds) <= 0) {
        errno = EAGAIN;
        return -1;
    }
    return read(file, bytes.data(), bytes.size());
}

}  // namespace

std::string readFileUpTo(const std::filesystem::path& file, std::size_t limit) {
    const auto fail = [&] { throw ToolError(file.string() + ": " + std::strerror(errno)); };
    // Opened so that a pipe without a writer does not block before it can be waited for.
    const Descriptor source(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!source)
        fail();
    std::string text;
    std::array<char, 65536> bytes;
    while (text.size() < limit) {
        SignalGuard::check();
        const ssize_t count = readSome(
            source.get(), std::span(bytes).first(std::min(bytes.size(), limit - text.size())));
        if (count == 0)
            break;
        if (count > 0)
            text.append(bytes.data(), static_cast<std::size_t>(count));
        else if (errno != EINTR && errno != EAGAIN)
            fail();
    }
    return text;
}

std::string readTextFile(const std::filesystem::path& file, std::size_t limit) {
    std::string text = readFileUpTo(file, limit + 1);
    if (text.size() > limit)
        throw ToolError(file.string() + ": it is too large, more than " + std::to_string(limit) +
                        " bytes");
    return text;
}

}  // namespace orbitwalk::tool
