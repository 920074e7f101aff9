#pragma once

#include <array>
#include <optional>
#include <set>

namespace orbitwalk::tool {

/// Learns from the transform finder's log which frames repeat the last motion because theirs could
/// not be measured: the interface does not tell. A frame counts when the finder says that its
/// corners or tracks did not suffice, or when its motion equals the previous frame's to the last
/// printed digit, which is how an estimate that came out empty shows. A picture that stands still
/// is measured, not repeated.
class RepeatedMotion {
  public:
    /// Takes the next line under the finder's tag.
    void takeLine(const char* text);

    const std::set<int>& frames() const { return mFrames; }

  private:
    using Motion = std::array<double, 3>;

    bool mInsufficient = false;  ///< Said of the frame whose motion has not been logged yet.
    std::optional<Motion> mLast;
    std::set<int> mFrames;
};

}  // namespace orbitwalk::tool
