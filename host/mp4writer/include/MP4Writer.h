#pragma once

/* The MP4 writer as the engine calls it: one writer per process, no handle. On a phone the
 * platform's own library provides these calls; on a host OrbitwalkMP4Writer does, over FFmpeg.
 *
 * Frames are planar YUV 4:2:0 (I420): width * height luma bytes, then width/2 * height/2 bytes of
 * U, then of V, without padding. Both sides must be even.
 *
 * A frame leaves the encoder in the call that gives it. What stands in the stream is a fragmented
 * MP4: with each key frame, all frames before it have been written and flushed as a complete
 * fragment. A recording that ends in a failed write or with the death of the process therefore
 * plays up to its last key frame, which is at most one interval short of the last frame given. The
 * stream need not be seekable. The same frames give the same bytes.
 *
 * A failed write, also one at the end, leaves the stream's error indicator set: a host that does
 * not see the results below asks ferror before it closes the stream. SIGPIPE is left as the host
 * has set it; only where it is ignored is a closed pipe a failed write.
 *
 * Calls come from one thread at a time. A failure is said in the log under the tag
 * "ORBITWALK_MP4_WRITER", once, however many frames fail after it. */

#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

#define OBW_MP4_API __attribute__((visibility("default")))

/* Begins a recording.
 *   fileName      not used, may be null: output goes through the stream
 *   tempDir       directory for temporary files; this writer makes none
 *   width, height frame size in pixels
 *   rotation      0; other values are refused
 *   bitRate       of the video, in bits per second, at least 1000
 *   keyInterval   frames from one key frame to the next; no other frame is one
 *   frameRate     frames per second, constant
 *   speed         0 (smallest file) to 9 (fastest); from 7 on one core keeps up with 1080p at 30
 *                 frames a second
 *   fileId        integer that accompanies the stream; only logged
 *   file          open stream of the output; stays the caller's
 * Returns 1, or another value with the reason in the log: bad settings, no encoder, a recording
 * already open, a failed write. */
OBW_MP4_API int InitMP4Engine(const char* fileName, const char* tempDir, int width, int height,
                              int rotation, int bitRate, int keyInterval, int frameRate, int speed,
                              int fileId, FILE* file);

/* Encodes one frame. The bytes are not kept after the call. Returns 1, or another value: no
 * recording, a null frame, a failed encode or write. After a failed write every further frame of
 * the recording fails at once. */
OBW_MP4_API int EncodeFrame(const unsigned char* frame);

/* Ends the recording, writes its last fragment, and flushes the stream. Returns 1, or
 * another value: no recording, or the file is not complete. Afterwards a new recording can begin,
 * either way. */
OBW_MP4_API int DeInitMP4Engine(void);

/* For hosts that pace a fast source, not called by the engine: waits until at least `frames` frames
 * of the current recording, or of the last one, were given to EncodeFrame and have returned from
 * it, failed ones too, or until timeoutMs milliseconds have passed. Any thread. Returns the number
 * so far. */
OBW_MP4_API int WaitMP4EngineFrames(int frames, int timeoutMs);

#ifdef __cplusplus
}
#endif
