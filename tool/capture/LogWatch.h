#pragma once

#include <mutex>
#include <set>
#include <string>

#include "capture/RepeatedMotion.h"

namespace orbitwalk::tool {

/// Listens to the log while it lives, for what the engine says nowhere else: which frames' motion
/// could not be measured, and why a capture failed. One at a time in a process; any thread.
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
