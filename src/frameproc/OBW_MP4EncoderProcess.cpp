#include "frameproc/OBW_MP4EncoderProcess.h"

#include <MP4Writer.h>

#include <exception>
#include <memory>

#include "common/BuildType.h"
#include "common/Log.h"
#include "common/Stopwatch.h"
#include "frameproc/FrameSize.h"

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE MP4_ENC_PROCESS";
constexpr int kBitRate = 16777216;  // bits per second, at every resolution
constexpr int kRotation = 0;
constexpr int kKeyInterval = 15;
constexpr int kFrameRate = 30;
constexpr int kSpeed = 7;
constexpr int kWriterSuccess = 1;

}  // namespace

OBW_MP4EncoderProcess::OBW_MP4EncoderProcess(int width, int height, SPMCQueue<unsigned char>& queue,
                                             char* file, char* tempDir, std::FILE* fileHandle,
                                             int fileHandleId)
    : mQueue(queue),
      mWidth(width),
      mHeight(height),
      mp4File(file),
      mp4TempDir(tempDir),
      mp4FileHandle(fileHandle),
      mp4FileHandleId(fileHandleId) {
    const orbitwalk::BuildType buildType;
    logInfo("OBW_MP4EncoderProcess::OBW_MP4EncoderProcess -- buildType = %s", buildType.text());
    mIsEngBuild = buildType.isEngineering();
    logCreation();
}

OBW_MP4EncoderProcess::~OBW_MP4EncoderProcess() {
    join();
}

void OBW_MP4EncoderProcess::logCreation() const {
    if (mIsEngBuild) {
        logInfo("OBW_MP4EncoderProcess::OBW_MP4EncoderProcess -- ENGINEERING build");
        logInfo(
            "OBW_MP4EncoderProcess::OBW_MP4EncoderProcess -- enter : res = %dx%d, mp4File=%s, "
            "mp4TempPath=%s, mp4 file handle : %p, %d",
            mWidth, mHeight, mp4File.c_str(), mp4TempDir.c_str(), static_cast<void*>(mp4FileHandle),
            mp4FileHandleId);
    } else {
        logInfo(
            "OBW_MP4EncoderProcess::OBW_MP4EncoderProcess -- enter : res = %dx%d, "
            "mp4 file handle : %p, %d",
            mWidth, mHeight, static_cast<void*>(mp4FileHandle), mp4FileHandleId);
    }
    logInfo("OBW_MP4EncoderProcess::OBW_MP4EncoderProcess -- enter : res = %dx%d", mWidth, mHeight);
}

void OBW_MP4EncoderProcess::logWriterSettings(const char* writerTempDir) const {
    if (mIsEngBuild) {
        logInfo(
            "OBW_MP4EncoderProcess::onStart -- enter call InitMP4Engine: res : %dx%d, mp4File:%s, "
            "mp4TempDirPath=%s, mp4TempDir=%s, mp4 file handle : %p, %d",
            mWidth, mHeight, mp4File.c_str(), mp4TempDir.c_str(), writerTempDir,
            static_cast<void*>(mp4FileHandle), mp4FileHandleId);
    } else {
        logInfo(
            "OBW_MP4EncoderProcess::onStart -- enter call InitMP4Engine: res : %dx%d, "
            "mp4 file handle : %p, %d",
            mWidth, mHeight, static_cast<void*>(mp4FileHandle), mp4FileHandleId);
    }
    logInfo(
        "OBW_MP4EncoderProcess::onStart -- enter call InitMP4Engine: res : %dx%d, "
        "bitrate = %d bps",
        mWidth, mHeight, kBitRate);
}

void OBW_MP4EncoderProcess::onStart() {
    char writerTempDir[256];  // a longer path is cut
    std::snprintf(writerTempDir, sizeof writerTempDir, "%s%s", mp4TempDir.c_str(), "RW_LIB/");
    logWriterSettings(writerTempDir);

    const orbitwalk::Stopwatch stopwatch;
    mp4InitState = InitMP4Engine(nullptr, writerTempDir, mWidth, mHeight, kRotation, kBitRate,
                                 kKeyInterval, kFrameRate, kSpeed, mp4FileHandleId, mp4FileHandle);
    logInfo("OBW_MP4EncoderProcess::onStart --: InitMP4Engine done : %d", mp4InitState);
    stopwatch.log("OBW_MP4EncoderProcess::onStart -- InitMP4Engine done : MP4EncInit_acc");

    // Frames are taken all the same, so that the producer's ring does not grow; stop reports it.
    if (mp4InitState != kWriterSuccess) {
        for (int line = 0; line < 2; ++line)
            logError("OBW_MP4EncoderProcess::onStart --: InitMP4Engine FAILED : retVal=%d",
                     mp4InitState);
    }
}

bool OBW_MP4EncoderProcess::onRun() {
    logInfo("OBW_MP4EncoderProcess::onRun -- enter, mRecvFrameCount = %d", mRecvFrameCount);
    if (mIsAllFramesDone)
        return false;
    const unsigned char* const frame = mQueue.readLock();
    if (frame == nullptr) {
        mIsAllFramesDone = true;
        return false;
    }
    logInfo("OBW_MP4EncoderProcess::onRun -- got buffer = %p", static_cast<const void*>(frame));
    const orbitwalk::Stopwatch stopwatch;
    mMp4RetStatus = EncodeFrame(frame);
    logInfo("OBW_MP4EncoderProcess::onRun -- EncodeFrame done retVal =%d", mMp4RetStatus);
    stopwatch.log("OBW_MP4EncoderProcess::onRun -- EncodeFrame done : MP4Time_acc");
    ++mRecvFrameCount;
    mQueue.readUnlock();
    return true;
}

void OBW_MP4EncoderProcess::onStop() {
    logInfo("OBW_MP4EncoderProcess::onStop -- enter, mRecvFrameCount = %d, mIsAllFramesDone = %d",
            mRecvFrameCount, mIsAllFramesDone);
    // A stop request ends the run loop at once; what was committed before the marker is left here.
    while (!mIsAllFramesDone)
        onRun();
    logInfo("OBW_MP4EncoderProcess::onStop -- done, mRecvFrameCount = %d", mRecvFrameCount);
}

int OBW_MP4EncoderProcess::stop() {
    const orbitwalk::Stopwatch stopwatch;
    logInfo("OBW_MP4EncoderProcess::stop -- enter");
    requestStopAndWait();
    logInfo("OBW_MP4EncoderProcess::stop -- requestStopAndWait done");
    if (mp4InitState != kWriterSuccess) {
        logInfo(
            "mp4EncoderProcess::stop -- mp4 init has failed, do not do deinit, "
            "mp4InitState = %d, mp4EncodeState=%d",
            mp4InitState, mMp4RetStatus);
        return -1;
    }
    if (mRecvFrameCount == 0)
        encodeFillerFrame();
    DeInitMP4Engine();
    logInfo(
        "OBW_MP4EncoderProcess::stop -- DeInitMP4Engine done : num frame receved=%d, "
        "num frames encoded=%d",
        mNumFramesReceived, mRecvFrameCount);
    stopwatch.log("OBW_MP4EncoderProcess::stop : WR_PP_ACC MP4_PROC_PP_Time_acc_2");
    if (mMp4RetStatus != kWriterSuccess) {
        logInfo(
            "mp4EncoderProcess::stop -- mp4 Encode has failed, mp4InitState = %d, "
            "mMp4RetStatus=%d",
            mp4InitState, mMp4RetStatus);
        return -1;
    }
    return 0;
}

void OBW_MP4EncoderProcess::encodeFillerFrame() const {
    logInfo("MP4EncoderProc::stop:Qendor -- no frame had been encoded till now");
    try {
        const auto filler = std::make_unique<unsigned char[]>(
            static_cast<std::size_t>(orbitwalk::yuv420FrameBytes(mWidth, mHeight)));
        // The result is only logged: a recording without frames has failed either way.
        const int result = EncodeFrame(filler.get());
        logInfo("OBW_MP4EncoderProcess::stop -- EncodeFrame done retVal = %d", result);
    } catch (const std::exception& failure) {
        logError("OBW_MP4EncoderProcess::stop -- no filler frame : %s", failure.what());
    }
}
