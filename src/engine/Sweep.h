#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "engine/EngineState.h"
#include "engine/ListenerSlot.h"
#include "engine/StartParameters.h"
#include "engine/SweepSelection.h"
#include "engine/WorkingObjects.h"
#include "orbitwalk/Engine.h"

namespace orbitwalk {

/// What stop was given. The frames are the caller's.
struct SweepArguments {
    RenderRange range;
    std::span<const _ENCODING_FRAME_INFORMATION> frames;
    std::int32_t direction;
};

/// How a post-processing ended. Some lines for it are said only when the engine's locks are given
/// back.
enum class PostProcessEnd { done, noMP4, noRecord, noSmoothing, noMatrices, noBuffer, threw };
void logUnlocked(PostProcessEnd end);

/// A sweep on its way from stop to the record: stop takes it over on the caller's thread,
/// post-processing finishes it on its own. No lock of its own: one of them at a time. Both hold the
/// lock of the working objects throughout and throw nothing.
class Sweep {
  public:
    Sweep(WorkingObjects& objects, EngineStatus& status, ListenerSlot& listener)
        : mObjects(objects), mStatus(status), mListener(listener) {}

    /// Drops the frames of the stop before.
    void forget() { pFrameInfo.reset(); }
    /// Copies the frames, sends the selected ones' places to the stabiliser and notes them in the
    /// record. Sets the state once there is something to stop; a failure after that leaves it, and
    /// only init or deinit get the engine out of it.
    /// @return 0 or 7.
    int takeOver(const SweepArguments& given) EXCLUDES(mObjects.mLock);
    /// Finishes the MP4, smooths, fills the record, hands it to the caller and frees what the
    /// capture worked with; tells the listener 15 to 90.
    PostProcessEnd postProcess(const CaptureSettings& settings) EXCLUDES(mObjects.mLock);

  private:
    int send() REQUIRES(mObjects.mLock);
    int sendTransform(const SweepTransform& transform) REQUIRES(mObjects.mLock);
    int sendSingleFrame() REQUIRES(mObjects.mLock);

    PostProcessEnd finish(const CaptureSettings& settings) REQUIRES(mObjects.mLock);
    bool finishMP4() REQUIRES(mObjects.mLock);
    PostProcessEnd doSmoothingAndFillMetadata(const CaptureSettings& settings)
        REQUIRES(mObjects.mLock);
    PostProcessEnd handOutRecord(const CaptureSettings& settings) REQUIRES(mObjects.mLock);
    void free() REQUIRES(mObjects.mLock);
    void notifyProgress(int percent);

    WorkingObjects& mObjects;
    EngineStatus& mStatus;
    ListenerSlot& mListener;

    RenderRange mRange{};
    std::int32_t encodedFrameNum = 0;
    std::unique_ptr<_ENCODING_FRAME_INFORMATION[]> pFrameInfo;
};

}  // namespace orbitwalk
