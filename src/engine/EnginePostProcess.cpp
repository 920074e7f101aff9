#include "common/Log.h"
#include "engine/PostProcessingInFlight.h"
#include "engine/ResultCodes.h"
#include "engine/TempDirectory.h"
#include "engine/kelOBWEngine.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";
constexpr int kProgressStatus = 0;

}  // namespace

void* kelOBWEngine::onOBWEngineDoPostProcess(void* engine) {
    const PostProcessingInFlight inFlight;
    auto* const self = static_cast<kelOBWEngine*>(engine);
    self->mPostProcThread = pthread_self();
    self->objectsLock.lock();
    try {
        self->postProcess();
    } catch (...) {
        // Nothing throws once the locks have been given back.
        self->failPostProcess();
        logError("kelOBWEngine::onOBWEngineDoPostProcess : a component or an allocation failed");
    }
    return nullptr;
}

/// Ends with both locks given back, on every path.
void kelOBWEngine::postProcess() {
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess -- Enter : numCapture=%d, totalNumFrames = %d",
            numCapture.load(), totalNumFrames.load());
    const orbitwalk::Stopwatch time;
    if (!finishMP4())
        return;
    notifyProgress(15);
    time.log("kelOBWEngine:: onOBWEngineDoPostProcess OBW_PP_ACC MP4_Resize_PP_Time_acc");
    if (pOBWKDXMetaInfo == nullptr) {
        logError("kelOBWEngine::onOBWEngineDoPostProcess : pOBWKDXMetaInfo is NULL");
        failPostProcess();
        logError("kelOBWEngine::onOBWEngineDoPostProcess : IA_OBW_RESULT_FAIL-11");
        return;
    }
    notifyProgress(30);
    if (doSmoothingAndFillMetadata(this) != OBW_RESULT_OK) {
        logError(
            "kelOBWEngine::onOBWEngineDoPostProcess : doSmoothingAndFillMetadata ERROR!!!!!!!!!");
        return;
    }
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : doSmoothingAndFillMetadata DONE ");
    freeAfterPostProcess();
    notifyProgress(90);
    removeTempDirAfterPostProcess();
    time.log("kelOBWEngine:: onOBWEngineDoPostProcess OBW_PP_ACC StopTime_acc");
    resetLocalVariables();
    time.log("kelOBWEngine:: onOBWEngineDoPostProcess OBW_PP_ACC StopTime_full_acc");
    endPostProcess();
    // From here on the engine may be in use elsewhere, and after the call gone: until then, whoever
    // deletes it waits for this thread.
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : stateLock-unlock DONE");
    notifyProgress(100);
}

bool kelOBWEngine::finishMP4() {
    if (frameProcessor == nullptr) {
        logError("kelOBWEngine::onOBWEngineDoPostProcess frameProcessor is NULL");
        return true;
    }
    const int status = frameProcessor->stop();
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : Mp4EncStatus = %d ", status);
    frameProcessor.reset();
    if (status == 0)
        return true;
    logError("kelOBWEngine::onOBWEngineDoPostProcess : ResizeFrameProcessor->stop FAILED ");
    failPostProcess();
    logError("kelOBWEngine::onOBWEngineDoPostProcess : FAILURE CASE : StateLock.unLock DONE ");
    return false;
}

void kelOBWEngine::freeAfterPostProcess() {
    {
        const std::lock_guard finder(finderLock);
        if (p_mFindTransform != nullptr) {
            p_mFindTransform->Release();
            logInfo("kelOBWEngine::onOBWEngineDoPostProcess : p_mFindTransform Release DONE ");
            ifindTransform::Destroy(p_mFindTransform.release());
            logInfo("kelOBWEngine::onOBWEngineDoPostProcess : p_mFindTransform Destroy DONE ");
        }
    }
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : free memory pOBWKDXMetaInfo = %p",
            static_cast<void*>(pOBWKDXMetaInfo.get()));
    pOBWKDXMetaInfo.reset();
    logInfo("kelOBWEngine::onOBWEngineDoPostProcess : free memory pFrameInfo = %p",
            static_cast<void*>(pFrameInfo.get()));
    pFrameInfo.reset();
}

void kelOBWEngine::removeTempDirAfterPostProcess() {
    logInfo("kelWideReelEngine::onWREngineDoPostProcess : call removeTempDir");
    if (!differsFromLocalTmpDir(tmpDirName)) {
        if (removeTempDir(tmpDirName) == OBW_RESULT_OK)
            logInfo("kelOBWEngine : onWREngineDoPostProcess: removeTempDir SUCCESS");
        else
            logInfo("kelOBWEngine : onWREngineDoPostProcess: removeTempDir FALIED!!");
        return;
    }
    logError(
        "kelOBWEngine::onWREngineDoPostProcess REMOVE_TEMP_DIR_AFTER_END, ERROR!!!!!!! invlaid "
        "path");
    logError("kelOBWEngine::onWREngineDoPostProcess REMOVE_TEMP_DIR_AFTER_END, tmpDirName=%s",
             loggablePath(tmpDirName, "[Line: 884]"));
    takeLocalTmpDir();
    if (removeTempDir(tmpDirName) == OBW_RESULT_OK)
        logInfo("kelOBWEngine : onWREngineDoPostProcess : removeTempDir SUCCESS");
    else
        logInfo("kelOBWEngine : onWREngineDoPostProcess : removeTempDir FALIED!!");
}

void kelOBWEngine::failPostProcess() {
    resetLocalVariables();
    endPostProcess();
}

void kelOBWEngine::endPostProcess() {
    objectsLock.unlock();
    engineState = OBW_STATE_DONE;
    pthread_mutex_unlock(&stateLock);
}

void kelOBWEngine::notifyProgress(int percent) {
    mListener.call(kProgressStatus, percent);
}
