import {PlayerAttributes, within} from "./attributes.js";
import {CanvasPainter} from "./canvasPainter.js";
import {Controls} from "./controls.js";
import {GlPainter} from "./glPainter.js";
import {useKey} from "./keys.js";
import {LoadedSweep} from "./loadedSweep.js";
import {LookAround} from "./lookAround.js";
import {frameFromCanvas} from "./playlist.js";
import {Stage} from "./stage.js";
import {style} from "./style.js";
import {openSweep} from "./sweep.js";
import {PlayerError, reasonOf} from "./video.js";
import {partsOf} from "./view.js";

/** @import {Painter, Picture} from "./glPainter.js" */

const seconds = () => performance.now() / 1000;

/** @param {string} text */
const aborted = text => new DOMException(text, "AbortError");

/** <orbitwalk-player src="sweep.mp4" record="sweep.obw">; docs/player.md says what it offers. */
export class OrbitwalkPlayer extends PlayerAttributes {
    static observedAttributes = ["src", "record", "loop", "back-and-forth", "steady", "compare", "speed", "border-frames"];

    #stage = new Stage();
    #controls;
    /** @type {Painter | null} */
    #painter = null;
    /** @type {LookAround | null} */
    #look = null;
    /** @type {ResizeObserver | null} */
    #resizing = null;
    /** Ends what the current sweep is loaded and shown by. */
    #loading = new AbortController();
    #isScheduled = false;
    /** Nobody has paused this sweep yet, which then plays by itself where it may. */
    #isFresh = false;
    /** Bytes given to open, instead of the attributes. @type {import("./sweep.js").SweepFiles | null} */
    #given = null;
    /** @type {LoadedSweep | null} */
    #loaded = null;
    /** @type {Promise<LoadedSweep> | null} */
    #opening = null;
    /** Who waits for a sweep that nothing has begun to load yet. @type {((opening: Promise<LoadedSweep>) => void)[]} */
    #early = [];
    #paused = true;
    #frame = 0;
    #ticking = 0;
    #split = 0.5;
    /** Takes the picture that is being waited for off the list. */
    #wish = new AbortController();

    constructor() {
        super();
        const root = this.attachShadow({mode: "open", delegatesFocus: true});
        const sheet = new CSSStyleSheet();
        sheet.replaceSync(style);
        root.adoptedStyleSheets = [sheet];
        root.append(this.#stage.element);
        this.#controls = new Controls(this.#stage.element, root, {
            toggle: () => this.#toggle(),
            seek: index => { this.#showSoon(index); },
            cycleRepeat: () => this.#cycleRepeat(),
            toggleSteady: () => { this.steady = !this.steady; },
            toggleCompare: () => { this.compare = !this.compare; },
            setSplit: share => { this.split = share; },
            setSpeed: speed => { this.speed = speed; },
            setTilt: on => {
                this.#look?.setTilt(on);
                this.#update();
            },
            toggleFullscreen: () => this.#toggleFullscreen(),
        });
        root.addEventListener("keydown", event => {
            if (this.#loaded)
                useKey(/** @type {KeyboardEvent} */ (event), {toggle: () => this.#toggle(), step: by => this.#step(by)});
        });
    }

    // ---- Programming interface ----

    /** Where a comparison is divided, a share of the width. */
    get split() { return this.#split; }
    set split(share) {
        this.#split = within(Number(share) || 0, 0, 1);
        this.#refresh();
    }

    /** Pictures in playing order; 0 until ready. */
    get frameCount() { return this.#loaded?.shots.length ?? 0; }
    /** The picture on the canvas. */
    get currentFrame() { return this.#frame; }
    /** The number in the video of the frame that a picture shows. @param {number} index */
    videoFrame(index = this.#frame) { return this.#loaded?.shots[index]?.frame ?? -1; }
    get paused() { return this.#paused; }
    /** Pictures that were due while playing and not shown. */
    get droppedFrames() { return this.#loaded?.playback.dropped ?? 0; }
    /** Bytes of decoded frames that are kept. */
    get cachedBytes() { return this.#loaded?.store.heldBytes ?? 0; }

    /**
     * Plays bytes at hand instead of src and record.
     * @param {Blob | ArrayBuffer | Uint8Array<ArrayBuffer>} video
     * @param {ArrayBuffer | ArrayBufferView} record
     */
    open(video, record) {
        this.#given = {video: video instanceof Blob ? video : new Blob([video], {type: "video/mp4"}), record};
        this.#load();
    }

    /** Resolves once playing has begun. */
    async play() {
        const loaded = await this.#whenReady();
        if (!this.#paused)
            return;
        this.#look?.stop();
        this.#paused = false;
        this.#update();
        if (this.#repeat === "once" && this.#frame === loaded.shots.length - 1)
            await this.#show(0).catch(() => {});
        if (this.#paused || this.#loaded !== loaded)
            return;
        loaded.playback.start(seconds(), this.#frame);
        loaded.prepareNext(this.#frame);
        this.#ticking = requestAnimationFrame(() => this.#tick());
    }

    pause() {
        this.#paused = true;
        this.#isFresh = false;
        cancelAnimationFrame(this.#ticking);
        this.#update();
    }

    /**
     * Resolves once the picture is on the canvas; rejects with an AbortError when another one was asked for before.
     * @param {number} index
     */
    async seekToFrame(index) {
        const {shots} = await this.#whenReady();
        if (!Number.isInteger(index) || index < 0 || index >= shots.length)
            throw new RangeError(`there is no picture ${index}, there are ${shots.length}`);
        this.#look?.stop();
        await this.#show(index);
    }

    /**
     * The steady picture: the crop rectangle at a width of the caller's, or else at the size of the frame, as
     * `orbitwalk render` writes it.
     * @param {number} index
     * @param {number} [width]
     * @returns {Promise<ImageData>}
     */
    async pictureAt(index, width) {
        const {record, shots, store} = await this.#whenReady();
        const shot = shots[index];
        if (!shot)
            throw new RangeError(`there is no picture ${index}, there are ${shots.length}`);
        const size = width === undefined ? {width: record.width, height: record.height}
            : {width: Math.round(width), height: Math.max(1, Math.round(width * record.crop.height / record.crop.width))};
        const map = frameFromCanvas(record, shot.matrix, size.width, size.height);
        return store.need(shot.frame, picture => this.#paintWith().read(picture, map, size.width, size.height));
    }

    // ---- Life on a page ----

    connectedCallback() {
        const canvas = this.#stage.addCanvas();
        this.#look = new LookAround(canvas, {
            path: () => this.#loaded?.path ?? null,
            current: () => this.#frame,
            pixelsPerCss: () => this.#loaded ? this.#loaded.size.width / canvas.clientWidth : 0,
            show: index => { this.#showSoon(index); },
            hold: () => this.pause(),
            tap: () => this.#toggle(),
        });
        this.#resizing = new ResizeObserver(() => this.#refresh());
        this.#resizing.observe(this.#stage.element);
        this.#load();
    }

    disconnectedCallback() {
        this.#unload();
        this.#resizing?.disconnect();
        this.#look?.destroy();
        this.#painter?.destroy();
        this.#stage.removeCanvas();
        this.#resizing = this.#look = this.#painter = null;
    }

    /** @param {string} name @param {string | null} before @param {string | null} value */
    attributeChangedCallback(name, before, value) {
        if (before === value)
            return;
        if (name === "src" || name === "record" || name === "border-frames") {
            if (name !== "border-frames")
                this.#given = null;
            this.#load();
        }
        this.#setPace();
        this.#refresh();
    }

    // ---- Loading ----

    /** Attributes come one by one: loads once they all have. */
    #load() {
        if (!this.isConnected || this.#isScheduled)
            return;
        this.#isScheduled = true;
        queueMicrotask(() => {
            this.#isScheduled = false;
            if (this.isConnected)
                this.#begin();
        });
    }

    #begin() {
        this.#unload();
        const files = this.#given ?? {video: this.src, record: this.record};
        if (!files.video || !files.record)
            return this.#update();
        const {signal} = this.#loading;
        this.#isFresh = true;
        const opening = this.#open(files, signal);
        this.#opening = opening;
        for (const tell of this.#early.splice(0))
            tell(opening);
        opening.then(loaded => this.#ready(loaded, signal), error => this.#fail(error, signal));
    }

    /** @param {import("./sweep.js").SweepFiles} files @param {AbortSignal} signal @returns {Promise<LoadedSweep>} */
    async #open(files, signal) {
        const {canvas} = this.#stage;
        if (!canvas)
            throw aborted("the player was removed");
        const painter = this.#painter ??= GlPainter.on(canvas, () => this.#forget()) ?? CanvasPainter.on(canvas);
        if (!painter)
            throw new PlayerError("This browser has neither WebGL2 nor a 2D canvas; the player needs one of them.");
        const sweep = await openSweep(files, signal);
        if (signal.aborted)
            sweep.source.close();
        signal.throwIfAborted();
        return new LoadedSweep(sweep, painter, this, error => this.#fail(error, signal));
    }

    /** @param {LoadedSweep} loaded @param {AbortSignal} signal */
    async #ready(loaded, signal) {
        if (signal.aborted)
            return loaded.store.close();
        this.#loaded = loaded;
        this.#stage.shape(loaded.size, loaded.path.screen.axis);
        this.#frame = 0;
        this.#setPace();
        this.#refresh();
        this.dispatchEvent(new Event("ready"));
        if (signal.aborted)
            return;
        const shown = this.#show(this.#frame);
        await shown.catch(() => {});
        const isStill = matchMedia("(prefers-reduced-motion: reduce)").matches;
        if (!signal.aborted && this.autoplay && this.#isFresh && !isStill)
            this.play().catch(() => {});
    }

    #unload() {
        this.pause();
        this.#look?.stop();
        this.#loading.abort(aborted("the player has let go of this sweep"));
        this.#loading = new AbortController();
        this.#wish.abort(aborted("the player has let go of this sweep"));
        this.#loaded?.store.close();
        this.#loaded = this.#opening = null;
        this.#stage.say(null);
        this.#frame = 0;
        this.#update();
    }

    /** @returns {Promise<LoadedSweep>} */
    async #whenReady() {
        return this.#opening ?? new Promise(resolve => this.#early.push(resolve));
    }

    /** @param {unknown} error @param {AbortSignal} signal  of the sweep that failed */
    #fail(error, signal) {
        if (signal.aborted)
            return;
        this.pause();
        // What is broken may fail again; the first message tells.
        if (this.#stage.isSaying)
            return;
        const text = error instanceof PlayerError ? error.message : `The sweep cannot be played: ${reasonOf(error)}`;
        this.#stage.say(text);
        this.#update();
        this.dispatchEvent(new ErrorEvent("error", {message: text, error}));
    }

    // ---- Showing ----

    get #repeat() {
        return this.backAndForth ? "back-and-forth" : this.loop ? "loop" : "once";
    }

    #setPace() {
        this.#loaded?.setPace({repeat: this.#repeat, speed: this.speed}, seconds(), this.#frame);
    }

    #paintWith() {
        if (!this.#painter)
            throw aborted("the player was removed");
        return this.#painter;
    }

    /** @param {number} index */
    #show(index) {
        const loaded = this.#loaded;
        if (!loaded)
            return Promise.reject(aborted("nothing is loaded"));
        this.#wish.abort(aborted("another picture was asked for"));
        this.#wish = new AbortController();
        const wished = this.#wish.signal;
        const {signal} = this.#loading;
        const {store, shots} = loaded;
        const shown = store.need(shots[index].frame, picture => {
            this.#draw(index, picture);
            loaded.playback.jump(seconds(), index);
        }, wished);
        shown.catch(error => wished.aborted || this.#fail(error, signal));
        return shown;
    }

    /** For the user's hand, who waits for no promise. @param {number} index */
    #showSoon(index) {
        const loaded = this.#loaded;
        if (!loaded)
            return;
        const last = loaded.shots.length - 1;
        this.#show(within(index, 0, last)).then(() => {
            if (this.#paused && this.#loaded === loaded)
                loaded.prepareAround(this.#frame);
        }, () => {});
    }

    /** @param {number} index @param {Picture} picture */
    #draw(index, picture) {
        const {record, shots} = /** @type {LoadedSweep} */ (this.#loaded);
        const {canvas} = this.#stage;
        if (!canvas)
            return;
        const look = {steady: this.steady, compare: this.compare, split: this.#split};
        this.#paintWith().draw(picture, partsOf(record, shots[index], look, canvas.width, canvas.height));
        const isNew = index !== this.#frame || !canvas.dataset.drawn;
        canvas.dataset.drawn = "yes";
        this.#frame = index;
        if (!isNew)
            return;
        this.#controls.showPlace({count: shots.length, index, isReady: this.#isReady});
        this.dispatchEvent(new CustomEvent("framechange", {detail: {frame: index, videoFrame: shots[index].frame}}));
    }

    /** Where nobody waits who would hear of a failure. @param {number} index @param {Picture} picture */
    #drawNow(index, picture) {
        try {
            this.#draw(index, picture);
        } catch (error) {
            this.#fail(error, this.#loading.signal);
        }
    }

    #tick() {
        const loaded = this.#loaded;
        if (this.#paused || !loaded)
            return;
        const {shots, store, playback} = loaded;
        const next = playback.tick(seconds(), index => store.availability(shots[index].frame));
        if (next === "ended") {
            this.pause();
            this.dispatchEvent(new Event("ended"));
            return;
        }
        const picture = next !== "same" && store.get(shots[next].frame);
        if (picture)
            this.#drawNow(next, picture);
        loaded.prepareNext(this.#frame);
        this.#ticking = requestAnimationFrame(() => this.#tick());
    }

    /** Fits the canvas to the stage and draws the current picture anew. */
    #refresh() {
        const loaded = this.#loaded;
        const {canvas} = this.#stage;
        this.#update();
        if (!loaded || !canvas)
            return;
        const {left, width} = this.#stage.fit(loaded.size);
        this.#controls.placeSplit(left + this.#split * width);
        const picture = loaded.store.get(loaded.shots[this.#frame].frame);
        if (picture && canvas.dataset.drawn)
            this.#drawNow(this.#frame, picture);
        else if (canvas.dataset.drawn)
            this.#show(this.#frame);
    }

    /** The pictures went with a lost context. */
    #forget() {
        this.#loaded?.store.forget();
        this.#refresh();
    }

    get #isReady() {
        return this.#loaded !== null && !this.#stage.isSaying;
    }

    #update() {
        const {steady, compare, split, speed} = this;
        const isReady = this.#isReady;
        this.#controls.update({
            count: this.frameCount, index: this.#frame, paused: this.#paused, isReady, repeat: this.#repeat, steady, compare,
            split, speed, isTilting: this.#look?.isTilting ?? false,
        });
        this.#stage.label({steady, compare, isReady});
    }

    // ---- What the user does ----

    #toggle() {
        if (this.#paused)
            this.play().catch(() => {});
        else
            this.pause();
    }

    #cycleRepeat() {
        const next = {once: "loop", loop: "back-and-forth", "back-and-forth": "once"}[this.#repeat];
        this.loop = next === "loop";
        this.backAndForth = next === "back-and-forth";
    }

    #toggleFullscreen() {
        const done = document.fullscreenElement === this ? document.exitFullscreen() : this.requestFullscreen();
        done.catch(() => {});
    }

    /** @param {number} by */
    #step(by) {
        this.pause();
        this.#look?.stop();
        this.#showSoon(this.#frame + by);
    }
}
