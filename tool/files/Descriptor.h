#pragma once

#include <unistd.h>

#include <utility>

namespace orbitwalk::tool {

/// An open file, closed at the end; false when it could not be opened.
class Descriptor {
  public:
    explicit Descriptor(int file = -1) : mFile(file) {}
    ~Descriptor() {
        if (mFile >= 0)
            close(mFile);
    }
    Descriptor(Descriptor&& other) noexcept : mFile(std::exchange(other.mFile, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(mFile, other.mFile);
        return *this;
    }

    int get() const { return mFile; }
    explicit operator bool() const { return mFile >= 0; }

  private:
    int mFile;
};

}  // namespace orbitwalk::tool
