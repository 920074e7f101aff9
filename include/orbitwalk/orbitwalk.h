#pragma once

/** @file
 * The engine for C, and for what calls C: libOrbitwalkC, which holds an engine of its own. Link it
 * or libOrbitwalkEngine (Engine.h), not both. The calls, their order, their threads and the frames
 * are those of Engine.h; every call of a state that does not allow it gets its documented result.
 *
 * Frames are 8-bit YUV 4:2:0, width * height * 3 / 2 bytes: the luma plane with a stride of width
 * bytes, then the chroma as the platform's MP4 writer expects it. Coordinates are pixels of the
 * full-size frame, x right, y down; angles are radians. A trajectory is the motion of the picture
 * since the first frame.
 *
 *     orbitwalkInit, then for each capture orbitwalkStart, for each frame orbitwalkGetTrajectory
 * and orbitwalkProvideFrame, then orbitwalkStop (progress 100: MP4 and record are there) or
 * orbitwalkCancel; at the end orbitwalkDeinit.
 *
 * One thread controls a capture. Calls wait while a post-processing runs. Results are 1 for success
 * and -1 for failure; then orbitwalkLastError says why. The functions throw nothing. */

#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>

#include "orbitwalk/Export.h"
#include "orbitwalk/MetaData.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The motion record that a capture fills: OBW_METADATA_SIZE bytes. */
typedef struct __kelOBWKDXMetaData OrbitwalkRecord;

/** Who hears of a post-processing. Copied by orbitwalkInit. */
typedef struct OrbitwalkListener {
    /** Called on the post-processing thread with 15, 30, 45, 60, 75, 90 and 100; a post-processing
     * that fails never reaches 100. Below 100 the engine must not be called from it. Never null. */
    void (*onProgress)(void* user, int percent);
    /** Called once when onProgress is not called any more, so that user may be freed: from
     * orbitwalkInit that puts another listener in place or from orbitwalkDeinit, or on the
     * post-processing thread when a call of onProgress was still under way. May be null. */
    void (*release)(void* user);
    void* user;
} OrbitwalkListener;

/** What orbitwalkStart needs to know. Stream and record stay the caller's and must live until
 * progress 100, or until orbitwalkCancel or orbitwalkDeinit has returned. */
typedef struct OrbitwalkParameters {
    int32_t width;  /**< Pixels, at least 4, at most 32767; 15 frames must fit 2^31 - 1 bytes. */
    int32_t height; /**< As width. */
    int32_t format; /**< The caller's pixel-format code: logged, never interpreted. */
    FILE* mp4;      /**< Receives the video; not closed. */
    OrbitwalkRecord* record; /**< Receives the record. */
    bool mirrored;           /**< The preview of the front camera is mirrored. */
    int32_t orientation;     /**< Of the device, degrees: 0, 90, 270, 360. */
} OrbitwalkParameters;

/** One frame of the capture, as orbitwalkStop is told of it. */
typedef struct OrbitwalkFrame {
    float x, y;         /**< As orbitwalkGetTrajectory gave it, pixels. */
    float angle;        /**< Radians. */
    int32_t isRendered; /**< 1: a player shows the frame; 0: it does not. */
    int32_t info[2];    /**< Only logged. */
} OrbitwalkFrame;

enum OrbitwalkDirection { ORBITWALK_LEFT_TO_RIGHT = 1, ORBITWALK_RIGHT_TO_LEFT = 2 };

/** Names the directory that the engine owns: removed with all that it holds at the start and at the
 * end of a capture. Before orbitwalkInit. path: at most 199 characters, ends in a slash. */
OBW_API int orbitwalkSetTemporaryDirectory(const char* path);

/** Registers the listener and makes the engine idle, whatever it did. A refused listener changes
 * nothing. */
OBW_API int orbitwalkInit(const OrbitwalkListener* listener);

/** OBW_METADATA_SIZE. */
OBW_API int orbitwalkRecordSize(void);

/** Begins a capture: temporary directory, encoder thread, what measures. */
OBW_API int orbitwalkStart(const OrbitwalkParameters* parameters);

/** Measures a frame and gives its trajectory; 0 and -1 when nothing was started. A null frame
 * repeats the last motion. */
OBW_API int orbitwalkGetTrajectory(const uint8_t* frame, float* x, float* y, float* angle);

/** Queues a frame for the encoder; copied before the call returns. The trajectory is only logged.
 */
OBW_API int orbitwalkProvideFrame(const uint8_t* frame, float x, float y, float angle);

/** Ends the capture and returns; post-processing goes on and reports progress. Shown are the frames
 * first to last, both included, whose isRendered is 1. frames: count entries, 1 to OBW_MAX_FRAMES,
 * one a frame that was provided; copied. direction: an OrbitwalkDirection; any other value is taken
 * for left to right. */
OBW_API int orbitwalkStop(int first, int last, const OrbitwalkFrame* frames, int count,
                          int direction);

/** Only logs. */
OBW_API int orbitwalkReset(void);

/** Abandons the capture; waits until all is freed and the temporary directory removed. */
OBW_API int orbitwalkCancel(void);

/** Frees everything, waits for a post-processing that runs, and releases the listener. */
OBW_API int orbitwalkDeinit(void);

/** What the engine said of the calling thread's last call in this header, if it failed: the error
 * lines of the log, separated by "; ". Empty after a success; what a post-processing says stands in
 * the log alone. Valid until the thread's next call. Never null. */
OBW_API const char* orbitwalkLastError(void);

#ifdef __cplusplus
}
#endif
