#include "ErrorText.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "common/Log.h"

namespace orbitwalk::capi {

namespace {

/// Of a fixed size: memory may be what the call failed for.
struct Text {
    std::array<char, 1024> characters{};
    std::size_t length = 0;

    void clear() {
        length = 0;
        characters[0] = '\0';
    }
    [[gnu::format(printf, 2, 0)]] void add(const char* format, std::va_list values) {
        if (length != 0)
            append("; ");
        const std::size_t room = characters.size() - length;
        const int written = std::vsnprintf(characters.data() + length, room, format, values);
        length += std::min(static_cast<std::size_t>(std::max(written, 0)), room - 1);
        // The log's lines may bring their own end.
        while (length > 0 && std::strchr(" \n", characters[length - 1]) != nullptr)
            characters[--length] = '\0';
    }
    void append(std::string_view text) {
        const std::size_t count = std::min(text.size(), characters.size() - 1 - length);
        std::copy_n(text.begin(), count, characters.begin() + length);
        length += count;
        characters[length] = '\0';
    }
};

thread_local Text text;

[[gnu::format(printf, 1, 0)]] void watch(const char* format, std::va_list values) noexcept {
    text.add(format, values);
}

const bool isWatching = [] {
    orbitwalk::errorWatcher = watch;
    return true;
}();

}  // namespace

CallText::CallText() noexcept {
    text.clear();
}

int CallText::finish(bool success, const char* otherwise) const noexcept {
    if (success)
        text.clear();
    else if (text.length == 0)
        text.append(otherwise);
    return success ? 1 : -1;
}

const char* lastError() noexcept {
    return text.characters.data();
}

}  // namespace orbitwalk::capi
