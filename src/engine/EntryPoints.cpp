#include "common/Log.h"
#include "engine/kelOBWEngine.h"
#include "orbitwalk/Engine.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE_INTERFACE";

/// Runs one operation on the engine; an exception ends here as a failed component.
/// @param name  the entry point's, for the log
template <class Operation>
int onEngine(const char* name, Operation operation) noexcept {
    try {
        return operation(*kelOBWEngine::GetInstance());
    } catch (...) {
        orbitwalk::logCause(kLogTag, name);
        return OBW_RESULT_FAIL;
    }
}

int folded(int status) {
    return status == OBW_RESULT_OK ? 1 : -1;
}

/// The components read frames through plain pointers and never write to them.
unsigned char* writable(const unsigned char* frame) {
    return const_cast<unsigned char*>(frame);
}

}  // namespace

int initOrbitwalkEngine(OBWEngineListener* listener) {
    logInfo("initOrbitwalkEngine : E");
    const int status = onEngine("initOrbitwalkEngine",
                                [&](kelOBWEngine& engine) { return engine.init(0, 0, listener); });
    if (status != OBW_RESULT_OK)
        logInfo("initOrbitwalkEngine ERROR........status=%d, returning -1 ", status);
    logInfo("initOrbitwalkEngine : X");
    return folded(status);
}

int getSizeOrbitwalkInformation(void) {
    logInfo("getSizeOrbitwalkInformation : E");
    int size = OBW_METADATA_SIZE;
    const int status = onEngine("getSizeOrbitwalkInformation",
                                [&](kelOBWEngine& engine) { return engine.getOBWInfoSize(&size); });
    if (status != OBW_RESULT_OK)
        logInfo("getSizeOrbitwalkInformation ERROR........status=%d, returning -1 ", status);
    logInfo("getSizeOrbitwalkInformation : X : OBW Info Size = %d", size);
    return size;
}

int startOrbitwalkEngine(_OBW_ENGINE_INIT_PARAM* param) {
    logInfo("startOrbitwalkEngine : E");
    if (param != nullptr)
        logInfo(
            "startOrbitwalkEngine : Init Param. image width = %d\timage height = %d\torientation = "
            "%d",
            param->imageWidth, param->imageHeight, param->orientation);
    const int status =
        onEngine("startOrbitwalkEngine", [&](kelOBWEngine& engine) { return engine.start(param); });
    if (status != OBW_RESULT_OK)
        logInfo("startOrbitwalkEngine ERROR........status=%d, returning -1 ", status);
    logInfo("startOrbitwalkEngine : X");
    return folded(status);
}

void getTrajectory(const unsigned char* frame, float* x, float* y, float* a) {
    logInfo("getTrajectory : E");
    onEngine("getTrajectory", [&](kelOBWEngine& engine) {
        return engine.computeTrajectory(writable(frame), x, y, a);
    });
    logInfo("getTrajectory : X");
}

int provideFrameandTrajectory(const unsigned char* frame, float x, float y, float a) {
    logInfo("provideFrameandTrajectory : E");
    logInfo(
        "provideFrameandTrajectory : frame = %p\tTrajectory.x = %f\tTrajectory.y = "
        "%f\tTrajectory.a = %f",
        static_cast<const void*>(frame), static_cast<double>(x), static_cast<double>(y),
        static_cast<double>(a));
    const int status = onEngine("provideFrameandTrajectory", [&](kelOBWEngine& engine) {
        return engine.setFrameInfo(writable(frame), x, y, a);
    });
    if (status != OBW_RESULT_OK)
        logInfo("provideFrameandTrajectory : ERROR........status=%d, returning -1 ", status);
    logInfo("provideFrameandTrajectory : X");
    return folded(status);
}

int stopOrbitwalkEngine(int startFrameIdx, int endFrameIdx,
                        _ENCODING_FRAME_INFORMATION* encodedFrameInfo, int encodedFrameNum,
                        OBWDirection captureDirection) {
    logInfo("stopOrbitwalkEngine : E");
    logInfo(
        "stopOrbitwalkEngine : "
        "startFrameIdx=%d\tendFrameIdx=%d\tencodedFrameInfo=%p\tencodedFrameNum=%d\t"
        "captureDirection=%d",
        startFrameIdx, endFrameIdx, static_cast<void*>(encodedFrameInfo), encodedFrameNum,
        captureDirection);
    const int status = onEngine("stopOrbitwalkEngine", [&](kelOBWEngine& engine) {
        return engine.stop(startFrameIdx, endFrameIdx, encodedFrameInfo, encodedFrameNum,
                           captureDirection);
    });
    if (status != OBW_RESULT_OK)
        logInfo("stopOrbitwalkEngine ERROR........status=%d, returning -1 ", status);
    logInfo("stopOrbitwalkEngine : X");
    return folded(status);
}

int resetOrbitwalkEngine(void) {
    logInfo("resetOrbitwalkEngine : E");
    const int status =
        onEngine("resetOrbitwalkEngine", [](kelOBWEngine& engine) { return engine.reset(); });
    if (status != OBW_RESULT_OK)
        logInfo("resetOrbitwalkEngine ERROR........status=%d, returning -1 ", status);
    logInfo("resetOrbitwalkEngine : X");
    return folded(status);
}

int cancelOrbitwalkEngine(void) {
    logInfo("cancelOrbitwalkEngine : E");
    const int status =
        onEngine("cancelOrbitwalkEngine", [](kelOBWEngine& engine) { return engine.cancel(); });
    if (status != OBW_RESULT_OK)
        logInfo("cancelOrbitwalkEngine ERROR........status=%d, returning -1 ", status);
    logInfo("cancelOrbitwalkEngine : X");
    return folded(status);
}

int deinitOrbitwalkEngine(void) {
    logInfo("deinitOrbitwalkEngine : E");
    const int status =
        onEngine("deinitOrbitwalkEngine", [](kelOBWEngine& engine) { return engine.deinit(); });
    kelOBWEngine::ResetInstance();
    if (status != OBW_RESULT_OK)
        logInfo("deinitOrbitwalkEngine ERROR........status=%d, returning -1 ", status);
    logInfo("deinitOrbitwalkEngine : X");
    return folded(status);
}
