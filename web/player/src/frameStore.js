import {PlayerError} from "./video.js";

/**
 * @typedef {import("./decodedFrames.js").FrameRun} FrameRun
 * @typedef {import("./decodedFrames.js").FrameSource} FrameSource
 * @typedef {import("./glPainter.js").Picture} Picture
 * @typedef {import("./glPainter.js").Painter} Painter
 * @typedef {{frame: number, use: (picture: Picture) => void, fail: (error: unknown) => void}} Wish
 */

/**
 * Decoded frames, kept for the painter within a bound of bytes, and the decoding of those that are wanted: first what
 * somebody waits for, then what will be shown next. Decodes one frame at a time.
 */
export class FrameStore {
    #source;
    #painter;
    #bytes;
    /** @type {Map<number, Picture>} */
    #pictures = new Map();
    #held = 0;
    /** @type {Wish[]} */
    #wishes = [];
    /** @type {readonly number[]} */
    #ahead = [];
    /** The frame around which frames are worth keeping. */
    #focus = 0;
    /** Frames that the current run left out. @type {Set<number>} */
    #missed = new Set();
    /** @type {FrameRun | null} */
    #run = null;
    #isWorking = false;
    #isClosed = false;
    #onError;

    /**
     * @param {FrameSource} source  closed by close
     * @param {Painter} painter
     * @param {number} bytes  for the frames that are kept; one is always kept
     * @param {(error: unknown) => void} onError  while nobody waits
     */
    constructor(source, painter, bytes, onError) {
        this.#source = source;
        this.#painter = painter;
        this.#bytes = bytes;
        this.#onError = onError;
    }

    /** Bytes of the frames that are kept. */
    get heldBytes() { return this.#held; }

    /** Frames that fit, as far as is known. */
    get capacity() {
        const [any] = this.#pictures.values();
        return any ? Math.max(1, Math.floor(this.#bytes / any.bytes)) : 1;
    }

    /** @param {number} frame */
    get(frame) {
        return this.#pictures.get(frame);
    }

    /** @param {number} frame @returns {import("./playback.js").Availability} */
    availability(frame) {
        return this.#pictures.has(frame) ? "here" : this.#missed.has(frame) ? "missed" : "coming";
    }

    /**
     * Waits for a frame. The picture is the callback's only while it runs.
     * @template Result
     * @param {number} frame
     * @param {(picture: Picture) => Result} use
     * @param {AbortSignal} [signal]
     * @returns {Promise<Result>}
     */
    need(frame, use, signal) {
        this.#focus = frame;
        return new Promise((resolve, reject) => {
            const picture = this.#pictures.get(frame);
            if (this.#isClosed)
                return reject(new DOMException("The player has let go of this sweep.", "AbortError"));
            if (picture)
                return resolve(use(picture));
            const wish = {
                frame,
                use: (/** @type {Picture} */ made) => {
                    try {
                        resolve(use(made));
                    } catch (error) {
                        reject(error);
                    }
                },
                fail: reject,
            };
            this.#wishes.push(wish);
            signal?.addEventListener("abort", () => {
                this.#wishes = this.#wishes.filter(other => other !== wish);
                reject(signal.reason);
            }, {once: true});
            this.#work();
        });
    }

    /**
     * What will be shown next, the soonest first, and from where.
     * @param {number} focus
     * @param {readonly number[]} frames
     */
    prepare(focus, frames) {
        this.#focus = focus;
        this.#ahead = frames;
        this.#work();
    }

    /** Forgets the pictures, whose textures are lost. */
    forget() {
        this.#pictures.clear();
        this.#held = 0;
    }

    close() {
        this.#isClosed = true;
        this.#endRun();
        for (const {fail} of this.#wishes.splice(0))
            fail(new DOMException("The player has let go of this sweep.", "AbortError"));
        for (const picture of this.#pictures.values())
            this.#painter.release(picture);
        this.forget();
        this.#source.close();
    }

    /** @returns {number | null} */
    #wanted() {
        if (this.#wishes.length > 0)
            return this.#wishes[0].frame;
        const missing = this.#ahead.filter(frame => this.availability(frame) === "coming");
        return missing.length > 0 ? missing[0] : null;
    }

    async #work() {
        if (this.#isWorking)
            return;
        this.#isWorking = true;
        try {
            for (let frame; !this.#isClosed && (frame = this.#wanted()) !== null;)
                await this.#decode(frame);
        } catch (error) {
            this.#endRun();
            this.#ahead = [];
            const waiting = this.#wishes.splice(0);
            for (const {fail} of waiting)
                fail(error);
            if (!this.#isClosed)
                this.#onError(error);
        } finally {
            this.#isWorking = false;
        }
    }

    /** Reads one frame on the way to another. @param {number} frame */
    async #decode(frame) {
        // Who begins to wait meanwhile does not wait for this frame.
        const isWaitedFor = this.#wishes.length > 0;
        const isExact = this.#source.isComplete || !isWaitedFor;
        const from = this.#source.runStart(frame);
        if (!this.#run || !isExact || this.#run.next > frame || this.#run.next < from) {
            this.#endRun();
            this.#run = this.#source.run(frame);
        }
        const run = this.#run;
        const expected = run.next;
        const read = await run.read();
        if (read === null) {
            this.#endRun();
            if (this.#source.isComplete || expected === frame && isWaitedFor)
                throw new PlayerError(`The video ends before its frame ${frame}.`);
            for (let missed = expected; missed <= frame; ++missed)
                this.#missed.add(missed);
            return;
        }
        for (let missed = expected; missed < read.index; ++missed)
            this.#missed.add(missed);
        const isWorthIt = Math.abs(read.index - frame) < this.capacity || this.#ahead.includes(read.index);
        if (!this.#isClosed && isWorthIt)
            await this.#keep(read.index, read.image);
        else if ("close" in read.image)
            read.image.close();
    }

    /** @param {number} index @param {VideoFrame | HTMLVideoElement} image */
    async #keep(index, image) {
        this.#missed.delete(index);
        if (!this.#pictures.has(index)) {
            const picture = await this.#painter.upload(image);
            if (this.#isClosed)
                return this.#painter.release(picture);
            this.#pictures.set(index, picture);
            this.#held += picture.bytes;
        } else if ("close" in image) {
            image.close();
        }
        const picture = this.#pictures.get(index);
        const served = this.#wishes.filter(wish => wish.frame === index);
        this.#wishes = this.#wishes.filter(wish => wish.frame !== index);
        for (const {use} of served)
            if (picture)
                use(picture);
        this.#evict();
    }

    /** Of the frames that nobody waits for next, the ones farthest from the focus go first. */
    #evict() {
        while (this.#held > this.#bytes && this.#pictures.size > 1) {
            let farthest = -1;
            for (const frame of this.#pictures.keys())
                if (farthest < 0 || this.#worth(frame) < this.#worth(farthest))
                    farthest = frame;
            const picture = this.#pictures.get(farthest);
            this.#pictures.delete(farthest);
            if (picture) {
                this.#held -= picture.bytes;
                this.#painter.release(picture);
            }
        }
    }

    /** @param {number} frame */
    #worth(frame) {
        const place = this.#ahead.indexOf(frame);
        return place >= 0 ? 1e6 - place : -Math.abs(frame - this.#focus);
    }

    #endRun() {
        this.#run?.close();
        this.#run = null;
        this.#missed.clear();
    }
}
