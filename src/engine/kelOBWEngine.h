#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <mutex>

#include "common/Stopwatch.h"
#include "engine/EngineState.h"
#include "engine/ListenerSlot.h"
#include "engine/SweepSelection.h"
#include "findTransform/ifindTransform.h"
#include "frameproc/OBW_FrameProcessor.h"
#include "orbitwalk/Engine.h"
#include "stabilization/iVideoStabilization.h"

class StateLockGuard;

/// The one object behind the entry points: state machine, settings and working objects of a
/// capture. Operations return an OBWResult and throw nothing once the instance exists.
///
/// Locks, in the order in which they are taken:
/// - stateLock: one operation at a time; stop leaves it locked for the post-processing thread.
/// - objectsLock: the working objects and settings. A cancel or stop in the wrong state cleans up
///   without stateLock, and must not meet another thread's call half-way.
/// - finderLock: the finder alone, so that a measurement overlaps with the intake of a frame.
class kelOBWEngine {
  public:
    /// The instance, made at the first call.
    static kelOBWEngine* GetInstance();
    /// Deletes the instance, after other threads' listener calls have returned.
    static void ResetInstance();

    virtual ~kelOBWEngine() = default;
    kelOBWEngine(const kelOBWEngine&) = delete;
    kelOBWEngine& operator=(const kelOBWEngine&) = delete;

    /// The sizes are only logged. @return 0 or 5.
    int init(int width, int height, OBWEngineListener* listener);
    /// @return 0, 2, 4, 5 or 7. What a failed start has created stays until the next start or
    /// cleanup.
    int start(_OBW_ENGINE_INIT_PARAM* param);
    /// @return 0, 4 or 7.
    int setFrameInfo(unsigned char* frame, float x, float y, float a);
    /// Takes neither lock nor notice of the state. @return 0 or 7.
    int computeTrajectory(unsigned char* frame, float* x, float* y, float* a);
    /// On success, and when no thread can be created, stateLock stays locked. @return 0, 4, 5 or 7.
    int stop(int startFrame, int endFrame, const _ENCODING_FRAME_INFORMATION* frames, int count,
             OBWDirection direction);
    /// @return 0 or 4.
    int cancel();
    /// @return 0.
    int reset();
    /// @return 0.
    int deinit();
    /// @return 0.
    int getOBWInfoSize(int* size);

  private:
    kelOBWEngine();

    int takeOverParameters(const _OBW_ENGINE_INIT_PARAM& param);
    int takeOverDestinations();
    void buildPaths();
    int setUpCapture();
    int createWorkingObjects();
    void createRecord();
    int renewTempDir();
    void createFrameProcessor();
    int createStabilizer();
    int createFinder();

    enum class HandOver { queued, nothingToQueue, refused };
    HandOver handOver(unsigned char* frame);

    int takeOverSweep(int startFrame, int endFrame, const _ENCODING_FRAME_INFORMATION* frames,
                      int count, std::int32_t direction);
    int sendSweep();
    int sendTransform(const SweepTransform& transform);
    int sendSingleFrame();
    void insertTransformInfoInOBWMetaData(double dx, double dy, int frameIndex);
    int startPostProcessing(StateLockGuard& hold, const orbitwalk::Stopwatch& stopTime);

    static void* onOBWEngineDoPostProcess(void* engine);
    int doSmoothingAndFillMetadata(kelOBWEngine* engine);
    void postProcess();
    bool finishMP4();
    void fillRecordHeader();
    int failSmoothing();
    int handOutRecord();
    void freeAfterPostProcess();
    void removeTempDirAfterPostProcess();
    void failPostProcess();
    void endPostProcess();
    void notifyProgress(int percent);

    void memCleanupForCancel();
    void memCleanupForStopError();
    void abortFrameProcessor();
    void freeFinderForCancel();
    void freeStabilizerForCancel();
    void removeTempDirForCancel();
    void removeTempDirForStopError();
    void removeTempDirForDeinit();

    void resetLocalVariables();
    int removeTempDir(char* path);
    void takeLocalTmpDir();
    const char* loggablePath(const char* path, const char* otherwise) const;

    struct DestroyStabilizer {
        void operator()(iVideoStabilization* p) const { iVideoStabilization::Destroy(p); }
    };

    static std::atomic<kelOBWEngine*> pOBWEngine;

    // Constant after construction.
    bool isEngBuild = false;

    pthread_mutex_t stateLock = PTHREAD_MUTEX_INITIALIZER;
    std::mutex objectsLock;
    std::mutex finderLock;

    // Changed under stateLock, but logged before it is taken.
    std::atomic<std::int32_t> engineState = OBW_STATE_CREATED;
    std::atomic<std::int32_t> totalNumFrames = 0;  ///< Frames handed over since the last start.
    std::atomic<std::int32_t> numCapture = 0;      ///< Captures started.
    std::atomic<std::int32_t> progress = 0;
    // Set before any lock is taken.
    std::atomic<bool> cancelCmdReceived = false;
    orbitwalk::ListenerSlot mListener;  ///< Synchronises itself.

    // Guarded by stateLock.
    pthread_t mPostProcThread = 0;
    std::int32_t frameWidth = 0;
    std::int32_t frameHeight = 0;
    _OBW_ENGINE_INIT_PARAM mInitParam{};
    std::FILE* fpMP4 = nullptr;
    void* pCallerMetaInfo = nullptr;
    std::int32_t metaInfoSize = 0;
    std::int32_t mStabParam[4] = {};  ///< Crop margins for the stabiliser, always 0.
    std::int32_t startFrmIndex = 0;
    std::int32_t endFrmIndex = 0;
    std::int32_t encodedFrameNum = 0;

    // Guarded by objectsLock.
    char mp4FileName[256] = {};
    char tmpDirName[512] = {};
    std::int32_t captureDirection = OBW_DIRECTION_LEFT2RIGHT;
    std::int32_t orientation = 0;
    std::unique_ptr<OBW_FrameProcessor> frameProcessor;
    std::unique_ptr<iVideoStabilization, DestroyStabilizer> p_mVideoStabilizer;
    std::unique_ptr<__kelOBWKDXMetaData> pOBWKDXMetaInfo;  ///< The working record.
    std::unique_ptr<_ENCODING_FRAME_INFORMATION[]> pFrameInfo;

    // Guarded by finderLock.
    std::unique_ptr<ifindTransform> p_mFindTransform;
};
