#pragma once

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <mutex>
#include <queue>
#include <thread>
#include <vector>

#include "media/VideoReader.h"

namespace orbitwalk::media {

/// Reads a video on a thread of its own, a few frames ahead of who takes them. Frames, their order
/// and the reader's failures are the reader's. Taken by one thread.
class FramesAhead {
  public:
    /// @param video  is asked for nothing else until this is gone.
    /// @param most  is read no further than so many frames.
    FramesAhead(VideoReader& video, std::int64_t most);
    /// Leaves what was read and not taken, also where the reader waits for its file.
    ~FramesAhead();
    FramesAhead(const FramesAhead&) = delete;
    FramesAhead& operator=(const FramesAhead&) = delete;

    /// Waits for the next frame. @param i420  its former memory serves for a later frame.
    /// @return false after the last. @throws what VideoReader::read did, once the frames before it
    /// are taken.
    bool next(std::vector<std::uint8_t>& i420);

    /// That the reader has worked so far.
    double seconds() const;

  private:
    using Frame = std::vector<std::uint8_t>;

    void run(std::int64_t most);
    /// Waits until there is room. @return false when nobody will take more.
    bool takeEmpty(Frame& frame);

    VideoReader& mVideo;
    mutable std::mutex mLock;
    std::condition_variable mChanged;
    // All that follows is guarded by mLock.
    std::queue<Frame> mRead;
    std::queue<Frame> mEmpty;
    bool mEnded = false;      ///< Nothing comes after mRead.
    bool mAbandoned = false;  ///< Nobody takes any more.
    std::exception_ptr mFailure;
    double mSeconds = 0;
    std::thread mThread;  ///< Last: it uses all of the above.
};

}  // namespace orbitwalk::media
