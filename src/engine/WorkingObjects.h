#pragma once

#include <memory>

#include "common/ThreadSafety.h"
#include "engine/EngineState.h"
#include "engine/StartParameters.h"
#include "engine/TempDirectory.h"
#include "findTransform/ifindTransform.h"
#include "frameproc/OBW_FrameProcessor.h"
#include "orbitwalk/Geometry.h"
#include "orbitwalk/MetaData.h"
#include "stabilization/iVideoStabilization.h"

namespace orbitwalk {

/// What a capture works with, from a start until post-processing, cancel or a failed stop frees it.
/// Synchronises itself, by two locks in this order: a cancel or stop in the wrong state cleans up
/// without its turn, and must not meet another thread's call half-way; the finder has one of its
/// own, so that a measurement overlaps with the intake of a frame. Operations throw nothing.
class WorkingObjects {
  public:
    /// @param showPaths  whether the log shows paths
    WorkingObjects(EngineStatus& status, bool showPaths)
        : mStatus(status), mTempDirectory(showPaths) {}

    /// Takes localTmpDir for the capture that begins.
    void takeTempDirectory() EXCLUDES(mLock);
    /// Creates everything. @return 0, 2 or 7; what a failed one has created stays.
    int create(const CaptureSettings& settings) EXCLUDES(mLock);

    enum class Intake { queued, nothingToQueue, refused };
    Intake queueFrame(unsigned char* frame, FrameSize size) EXCLUDES(mLock);
    /// @return 0 or 7.
    int measure(unsigned char* frame, float* x, float* y, float* a) EXCLUDES(mFinderLock);

    /// Frees everything and removes the temporary directory.
    void memCleanupForCancel() EXCLUDES(mLock, mFinderLock);
    /// The same, but the finder and the stabiliser stay alive.
    void memCleanupForStopError() EXCLUDES(mLock);
    void removeTempDirForDeinit() EXCLUDES(mLock);

  private:
    friend class Sweep;  // Works on all of them together, with the lock held.

    struct DestroyStabilizer {
        void operator()(iVideoStabilization* p) const { iVideoStabilization::Destroy(p); }
    };

    void createFrameProcessor(const CaptureSettings& settings) REQUIRES(mLock);
    int createStabilizer(FrameSize size) REQUIRES(mLock);
    int createFinder(FrameSize size) REQUIRES(mLock) EXCLUDES(mFinderLock);
    void resetLocalVariables() REQUIRES(mLock);
    void abortFrameProcessor() REQUIRES(mLock);
    void freeFinder(const char* routine) REQUIRES(mLock) EXCLUDES(mFinderLock);
    void freeStabilizerForCancel() REQUIRES(mLock);

    EngineStatus& mStatus;

    Mutex mLock;
    TempDirectory mTempDirectory GUARDED_BY(mLock);
    std::int32_t captureDirection GUARDED_BY(mLock) = OBW_DIRECTION_LEFT2RIGHT;
    std::int32_t orientation GUARDED_BY(mLock) = 0;  ///< Degrees; always 0.
    std::unique_ptr<OBW_FrameProcessor> frameProcessor GUARDED_BY(mLock);
    std::unique_ptr<iVideoStabilization, DestroyStabilizer> p_mVideoStabilizer GUARDED_BY(mLock);
    std::unique_ptr<__kelOBWKDXMetaData> pOBWKDXMetaInfo GUARDED_BY(mLock);  ///< Working record.

    Mutex mFinderLock;
    std::unique_ptr<ifindTransform> p_mFindTransform GUARDED_BY(mFinderLock);
};

}  // namespace orbitwalk
