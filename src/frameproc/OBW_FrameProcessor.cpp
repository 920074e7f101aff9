#include "frameproc/OBW_FrameProcessor.h"

#include <algorithm>
#include <cstring>
#include <exception>

#include "common/BuildType.h"
#include "common/Log.h"
#include "frameproc/FrameSize.h"
#include "frameproc/OBW_MP4EncoderProcess.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE FRAME_PROCESSOR";
constexpr std::uint32_t kMinSlotSize = 16;  // room for the queue's end marker

using Processor = OBW_FrameProcessor;

const char* textOf(Processor::STOP_TYPE_T type) {
    switch (type) {
        case Processor::STOP_BLOCK:
            return "stop block";
        case Processor::STOP_ASYNC:
            return "stop async";
        default:
            return "abort";
    }
}

const char* textOf(Processor::FRAMEPROC_STOP_PROCESS_ID id) {
    switch (id) {
        case Processor::FRAMEPROC_MP4_ENC:
            return "FRAMEPROC_MP4_ENC";
        case Processor::FRAMEPROC_MOTION:
            return "FRAMEPROC_MOTION";
        default:
            return "FRAMEPROC_ALL";
    }
}

std::int32_t slotSize(std::int32_t maxFrameSize) {
    return static_cast<std::int32_t>(
        std::max(static_cast<std::uint32_t>(maxFrameSize), kMinSlotSize));
}

}  // namespace

OBW_FrameProcessor::OBW_FrameProcessor(const CreationParams& params)
    : mParams(params),
      mMaxFrameSize(orbitwalk::yuv420FrameBytes(params.width, params.height)),
      mQueue(slotSize(mMaxFrameSize), params.numBuffers, params.bufferPool) {
    const orbitwalk::BuildType buildType;
    logInfo("OBW_FrameProcessor::OBW_FrameProcessor -- buildType = %s", buildType.text());
    mIsEngBuild = buildType.isEngineering();
    logCreation();
    mMP4Encoder = std::make_unique<OBW_MP4EncoderProcess>(
        mParams.width, mParams.height, mQueue, mParams.mp4File, mParams.mp4TempDir,
        mParams.mp4FileHandle, mParams.mp4FileHandleId);
    logInfo("::OBW_FrameProcessor -- done : mMaxFrameSize = %d", mMaxFrameSize);
}

// File names reach the log on engineering builds only.
void OBW_FrameProcessor::logCreation() const {
    void* const handle = mParams.mp4FileHandle;
    void* const pool = mParams.bufferPool;
    if (mIsEngBuild) {
        logInfo("OBW_FrameProcessor::OBW_FrameProcessor -- ENGINEERING build");
        logInfo(
            "::OBW_FrameProcessor -- enter: %dx%d, MP4 file : %s, MP4 tmp dir : %s, "
            "MP4 handles : %p, %d, buffer pool = %p",
            mParams.width, mParams.height, mParams.mp4File, mParams.mp4TempDir, handle,
            mParams.mp4FileHandleId, pool);
    } else {
        logInfo("::OBW_FrameProcessor -- enter: %dx%d, MP4 handles : %p, %d, buffer pool = %p",
                mParams.width, mParams.height, handle, mParams.mp4FileHandleId, pool);
    }
}

OBW_FrameProcessor::~OBW_FrameProcessor() {
    logInfo("::~OBW_FrameProcessor -- enter : mIsRunning=%d", mIsRunning);
    if (mIsRunning) {
        try {
            stop();
        } catch (const std::exception& failure) {
            logError("::~OBW_FrameProcessor -- stop failed : %s", failure.what());
        }
    }
    mMP4Encoder.reset();
    logInfo("::~OBW_FrameProcessor -- done");
}

int OBW_FrameProcessor::start() {
    logInfo("::start-- enter");
    mIsRunning = true;
    mMP4Encoder->start();
    logInfo("::start -- done");
    return 1;
}

unsigned char* OBW_FrameProcessor::getEmptyBuffer() {
    unsigned char* const slot = mQueue.writeLock();
    if (slot != nullptr)
        logInfo("OBW_FrameProcessor::getEmptyBuffer -- done");
    else
        logError("OBW_FrameProcessor::getEmptyBuffer: warning.. No Free Buffers");
    return slot;
}

int OBW_FrameProcessor::unlockEmptyBuffer() {
    mQueue.writeUnlock();
    return 0;
}

int OBW_FrameProcessor::sendFrame(unsigned char* data, int size) {
    logInfo("::sendFrame -- enter, size = %d, mMaxFrameSize = %d, frameCount=%d", size,
            mMaxFrameSize, frameCount);
    // Unsigned, so that a negative size is too large.
    if (static_cast<std::uint32_t>(size) > static_cast<std::uint32_t>(mMaxFrameSize)) {
        logError("::sendFrame -- frame larger than expected");
        return 0;
    }
    if (data == nullptr) {
        logError("::sendFrame -- no frame data");
        return 0;
    }
    unsigned char* const slot = mQueue.writeLock();
    if (slot == nullptr) {
        logError("::sendFrame: No Free Buffers - Dropping frame");
        return 0;
    }
    ++frameCount;
    std::memcpy(slot, data, static_cast<std::size_t>(size));
    mQueue.writeUnlock();
    logInfo("::sendFrame -- done, frameCount=%d", frameCount);
    return 1;
}

int OBW_FrameProcessor::stop() {
    return stop_helper(STOP_BLOCK, FRAMEPROC_ALL);
}

int OBW_FrameProcessor::stopAsync(FRAMEPROC_STOP_PROCESS_ID id) {
    return stop_helper(STOP_ASYNC, id);
}

int OBW_FrameProcessor::abort() {
    return stop_helper(STOP_ABORT, FRAMEPROC_ALL);
}

int OBW_FrameProcessor::getProgress(FRAMEPROC_STOP_PROCESS_ID id) const {
    logInfo("OBW_FrameProcessor::getProgress procID = %d", id);
    return 0;
}

int OBW_FrameProcessor::stop_helper(STOP_TYPE_T type, FRAMEPROC_STOP_PROCESS_ID id) {
    const char* const word = textOf(type);
    logInfo("::%s %s-- enter", word, textOf(id));
    if (!mIsRunning) {
        logError("::%s -- called without start()", word);
        return 0;
    }
    mIsRunning = false;
    if (type == STOP_ABORT) {
        logInfo("::%s -- signalEmergencyExit", word);
        mQueue.signalEmergencyExit();
    } else {
        logInfo("::%s -- signalEndOfFrames", word);
    }
    postEndMarker();
    logInfo("::%s -- signalEndOfFrames done", word);
    const int result = mMP4Encoder->stop();
    logInfo("::%s -- mMP4Encoder stop done", word);
    logInfo("::%s  %s-- done", word, textOf(id));
    return result;
}

void OBW_FrameProcessor::postEndMarker() {
    try {
        mQueue.signalEndOfFrames();
    } catch (...) {
        // The worker finishes without the marker too. Close the writer, of which there is one in
        // the process, before the failure goes on: the next recording needs it.
        mMP4Encoder->stop();
        throw;
    }
}
