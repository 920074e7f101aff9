#include "terminal/Print.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "terminal/SignalGuard.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

bool quietly = false;

struct Character {
    std::size_t bytes = 1;
    std::uint32_t code = 0;
    bool valid = false;
};

/// The UTF-8 character that a text begins with: the shortest form of a code that is no surrogate.
Character firstOf(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
    };
    const unsigned first = byte(0);
    if (first < 0x80)
        return {1, first, true};
    const std::size_t bytes = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    constexpr std::array<std::uint32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};
    std::uint32_t code = first & (0x7fu >> bytes);
    bool valid = first >= 0xc2 && first < 0xf5;
    for (std::size_t i = 1; i < bytes; ++i) {
        valid = valid && (byte(i) & 0xc0) == 0x80;
        code = code << 6 | (byte(i) & 0x3f);
    }
    valid =
        valid && code >= kSmallest[bytes] && code <= 0x10ffff && (code < 0xd800 || code > 0xdfff);
    return valid ? Character{bytes, code, true} : Character{};
}

/// Controls, line and paragraph separators, and what changes the direction of the text after it.
bool isHarmful(std::uint32_t code) {
    const auto within = [&](std::uint32_t low, std::uint32_t high) {
        return code >= low && code <= high;
    };
    return code < 0x20 || within(0x7f, 0x9f) || code == 0x61c || within(0x200e, 0x200f) ||
           within(0x2028, 0x202e) || within(0x2066, 0x2069) || code == 0xfeff;
}

std::string spelledOut(const Character& character, unsigned char byte) {
    if (character.valid && character.code == '\n')
        return "\\n";
    if (character.valid && character.code == '\t')
        return "\\t";
    char text[16];
    const bool wide = character.valid && character.code > 0x7f;
    std::snprintf(text, sizeof text, wide ? "\\u%04x" : "\\x%02x",
                  wide ? character.code : std::uint32_t{byte});
    return text;
}

void printLine(const char* kind, std::string_view line) {
    const std::string text = "orbitwalk: " + std::string(kind) + shown(line) + "\n";
    std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace

std::string shown(std::string_view text) {
    std::string harmless;
    while (!text.empty()) {
        const Character character = firstOf(text);
        if (character.valid && !isHarmful(character.code))
            harmless += text.substr(0, character.bytes);
        else
            harmless += spelledOut(character, static_cast<unsigned char>(text.front()));
        text.remove_prefix(character.bytes);
    }
    return harmless;
}

void setQuiet(bool quiet) {
    quietly = quiet;
}

bool isQuiet() {
    return quietly;
}

void printOut(std::string_view text) {
    std::fflush(stdout);
    while (!text.empty()) {
        // A reader that does not read is waited for, until a signal comes.
        pollfd out{STDOUT_FILENO, POLLOUT, 0};
        poll(&out, 1, kSignalPollMilliseconds);
        SignalGuard::check();
        if (out.revents == 0)
            continue;
        // A pipe that has room takes this much without waiting.
        const ssize_t count =
            write(STDOUT_FILENO, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
        if (count >= 0)
            text.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR && errno != EAGAIN)
            throw ToolError(std::string("cannot print the output: ") + std::strerror(errno));
    }
}

std::string jsonText(const nlohmann::ordered_json& json) {
    return json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

void printNote(std::string_view line) {
    if (!quietly)
        printLine("note: ", line);
}

void printWarning(std::string_view line) {
    printLine("warning: ", line);
}

void printError(std::string_view line) {
    printLine("", line);
}

}  // namespace orbitwalk::tool
