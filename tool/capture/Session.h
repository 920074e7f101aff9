#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "capture/LogWatch.h"
#include "capture/SweepRange.h"
#include "orbitwalk/Engine.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

struct SessionSettings {
    int width = 0;   ///< Even, pixels.
    int height = 0;  ///< Even, pixels.
    int orientation = 0;
    bool frontCameraFlipped = false;
    std::string mp4Name{};  ///< For complaints.
    /// An encoder that takes no frame for this long has failed.
    std::chrono::milliseconds encoderPatience = std::chrono::minutes(1);
};

/// One capture with the engine, driven as a camera app would: start, per frame measure and feed,
/// then finish. The engine is one per process, and so is the session. One thread. A session that
/// ends before finish has returned cancels the capture. Every failure is a ToolError that says the
/// likely cause.
class Session final : private OBWEngineListener {
  public:
    /// Told of post-processing's progress, 15 to 100; on another thread, while finish runs.
    using Progress = std::function<void(int percent)>;

    /// Starts a capture.
    /// @param mp4  open stream that receives the MP4; must outlive the session.
    Session(const SessionSettings& settings, std::FILE* mp4);
    ~Session() override;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Trajectory of the frame, in I420. Frames come in order.
    Trajectory measure(std::span<const std::uint8_t> frame);

    /// The engine's queue grows with every frame that the encoder has not taken. Waits until it is
    /// short enough for another one. @return false when the time is over.
    /// @throws ToolError also when the encoder has failed or does not go on.
    bool waitForRoom(std::chrono::milliseconds timeout);

    /// Hands the measured frame over for encoding.
    void feed(std::span<const std::uint8_t> frame, const Trajectory& point);

    /// Ends the sweep and waits until the MP4 and the record are complete.
    /// @param path  what measure gave for each frame fed, one to a thousand.
    const __kelOBWKDXMetaData& finish(std::span<const Trajectory> path,
                                      const SweepSelection& selection, Progress progress);

    /// Frames whose motion could not be measured, as RepeatedMotion tells them.
    std::set<int> repeatedFrames() const { return mLog.repeatedFrames(); }

    /// Seconds from the end of the sweep until post-processing reached the percentage, if it did.
    std::optional<double> secondsUntil(int percent) const;

  private:
    using Clock = std::chrono::steady_clock;

    struct Mark {
        int percent;
        Clock::time_point time;
    };
    /// The engine from init to deinit, which waits for post-processing and its last report.
    struct Engine {
        explicit Engine(OBWEngineListener* listener);
        ~Engine();
    };

    void onProgress(int status, int percent) override;
    void abandonEngine();
    ToolError failure(const std::string& what) const;

    LogWatch mLog;
    std::unique_ptr<__kelOBWKDXMetaData> mRecord;
    std::string mMp4Name;
    std::chrono::milliseconds mEncoderPatience;
    int mFed = 0;
    int mEncoded = 0;  ///< As last seen.
    Clock::time_point mEncoderMoved = Clock::now();
    Clock::time_point mStopped{};
    Progress mProgress;  ///< Set before post-processing begins.

    mutable std::mutex mMutex;
    std::vector<Mark> mMarks;  ///< Guarded by mMutex.

    std::unique_ptr<Engine> mEngine;  ///< Goes first: it may report until it is gone.
};

}  // namespace orbitwalk::tool
