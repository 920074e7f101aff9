import {VideoSampleSink} from "mediabunny";
import {frameAt, PlayerError, reasonOf} from "./video.js";

/**
 * What gives the frames of a video, run by run: a run begins at or before the wanted frame and goes on in order.
 * @typedef {object} FrameRun
 * @property {number} next  the number of the frame that is read next, if none is left out
 * @property {() => Promise<{index: number, image: VideoFrame | HTMLVideoElement} | null>} read  none after the last
 * @property {() => void} close
 *
 * @typedef {object} FrameSource
 * @property {boolean} isComplete  a run leaves out no frame
 * @property {(frame: number) => number} runStart  where a run that is to reach the frame begins
 * @property {(frame: number) => FrameRun} run
 * @property {(speed: number) => void} setSpeed
 * @property {() => void} close
 */

/** Frames decoded by WebCodecs. @implements {FrameSource} */
export class DecodedFrames {
    isComplete = true;
    #video;
    #sink;

    /** @param {import("./video.js").VideoIndex} video */
    constructor(video) {
        this.#video = video;
        this.#sink = new VideoSampleSink(video.track);
    }

    /** @param {import("./video.js").VideoIndex} video */
    static async canDecode(video) {
        return typeof VideoDecoder === "function" && await video.track.canDecode();
    }

    /** @param {number} frame */
    runStart(frame) {
        return this.#video.keyFrames.filter(key => key <= frame).pop() ?? 0;
    }

    /** @param {number} frame @returns {FrameRun} */
    run(frame) {
        const {timestamps} = this.#video;
        const begin = this.runStart(frame);
        const samples = this.#sink.samples(timestamps[begin]);
        const run = {
            next: begin,
            async read() {
                const {value: sample, done} = await samples.next().catch(error => {
                    throw new PlayerError(`Frame ${run.next} of the video cannot be decoded: ${reasonOf(error)}`, error);
                });
                if (done)
                    return null;
                const image = sample.toVideoFrame();
                const index = frameAt(timestamps, sample.timestamp);
                sample.close();
                if (index < run.next) {
                    // The demuxer goes back to the last frame that it finds.
                    image.close();
                    throw new PlayerError(`The video ends before its frame ${run.next}.`);
                }
                run.next = index + 1;
                return {index, image};
            },
            close() {
                samples.return(undefined).catch(() => {});
            },
        };
        return run;
    }

    setSpeed() {}

    close() {
        this.#video.input.dispose();
    }
}
