package org.orbitwalk.sample

import java.io.File
import java.nio.ByteBuffer

/**
 * A sweep's capture: start, frames, stop, and when progress has reached 100, finish. One at a time in a process; any
 * thread, one call at a time. Calls wait while a post-processing runs. A call that fails throws
 * [IllegalStateException] with the engine's reason; [close] may follow at any time.
 *
 * @param directory  the engine's own: removed with all that it holds
 * @param progress   called on the engine's thread with 15, 30, 45, 60, 75, 90 and 100 after [stop]. It must not call this
 * object but hand that to another thread, as the sample does: below 100 every call would wait for the post-processing, which
 * waits for progress; at 100 it would wait for a [close] under way, which waits for progress, too. A post-processing that
 * fails never reaches 100.
 */
class SweepCapture(directory: File, private val progress: (Int) -> Unit) : AutoCloseable {
    enum class Direction(internal val code: Int) { LEFT_TO_RIGHT(1), RIGHT_TO_LEFT(2) }

    /** One plane of an image, as android.media.Image.Plane has it; the buffer is a direct one. */
    class Plane(val buffer: ByteBuffer, val rowStride: Int, val pixelStride: Int)

    /** How far the picture has moved since the first frame: pixels, x right, y down; radians. */
    data class Trajectory(val x: Float, val y: Float, val angle: Float)

    init {
        nativeInit(directory.path + "/")
    }

    /**
     * @param video        receives the MP4; overwritten
     * @param width        of the frames, pixels, even
     * @param height       as width
     * @param orientation  of the device, degrees: 0, 90, 270 or 360
     * @param mirrored     the front camera's preview is mirrored
     */
    @Synchronized
    fun start(video: File, width: Int, height: Int, orientation: Int = 0, mirrored: Boolean = false) =
        nativeStart(video.path, width, height, orientation, mirrored)

    /** Measures and queues a YUV_420_888 frame, which is copied. At most 1000 a sweep. */
    @Synchronized
    fun frame(y: Plane, u: Plane, v: Plane): Trajectory {
        val moved = FloatArray(3)
        nativeFrame(y.buffer, y.rowStride, u.buffer, v.buffer, u.rowStride, u.pixelStride, moved)
        return Trajectory(moved[0], moved[1], moved[2])
    }

    /** Ends the frames and returns; what follows is told by progress. */
    @Synchronized
    fun stop(direction: Direction) = nativeStop(direction.code)

    /** After 100: closes the video, which is complete. @return the motion record, little-endian, 52808 bytes */
    @Synchronized
    fun finish(): ByteArray = nativeFinish()

    /** Abandons the sweep; its video is worth nothing. */
    @Synchronized
    fun cancel() = nativeCancel()

    /** Waits for a post-processing that runs; progress is not called afterwards. */
    @Synchronized
    override fun close() = nativeDeinit()

    /** Called by the native half. */
    @Suppress("unused")
    private fun onProgress(percent: Int) = progress(percent)

    private external fun nativeInit(directory: String)
    private external fun nativeStart(video: String, width: Int, height: Int, orientation: Int, mirrored: Boolean)
    private external fun nativeFrame(y: ByteBuffer, yRowStride: Int, u: ByteBuffer, v: ByteBuffer, uvRowStride: Int, uvPixelStride: Int, trajectory: FloatArray)
    private external fun nativeStop(direction: Int)
    private external fun nativeFinish(): ByteArray
    private external fun nativeCancel()
    private external fun nativeDeinit()

    companion object {
        init {
            // It brings the engine with it, and the engine finds its MP4 writer in it.
            System.loadLibrary("sweepcapture")
        }
    }
}
