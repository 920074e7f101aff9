#pragma once

#include <array>
#include <cstdarg>
#include <string>

namespace orbitwalk::platform {

/// A printf text of any length, without the one newline that may end it: the log adds its own.
/// Usual lengths stay on the stack.
class LogText {
  public:
    __attribute__((format(printf, 2, 0))) LogText(const char* format, std::va_list values);

    const char* c_str() const { return mLong.empty() ? mShort.data() : mLong.c_str(); }

  private:
    std::array<char, 1024> mShort;
    std::string mLong;  ///< Used when mShort is too small.
};

}  // namespace orbitwalk::platform
