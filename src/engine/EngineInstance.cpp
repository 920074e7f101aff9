#include <cstdio>

#include "common/BuildType.h"
#include "common/Log.h"
#include "engine/EngineVersion.h"
#include "engine/PostProcessingInFlight.h"
#include "engine/ResultCodes.h"
#include "engine/StateLockGuard.h"
#include "engine/TempDirectory.h"
#include "engine/kelOBWEngine.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";

}  // namespace

constinit std::atomic<kelOBWEngine*> kelOBWEngine::pOBWEngine = nullptr;

kelOBWEngine::kelOBWEngine() {
    const orbitwalk::BuildType buildType;
    logInfo("kelOBWEngine::kelOBWEngine -- buildType = %s", buildType.text());
    isEngBuild = buildType.isEngineering();
    if (isEngBuild)
        logInfo("kelOBWEngine::kelOBWEngine -- ENGINEERING build");
}

kelOBWEngine* kelOBWEngine::GetInstance() {
    if (kelOBWEngine* const existing = pOBWEngine)
        return existing;
    std::unique_ptr<kelOBWEngine> created(new kelOBWEngine);
    // Two threads may both find no instance at their first call.
    kelOBWEngine* current = nullptr;
    if (!pOBWEngine.compare_exchange_strong(current, created.get()))
        return current;
    logInfo("kelOBWEngine::GetInstance -- WR Engine created : size = %d",
            static_cast<int>(sizeof(kelOBWEngine)));
    return created.release();
}

void kelOBWEngine::ResetInstance() {
    logInfo("kelOBWEngine::ResetInstance -- enter, pOBWEngine=%p",
            static_cast<void*>(pOBWEngine.load()));
    PostProcessingInFlight::waitForOthers();
    if (kelOBWEngine* const engine = pOBWEngine.exchange(nullptr)) {
        delete engine;
        logInfo("kelOBWEngine::ResetInstance -- done");
    }
}

int kelOBWEngine::init(int width, int height, OBWEngineListener* listener) {
    logInfo("kelOBWEngine::init -- called, Capture Engine Version = %s, date = %s, time %s",
            kEngineVersion, kEngineDate, kEngineTime);
    logInfo("kelOBWEngine::init lock engineState=%d, image resolution = [%dX%d]",
            engineState.load(), width, height);
    if (listener == nullptr) {
        logInfo("Listener is null");
        return OBW_RESULT_INVALID_PARAM;
    }
    mListener.replace(listener);
    {
        const StateLockGuard hold(stateLock);
        engineState = OBW_STATE_INITIALIZING;
        logInfo("kelOBWEngine::init unlock, engineState=%d", engineState.load());
        engineState = OBW_STATE_IDLE;
    }
    logInfo("kelOBWEngine::init done ");
    return OBW_RESULT_OK;
}

int kelOBWEngine::getOBWInfoSize(int* size) {
    *size = sizeof(__kelOBWKDXMetaData);
    return OBW_RESULT_OK;
}

void kelOBWEngine::resetLocalVariables() {
    progress = 0;
    totalNumFrames = 0;
    orientation = 0;
    captureDirection = OBW_DIRECTION_LEFT2RIGHT;
}

int kelOBWEngine::removeTempDir(char* path) {
    return ::removeTempDir(path, isEngBuild);
}

void kelOBWEngine::takeLocalTmpDir() {
    copyLocalTmpDir(tmpDirName);
    std::snprintf(mp4FileName, sizeof mp4FileName, "%.*s%s", static_cast<int>(sizeof localTmpDir),
                  tmpDirName, "orbitwalk_vid.tmp");
}

const char* kelOBWEngine::loggablePath(const char* path, const char* otherwise) const {
    return isEngBuild ? path : otherwise;
}
