#pragma once

#include <array>

namespace orbitwalk {

/// The platform's build type, from the system property "ro.build.type".
class BuildType {
  public:
    BuildType();

    const char* text() const { return mValue.data(); }

    /// An engineering build ("eng") adds paths and detail to the log, and nothing else.
    bool isEngineering() const;

  private:
    std::array<char, 257> mValue{};
};

}  // namespace orbitwalk
