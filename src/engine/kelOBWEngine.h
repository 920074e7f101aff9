#pragma once

#include <atomic>

#include "common/BuildType.h"
#include "common/Stopwatch.h"
#include "engine/EngineState.h"
#include "engine/ListenerSlot.h"
#include "engine/StartParameters.h"
#include "engine/StateLock.h"
#include "engine/Sweep.h"
#include "engine/WorkingObjects.h"
#include "orbitwalk/Engine.h"

/// The one object behind the entry points: gives each operation its turn and asks the state whether
/// it may. The work is done by the working objects and the sweep. Operations return an OBWResult
/// and throw nothing once the instance exists.
///
/// The state lock is taken before the locks of the working objects. It is held by one operation at
/// a time; stop hands it over to the post-processing thread.
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
    /// Needs no turn and asks no state. @return 0 or 7.
    int computeTrajectory(unsigned char* frame, float* x, float* y, float* a);
    /// On success, and when no thread can be created, the state lock stays locked.
    /// @return 0, 4, 5 or 7.
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
    explicit kelOBWEngine(const orbitwalk::BuildType& buildType);

    int takeOverParameters(const _OBW_ENGINE_INIT_PARAM& param);
    int takeOverDestinations() REQUIRES(stateLock);
    int setUpCapture();
    int startPostProcessing(const orbitwalk::Stopwatch& stopTime);
    static void* onOBWEngineDoPostProcess(void* engine);
    orbitwalk::PostProcessEnd postProcess();

    static std::atomic<kelOBWEngine*> pOBWEngine;

    // Each synchronises itself.
    orbitwalk::EngineStatus mStatus;
    orbitwalk::ListenerSlot mListener;
    orbitwalk::WorkingObjects mObjects;

    orbitwalk::StateLock stateLock;
    orbitwalk::CaptureSettings mSettings GUARDED_BY(stateLock);
    orbitwalk::Sweep mSweep GUARDED_BY(stateLock);
};

namespace orbitwalk {

// Every operation of the engine opens with a line that names these.
inline constexpr char kEngineVersion[] = "OBW_ENGINE_V_0.31_20_06_2016";
inline constexpr char kEngineDate[] = "Jun 20 2016";
inline constexpr char kEngineTime[] = "18:20:57";

}  // namespace orbitwalk
