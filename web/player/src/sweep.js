import {openRecord, RecordError} from "@orbitwalk/record";
import {DecodedFrames} from "./decodedFrames.js";
import {openVideo, PlayerError, reasonOf} from "./video.js";
import {VideoFrames} from "./videoFrames.js";

/**
 * A sweep's two files, addresses or bytes.
 * @typedef {{video: string | Blob, record: string | ArrayBuffer | ArrayBufferView}} SweepFiles
 *
 * @typedef {object} Sweep
 * @property {import("@orbitwalk/record").RecordReader} record
 * @property {import("./decodedFrames.js").FrameSource} source
 * @property {number} rate  frames a second
 */

/** @param {string} address @param {AbortSignal} signal */
async function fetchBytes(address, signal) {
    let response;
    try {
        response = await fetch(address, {signal});
    } catch (error) {
        signal.throwIfAborted();
        throw new PlayerError(`The motion record ${address} cannot be read: ${reasonOf(error)}`, error);
    }
    if (!response.ok)
        throw new PlayerError(`The motion record ${address} cannot be read: ${response.status} ${response.statusText}`.trim());
    return response.arrayBuffer();
}

/** @param {SweepFiles["record"]} source @param {AbortSignal} signal */
async function readRecord(source, signal) {
    const bytes = typeof source === "string" ? await fetchBytes(source, signal) : source;
    try {
        return openRecord(bytes);
    } catch (error) {
        throw error instanceof RecordError
            ? new PlayerError(`This is not a motion record: it ${error.message}.`, error) : error;
    }
}

/**
 * @param {import("@orbitwalk/record").RecordReader} record
 * @param {import("./video.js").VideoIndex} video
 */
function requireSameSweep(record, video) {
    if (record.width !== video.width || record.height !== video.height)
        throw new PlayerError(`The motion record is of another video: it says ${record.width} × ${record.height} pixels, ` +
            `the video has ${video.width} × ${video.height}.`);
    if (record.frameCount !== video.timestamps.length)
        throw new PlayerError(`The motion record is of another video, or the video is cut off: it says ` +
            `${record.frameCount} frames, the video has ${video.timestamps.length}.`);
    if (record.renderedFrames.length === 0)
        throw new PlayerError("The motion record shows no frame.");
}

/** @param {import("./video.js").VideoIndex} video @param {string | Blob} file @param {AbortSignal} signal */
async function frameSource(video, file, signal) {
    const canDecode = await DecodedFrames.canDecode(video);
    signal.throwIfAborted();
    if (canDecode)
        return new DecodedFrames(video);
    if (!VideoFrames.isSupported)
        throw new PlayerError("This browser has neither WebCodecs nor requestVideoFrameCallback; the player needs one of them.");
    const frames = new VideoFrames(video, file);
    try {
        await frames.open(signal);
        return frames;
    } catch (error) {
        frames.close();
        throw error;
    }
}

/**
 * Opens a sweep and checks that its files belong together.
 * @param {SweepFiles} files
 * @param {AbortSignal} signal
 * @returns {Promise<Sweep>}  its source is the caller's to close
 * @throws {PlayerError}
 */
export async function openSweep(files, signal) {
    const opening = openVideo(files.video, signal);
    // Whoever fails first is told; the other one is let go of.
    opening.catch(() => {});
    const record = await readRecord(files.record, signal).catch(async error => {
        opening.then(video => video.input.dispose(), () => {});
        throw error;
    });
    const video = await opening;
    try {
        signal.throwIfAborted();
        requireSameSweep(record, video);
        return {record, source: await frameSource(video, files.video, signal), rate: video.rate};
    } catch (error) {
        video.input.dispose();
        throw error;
    }
}
