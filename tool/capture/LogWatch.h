#pragma once

#include <array>
#include <mutex>
#include <optional>
#include <set>
#include <string>

/// What the engine says nowhere but in its log, read from the lines.
namespace orbitwalk::tool {

/// Learns from the transform finder's lines which frames repeat the last motion because theirs
/// could not be measured. A frame counts when the finder says that its corners or tracks did not
/// suffice, or when its motion equals the previous frame's to the last printed digit, which is how
/// an estimate that came out empty shows. A picture that stands still is measured, not repeated.
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

/// Listens to the log while it lives: for the frames whose motion could not be measured, and for
/// why a capture failed. One at a time in a process; any thread.
class LogWatch {
  public:
    LogWatch();
    ~LogWatch();
    LogWatch(const LogWatch&) = delete;
    LogWatch& operator=(const LogWatch&) = delete;

    std::set<int> repeatedFrames() const;

    /// The first failure that the MP4 writer reported; empty when there is none.
    std::string writerFailure() const;
    /// The likely cause of a failure: the writer's, else the engine's last; empty when there is
    /// none.
    std::string failure() const;

  private:
    static void onLine(int priority, const char* tag, const char* text, void* self);
    void takeFailure(const char* tag, const char* text);

    mutable std::mutex mMutex;
    RepeatedMotion mRepeated;    ///< Guarded by mMutex.
    std::string mWriterFailure;  ///< Guarded by mMutex.
    std::string mEngineFailure;  ///< Guarded by mMutex.
};

}  // namespace orbitwalk::tool
