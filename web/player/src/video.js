import {BlobSource, EncodedPacketSink, Input, MP4, QTFF, UrlSource} from "mediabunny";

/** A fault that is told to the user, in words of his. */
export class PlayerError extends Error {
    /** @param {string} text @param {unknown} [cause] */
    constructor(text, cause) {
        super(text, {cause});
        this.name = "PlayerError";
    }
}

/** A record has no more; reading on would only cost time. */
const MOST_FRAMES = 1000;

/**
 * The frames of a video in the order shown.
 * @typedef {object} VideoIndex
 * @property {Input} input
 * @property {import("mediabunny").InputVideoTrack} track
 * @property {number} width
 * @property {number} height
 * @property {number[]} timestamps  seconds, ascending
 * @property {number[]} keyFrames   numbers of the frames at which decoding can begin, ascending
 * @property {number} rate  frames a second
 */

/** @param {string | Blob} source */
function mediaSource(source) {
    if (typeof source !== "string")
        return new BlobSource(source);
    return new UrlSource(source, {
        getRetryDelay: () => null,
        // The reader that waits for the bytes fails, too.
        handleUnhandledError: () => {},
    });
}

/** @param {import("mediabunny").InputVideoTrack} track */
async function readPackets(track) {
    const packets = [];
    for await (const packet of new EncodedPacketSink(track).packets(undefined, undefined, {metadataOnly: true})) {
        packets.push({timestamp: packet.timestamp, isKey: packet.type === "key"});
        if (packets.length > MOST_FRAMES)
            throw new PlayerError(`The video has more than ${MOST_FRAMES} frames, it is no sweep.`);
    }
    return packets.sort((a, b) => a.timestamp - b.timestamp);
}

/**
 * Reads where the frames of a video lie, not the frames.
 * @param {string | Blob} source  an address or the bytes
 * @param {AbortSignal} signal  ends the reading
 * @returns {Promise<VideoIndex>}  its input is the caller's to dispose
 * @throws {PlayerError}
 */
export async function openVideo(source, signal) {
    const input = new Input({formats: [MP4, QTFF], source: mediaSource(source)});
    signal.addEventListener("abort", () => input.dispose(), {once: true});
    try {
        const track = await input.getPrimaryVideoTrack();
        if (!track)
            throw new PlayerError("The video file holds no video.");
        const packets = await readPackets(track);
        if (packets.length === 0)
            throw new PlayerError("The video holds no frames.");
        const timestamps = packets.map(packet => packet.timestamp);
        const span = timestamps[timestamps.length - 1] - timestamps[0];
        return {
            input, track, timestamps,
            width: await track.getCodedWidth(),
            height: await track.getCodedHeight(),
            keyFrames: packets.flatMap((packet, i) => packet.isKey ? [i] : []),
            rate: span > 0 ? (timestamps.length - 1) / span : 30,
        };
    } catch (error) {
        input.dispose();
        signal.throwIfAborted();
        throw error instanceof PlayerError ? error
            : new PlayerError(`The video cannot be read: ${reasonOf(error)}`, error);
    }
}

/** @param {unknown} error */
export function reasonOf(error) {
    const text = error instanceof Error && error.message ? error.message : String(error);
    return /[.!?]$/.test(text) ? text : `${text}.`;
}

/**
 * The number of the frame that a time lies in.
 * @param {readonly number[]} timestamps
 * @param {number} time  near the frame's beginning
 */
export function frameAt(timestamps, time) {
    let low = 0;
    for (let high = timestamps.length; high - low > 1;) {
        const middle = (low + high) >> 1;
        if (timestamps[middle] <= time + 0.002)
            low = middle;
        else
            high = middle;
    }
    return low;
}
