#pragma once

#include <OrbitwalkPlatform.h>

#include <atomic>
#include <memory>
#include <mutex>

#include "LogFile.h"

namespace orbitwalk::platform {

/// The process's one log: the level, the listener and the file behind the exported calls. Any
/// thread. Never destroyed, so that threads which outlive main's end may still log.
class LogChannel {
  public:
    static LogChannel& instance();

    /// Whether a line of this priority goes anywhere; two loads, so that a silent log costs
    /// nothing.
    bool isOpenFor(int priority) const;
    /// @return whether the line was written or heard.
    bool say(int priority, const char* tag, const char* text);

    void setLevel(int priority) { mLevel = priority; }
    void setListener(OrbitwalkLogListener listener, void* context);

  private:
    LogChannel();

    bool isWritten(int priority) const;
    bool tellListener(int priority, const char* tag, const char* text);
    LogFile& file();

    std::atomic<int> mLevel;
    std::atomic<bool> mHeard = false;  ///< Whether there is a listener.

    std::mutex mListenerLock;  ///< Held while the listener runs.
    OrbitwalkLogListener mListener = nullptr;
    void* mContext = nullptr;

    std::once_flag mOpened;
    std::unique_ptr<LogFile> mFile;  ///< Opened with the first line that is written.
};

}  // namespace orbitwalk::platform
