#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "frameproc/CThread.h"
#include "frameproc/SPMCQueue.h"

/// The worker that takes frames from the queue and passes them to the platform's MP4 writer, one by
/// one. The writer is opened and fed on the worker thread, and closed by stop after that has ended;
/// the two threads share nothing else but the queue.
///
/// Before stop or the destructor, the end marker must be in the queue (or the emergency exit
/// raised and the consumer woken): both wait for the worker, which waits for these.
class OBW_MP4EncoderProcess : public vfw::CThread {
  public:
    /// @param width, height    frame size in pixels; a frame is width * height * 3 / 2 bytes.
    /// @param queue            not owned; outlives the worker.
    /// @param mp4File          file name, only logged; not null, copied.
    /// @param mp4TempDir       directory, with its trailing slash, in which the writer may keep
    ///                         temporary files; not null, copied.
    /// @param mp4FileHandle    open stream of the output; the caller's.
    /// @param mp4FileHandleId  handed to the writer beside the stream.
    OBW_MP4EncoderProcess(int width, int height, SPMCQueue<unsigned char>& queue, char* mp4File,
                          char* mp4TempDir, std::FILE* mp4FileHandle, int mp4FileHandleId);
    ~OBW_MP4EncoderProcess() override;

    /// Waits until every frame before the end marker is encoded, and closes the MP4; an empty
    /// recording gets one black frame first. Called once, on a controlling thread.
    /// @return 0 when the MP4 is complete; -1 when the writer did not open (it is not closed then),
    ///         the last encode failed, or there was no frame.
    int stop();

  protected:
    void onStart() override;
    void onStop() override;
    bool onRun() override;

  private:
    void logCreation() const;
    void logWriterSettings(const char* writerTempDir) const;
    void encodeFillerFrame() const;

    SPMCQueue<unsigned char>& mQueue;
    bool mIsAllFramesDone = false;
    std::int32_t mWidth;
    std::int32_t mHeight;
    std::int32_t mRecvFrameCount = 0;     ///< Frames that onRun passed to the writer.
    std::int32_t mNumFramesReceived = 0;  ///< Only printed; nothing counts it.
    // Copies: a start may rewrite the engine's paths while a replaced worker still reads its own.
    std::string mp4File;
    std::string mp4TempDir;
    std::FILE* mp4FileHandle;
    std::int32_t mp4FileHandleId;
    std::int32_t mMp4RetStatus = 0;  ///< Result of onRun's last encode.
    std::int32_t mp4InitState = 0;   ///< Result of opening the writer.
    bool mIsEngBuild = false;
};
