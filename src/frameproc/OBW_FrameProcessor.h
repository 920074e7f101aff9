#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>

#include "frameproc/SPMCQueue.h"

class OBW_MP4EncoderProcess;

/// Gets frames into the MP4: owns the frame queue and the encoder worker. One recording per object;
/// no restart. No lock of its own: callers never run two of its operations at once. The queue's and
/// the worker's lock, thread, semaphore and allocation failures throw; the object can be destroyed
/// after each, and a stop that throws has closed the MP4.
class OBW_FrameProcessor {
  public:
    struct CreationParams {
        std::int32_t width;            ///< Frame width in pixels.
        std::int32_t height;           ///< Frame height in pixels.
        std::int32_t numBuffers;       ///< Initial number of queue slots.
        unsigned char* bufferPool;     ///< Caller's pool of numBuffers slots, or null.
        char* mp4File;                 ///< MP4 file name, only logged; must outlive start.
        char* mp4TempDir;              ///< Directory of the MP4 writer's temporary files; ditto.
        std::FILE* mp4FileHandle;      ///< Open stream of the output.
        std::int32_t mp4FileHandleId;  ///< Integer handed to the writer beside the stream.
    };

    enum STOP_TYPE_T : std::int32_t { STOP_BLOCK = 0, STOP_ASYNC = 1, STOP_ABORT = 2 };
    enum FRAMEPROC_STOP_PROCESS_ID : std::int32_t {
        FRAMEPROC_MP4_ENC = 0,
        FRAMEPROC_MOTION = 1,
        FRAMEPROC_ALL = 2
    };

    /// Does not start the worker.
    /// @throws std::length_error for a frame size, a slot count or a ring that does not fit 32
    /// bits.
    explicit OBW_FrameProcessor(const CreationParams& params);
    /// Stops as stop() does, if still running.
    ~OBW_FrameProcessor();
    OBW_FrameProcessor(const OBW_FrameProcessor&) = delete;
    OBW_FrameProcessor& operator=(const OBW_FrameProcessor&) = delete;

    /// Launches the worker. @return always 1.
    int start();
    /// Next slot to fill in place, committed by unlockEmptyBuffer; not counted as a sent frame.
    unsigned char* getEmptyBuffer();
    /// @return always 0.
    int unlockEmptyBuffer();
    /// Copies size bytes into the next slot and commits it. Frames sent before start wait in the
    /// queue; those sent after a stop stay there.
    /// @return 1, or 0 for a null or too large frame, which leaves the processor usable.
    int sendFrame(unsigned char* data, int size);
    /// Waits until every queued frame is encoded and the MP4 is closed.
    /// @return 0 complete or never started, -1 failed.
    int stop();
    /// Blocks exactly like stop; the identifier only labels log lines.
    int stopAsync(FRAMEPROC_STOP_PROCESS_ID id);
    /// Drops the queued frames and closes the MP4. @return as stop.
    int abort();
    /// @return always 0.
    int getProgress(FRAMEPROC_STOP_PROCESS_ID id) const;

  private:
    void logCreation() const;
    void postEndMarker();
    int stop_helper(STOP_TYPE_T type, FRAMEPROC_STOP_PROCESS_ID id);

    CreationParams mParams;
    std::int32_t mMaxFrameSize;  ///< Largest frame accepted, in bytes.
    bool mIsRunning = false;     ///< From start until the first stop or abort.
    SPMCQueue<unsigned char> mQueue;
    std::unique_ptr<OBW_MP4EncoderProcess> mMP4Encoder;
    std::int32_t frameCount = 0;  ///< Frames that sendFrame accepted.
    bool mIsEngBuild = false;
};
