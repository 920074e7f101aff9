#include "LogText.h"

#include <cstdio>
#include <cstring>

namespace orbitwalk::platform {

namespace {

void dropFinalNewline(char* text) {
    const std::size_t length = std::strlen(text);
    if (length > 0 && text[length - 1] == '\n')
        text[length - 1] = '\0';
}

}  // namespace

LogText::LogText(const char* format, std::va_list values) {
    std::va_list again;
    va_copy(again, values);
    const int length = std::vsnprintf(mShort.data(), mShort.size(), format, values);
    if (length < 0) {
        // A value that the locale cannot print: the bare format still tells which line it was.
        mLong = format;
    } else if (static_cast<std::size_t>(length) >= mShort.size()) {
        mLong.resize(static_cast<std::size_t>(length));
        std::vsnprintf(mLong.data(), mLong.size() + 1, format, again);
    }
    va_end(again);
    dropFinalNewline(mLong.empty() ? mShort.data() : mLong.data());
}

}  // namespace orbitwalk::platform
