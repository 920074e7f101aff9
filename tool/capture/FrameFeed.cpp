#include "capture/FrameFeed.h"

#include <algorithm>
#include <optional>
#include <thread>

#include "terminal/ProgressBar.h"
#include "terminal/SignalGuard.h"

namespace orbitwalk::tool {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kSignalPatience{kSignalPollMilliseconds};

/// Waits until a frame's moment in a recording at a constant rate has come.
class Pace {
  public:
    explicit Pace(media::FrameRate rate)
        : mInterval(std::chrono::duration<double>(static_cast<double>(rate.denominator) /
                                                  rate.numerator)) {}

    void waitFor(std::size_t frame) const {
        const auto moment = mStart + std::chrono::duration_cast<Clock::duration>(
                                         mInterval * static_cast<double>(frame));
        for (auto now = Clock::now(); now < moment; now = Clock::now()) {
            std::this_thread::sleep_until(std::min(moment, now + kSignalPatience));
            SignalGuard::check();
        }
    }

  private:
    Clock::time_point mStart = Clock::now();
    std::chrono::duration<double> mInterval;
};

}  // namespace

FrameSource::FrameSource(media::VideoReader& video)
    : expected(std::min<std::int64_t>(video.expectedFrames(), OBW_MAX_FRAMES)),
      rate(video.frameRate()),
      // One more than a sweep holds, to know whether there are any.
      frames(video, OBW_MAX_FRAMES + 1) {}

Feed feedVideo(std::unique_ptr<FrameSource> source, Session& session, bool realtime,
               StageSeconds& seconds, const BesideEngine& besideEngine) {
    ProgressBar bar("Capturing", source->expected);
    const Pace pace(source->rate);
    Feed feed;
    std::optional<FrameWorker> beside;
    if (besideEngine)
        beside.emplace(besideEngine);
    std::vector<std::uint8_t> frame;
    while (source->frames.next(frame)) {
        if (feed.path.size() == OBW_MAX_FRAMES) {
            feed.truncated = true;
            break;
        }
        SignalGuard::check();
        if (realtime)
            pace.waitFor(feed.path.size());
        const Trajectory point = timed(seconds.measure, [&] { return session.measure(frame); });
        while (!timed(seconds.waitForEncoder, [&] { return session.waitForRoom(kSignalPatience); }))
            SignalGuard::check();
        timed(seconds.feed, [&] { session.feed(frame, point); });
        if (beside)
            beside->take(frame);
        feed.path.push_back(point);
        bar.update(static_cast<std::int64_t>(feed.path.size()));
    }
    if (beside)
        beside->finish();
    seconds.decode += source->frames.seconds();
    return feed;
}

}  // namespace orbitwalk::tool
