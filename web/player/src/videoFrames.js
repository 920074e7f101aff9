import {frameAt, PlayerError} from "./video.js";

/**
 * @typedef {import("./decodedFrames.js").FrameRun} FrameRun
 * @typedef {import("./decodedFrames.js").FrameSource} FrameSource
 */

/** How long a video that nobody reads goes on. */
const PATIENCE_MS = 60;

/** @param {HTMLVideoElement} video */
const failure = video =>
    new PlayerError(`This browser cannot decode the video${video.error?.message ? `: ${video.error.message}` : "."}`);

/**
 * Frames of a <video> element, for browsers without WebCodecs. A run plays the video and leaves out the frames that
 * the browser does; the first frame of a run is exact.
 * @implements {FrameSource}
 */
export class VideoFrames {
    isComplete = false;
    #video;
    #index;
    #address;
    #isOwnAddress;
    /** The frame that the element shows. */
    #shown = -1;

    /** @param {import("./video.js").VideoIndex} index @param {string | Blob} source */
    constructor(index, source) {
        this.#index = index;
        this.#isOwnAddress = typeof source !== "string";
        this.#address = typeof source === "string" ? source : URL.createObjectURL(source);
        this.#video = document.createElement("video");
        Object.assign(this.#video, {muted: true, playsInline: true, preload: "auto", crossOrigin: "anonymous"});
    }

    static get isSupported() {
        return typeof HTMLVideoElement === "function" && "requestVideoFrameCallback" in HTMLVideoElement.prototype;
    }

    /** Loads the first frame. @param {AbortSignal} signal @throws {PlayerError} */
    async open(signal) {
        const video = this.#video;
        await new Promise((resolve, reject) => {
            signal.addEventListener("abort", () => reject(signal.reason), {once: true});
            video.addEventListener("loadeddata", resolve, {once: true});
            video.addEventListener("error", () => reject(failure(video)), {once: true});
            video.src = this.#address;
        });
    }

    /** @param {number} frame */
    runStart(frame) {
        return frame;
    }

    /** @param {number} frame @returns {FrameRun} */
    run(frame) {
        let isFirst = true;
        let pause = 0;
        const run = {
            next: frame,
            read: async () => {
                clearTimeout(pause);
                const index = isFirst ? await this.#seek(frame) : await this.#playOn();
                isFirst = false;
                if (index === null)
                    return null;
                run.next = index + 1;
                pause = window.setTimeout(() => this.#video.pause(), PATIENCE_MS);
                return {index, image: this.#video};
            },
            close: () => {
                clearTimeout(pause);
                this.#video.pause();
            },
        };
        return run;
    }

    /** @param {number} speed */
    setSpeed(speed) {
        this.#video.playbackRate = speed;
    }

    close() {
        this.#video.pause();
        this.#video.removeAttribute("src");
        this.#video.load();
        if (this.#isOwnAddress)
            URL.revokeObjectURL(this.#address);
        this.#index.input.dispose();
    }

    /** The next frame that the element presents, or none at its end. @returns {Promise<number | null>} */
    #presented() {
        const video = this.#video;
        return new Promise((resolve, reject) => {
            const settle = (/** @type {() => void} */ done) => {
                video.cancelVideoFrameCallback(handle);
                video.removeEventListener("ended", ended);
                video.removeEventListener("error", failed);
                done();
            };
            const ended = () => settle(() => resolve(null));
            const failed = () => settle(() => reject(failure(video)));
            const handle = video.requestVideoFrameCallback((_, {mediaTime}) => settle(() => {
                this.#shown = frameAt(this.#index.timestamps, mediaTime);
                resolve(this.#shown);
            }));
            video.addEventListener("ended", ended);
            video.addEventListener("error", failed);
        });
    }

    /** To the middle of the frame: its very beginning shows the one before in a third of the cases. @param {number} frame */
    async #seek(frame) {
        const video = this.#video;
        video.pause();
        const {timestamps, rate} = this.#index;
        for (let attempt = 0; this.#shown !== frame && attempt < 3; ++attempt) {
            const presented = this.#presented();
            video.currentTime = timestamps[frame] + 0.5 / rate;
            await presented;
        }
        if (this.#shown !== frame)
            throw new PlayerError(`The browser does not show frame ${frame} of the video.`);
        return frame;
    }

    async #playOn() {
        const before = this.#shown;
        for (;;) {
            const presented = this.#presented();
            if (this.#video.ended)
                return null;
            await this.#video.play();
            const index = await presented;
            if (index !== before)
                return index;
        }
    }
}
