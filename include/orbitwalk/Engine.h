#pragma once

/// @file
/// The engine's entry points and the records that cross them.
///
/// Conventions. A frame is 8-bit YUV 4:2:0, width * height * 3 / 2 bytes: the luma plane with a
/// stride of width bytes, then the chroma data in the layout that the MP4 writer expects.
/// Coordinates are pixels of the full-size frame, x to the right, y down; angles are radians. A
/// trajectory is the motion of the picture, not of the camera, summed since the first frame.
///
/// Calling order: init, getSize, then for each capture start, per frame getTrajectory and
/// provideFrameandTrajectory, then stop (or cancel), and at the end deinit.
///
///     any --init--> IDLE --start--> IDLE --frames--> IDLE --stop--> STOPPING --100--> DONE
///                                                      '-----------cancel--------------^
///     DONE --start--> IDLE
///
/// Threads. One thread controls a capture. While post-processing runs, the engine's lock is held:
/// start, frames, stop, cancel, init and deinit wait until it has ended. The listener runs on the
/// post-processing thread, with the lock held except at 100: from a call below 100 it must not call
/// back into the engine. deinit must not overlap with another entry point on another thread, and
/// waits for a listener call that is under way (unless the listener itself made the call). A
/// frame's bytes are the caller's again when a call with them returns.
///
/// Errors. Nothing is thrown. An entry point returns 1 for success and -1 for failure; why it
/// failed, with what a library threw, stands in the log under the tag "ORBITWALK_ENGINE".
///
/// A host may write another directory, at most 199 characters and ending in a slash, into
/// localTmpDir before init. The engine owns that directory: it removes it with all that it holds.
/// Start makes it anew and refuses a link or anything that takes its name meanwhile, but checks
/// neither owner nor mode of what is above it, nor of one that it may not read, which stays in use.

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "orbitwalk/Export.h"
#include "orbitwalk/MetaData.h"

/// What start needs to know. Read once; the stream and the buffer stay the caller's and must live
/// until progress 100, or until cancel or deinit has returned.
struct _OBW_ENGINE_INIT_PARAM {
    /// Frame size in pixels, at least 4x4. Neither side may exceed 32767, and 15 frames of
    /// width * height * 3 / 2 bytes must fit a signed 32-bit integer.
    std::int32_t imageWidth;
    std::int32_t imageHeight;
    std::int32_t imageFormat;  ///< The caller's pixel-format code; logged, never interpreted.
    std::FILE* fpMP4;          ///< Open stream of the output MP4; not closed by the engine.
    void* pWideReelInfo;   ///< getSizeOrbitwalkInformation() bytes that receive the motion record.
    bool frontCamFlipped;  ///< The preview of the front camera is mirrored.
    std::int32_t orientation;  ///< Device orientation in degrees: 0, 90, 270, 360.
};

/// One encoded frame, as passed to stop.
struct _ENCODING_FRAME_INFORMATION {
    float x;                  ///< Cumulative trajectory as getTrajectory gave it, pixels.
    float y;                  ///< Pixels.
    float a;                  ///< Radians.
    std::int32_t render;      ///< 1 = rendered, 0 = skipped. Others are skipped too, but a frame
                              ///< inside the range with one of them takes a matrix all the same, so
                              ///< that it and every later frame get the one of the frame after.
    std::int32_t otherInfo1;  ///< Only logged.
    std::int32_t otherInfo2;  ///< Only logged.
};

static_assert(sizeof(_ENCODING_FRAME_INFORMATION) == 24);
static_assert(offsetof(_ENCODING_FRAME_INFORMATION, x) == 0);
static_assert(offsetof(_ENCODING_FRAME_INFORMATION, y) == 4);
static_assert(offsetof(_ENCODING_FRAME_INFORMATION, a) == 8);
static_assert(offsetof(_ENCODING_FRAME_INFORMATION, render) == 12);
static_assert(offsetof(_ENCODING_FRAME_INFORMATION, otherInfo1) == 16);
static_assert(offsetof(_ENCODING_FRAME_INFORMATION, otherInfo2) == 20);
static_assert(sizeof(void*) != 4 || sizeof(_OBW_ENGINE_INIT_PARAM) == 28);

/// Direction of the sweep. Stop accepts the first two; it takes any other value as left to right.
enum OBWDirection : int {
    OBW_DIRECTION_LEFT2RIGHT = 1,
    OBW_DIRECTION_RIGHT2LEFT = 2,
    OBW_DIRECTION_TOP2BOTTOM = 3,
    OBW_DIRECTION_BOTTOM2TOP = 4,
};

/// Implemented by the caller and registered by init; stays the caller's. onProgress is the third
/// virtual slot, after the destructor pair.
///
/// A listener must live until init has returned with another one, or deinit has, and until a call
/// of it that is under way has returned. After that it is not called any more: init waits for such
/// a call for a moment (a fifth of a second at most, since that call may be waiting for the init),
/// deinit until it is over; from within the call itself both return at once. A capture that ends
/// while its listener is replaced reports 100 to the one that is registered then.
class OBWEngineListener {
  public:
    virtual ~OBWEngineListener() = default;

    /// Called on the post-processing thread with percent 15, 30, 45, 60, 75, 90 and 100 and status
    /// 0. A failed post-processing never reaches 100: the MP4 could not be written, or no frame was
    /// provided. What it throws is dropped.
    virtual void onProgress(int status, int percent) = 0;
};

extern "C" {

/// Temporary directory, by default "/data/media/0/.TEMP_OBW_ENGINE_FILES/".
OBW_API extern char localTmpDir[200];

/// Registers the listener and makes the engine idle, whatever state it was in.
/// @return 1, or -1 for a null listener.
OBW_API int initOrbitwalkEngine(OBWEngineListener* listener);

/// Size of the motion record in bytes, 52808. Works without init.
OBW_API int getSizeOrbitwalkInformation(void);

/// Begins a capture: creates the temporary directory, the encoder thread and the measuring objects.
/// Allowed when idle or done; a start after a start begins anew.
/// @return 1, or -1: bad parameters, wrong state, no temporary directory, a component failed.
OBW_API int startOrbitwalkEngine(_OBW_ENGINE_INIT_PARAM* param);

/// Measures the motion since the previous frame and gives the trajectory of this one: pixels,
/// pixels, radians. Frames must come in order. A null frame repeats the last motion. Without a
/// running capture the outputs are 0; a null output pointer makes the call do nothing.
OBW_API void getTrajectory(const unsigned char* frame, float* x, float* y, float* a);

/// Queues one frame for encoding; the bytes are copied before the call returns. Never blocks on the
/// encoder: the queue grows. The trajectory is only logged.
/// @return 1, or -1: null frame, no capture, wrong state, hand-over failed.
OBW_API int provideFrameandTrajectory(const unsigned char* frame, float x, float y, float a);

/// Ends the capture and returns at once; post-processing finishes the MP4 and fills the record. A
/// frame is selected when its render flag is 1 and startFrameIdx <= index <= endFrameIdx; the first
/// selected frame is the reference of the path.
/// @param encodedFrameInfo  one entry per frame; copied before the call returns.
/// @param encodedFrameNum   1 to 1000.
/// @return 1, or -1. Bad arguments, and a stop with nothing started, change nothing, so a proper
/// stop can
///         follow. In a wrong state the capture's encoder, record and temporary directory are torn
///         down.
OBW_API int stopOrbitwalkEngine(int startFrameIdx, int endFrameIdx,
                                _ENCODING_FRAME_INFORMATION* encodedFrameInfo, int encodedFrameNum,
                                OBWDirection captureDirection);

/// Only logs. @return 1.
OBW_API int resetOrbitwalkEngine(void);

/// Abandons the capture, blocking: queued frames are dropped, everything is freed, and the
/// temporary directory is removed.
/// @return 1, or -1 when no capture could be cancelled; what exists is freed all the same.
OBW_API int cancelOrbitwalkEngine(void);

/// Frees everything and deletes the engine instance; the next call to any entry point makes a new
/// one. Waits for a running post-processing. @return 1.
OBW_API int deinitOrbitwalkEngine(void);
}
