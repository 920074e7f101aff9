import {CanvasPainter} from "./canvasPainter.js";
import {Controls} from "./controls.js";
import {FrameStore} from "./frameStore.js";
import {GlPainter} from "./glPainter.js";
import {LookAround} from "./lookAround.js";
import {Playback} from "./playback.js";
import {frameFromCanvas, playlist, shownSize} from "./playlist.js";
import {style} from "./style.js";
import {openSweep} from "./sweep.js";
import {SweepPath} from "./sweepPath.js";
import {PlayerError, reasonOf} from "./video.js";
import {canvasSize, partsOf} from "./view.js";

/**
 * @typedef {import("./playlist.js").Shot} Shot
 * @typedef {import("./glPainter.js").Painter} Painter
 * @typedef {import("./glPainter.js").Picture} Picture
 * @typedef {import("./sweep.js").Sweep} Sweep
 *
 * A sweep that is open, with all that plays it.
 * @typedef {object} Loaded
 * @property {Sweep} sweep
 * @property {Shot[]} shots
 * @property {SweepPath} path
 * @property {FrameStore} store
 * @property {Playback} playback
 */

const DEFAULT_CACHE_MEGABYTES = 192;
/** Frames that are decoded before they are due. */
const AHEAD = 16;

const seconds = () => performance.now() / 1000;

/** @param {string} text */
const aborted = text => new DOMException(text, "AbortError");

/** @param {number} value @param {number} least @param {number} most */
const within = (value, least, most) => Math.min(most, Math.max(least, value));

/** <orbitwalk-player src="sweep.mp4" record="sweep.obw">; docs/player.md says what it offers. */
export class OrbitwalkPlayer extends HTMLElement {
    static observedAttributes = ["src", "record", "loop", "back-and-forth", "steady", "compare", "speed", "border-frames"];

    #stage;
    #message;
    #tags;
    #controls;
    /** @type {HTMLCanvasElement | null} */
    #canvas = null;
    /** @type {Painter | null} */
    #painter = null;
    /** @type {LookAround | null} */
    #look = null;
    /** @type {ResizeObserver | null} */
    #resizing = null;
    /** Ends what the current sweep is loaded and shown by. */
    #loading = new AbortController();
    #isScheduled = false;
    /** Bytes given to open, instead of the attributes. @type {import("./sweep.js").SweepFiles | null} */
    #given = null;
    /** @type {Loaded | null} */
    #loaded = null;
    /** @type {Promise<Loaded> | null} */
    #opening = null;
    /** Who waits for a sweep that nothing has begun to load yet. @type {((opening: Promise<Loaded>) => void)[]} */
    #early = [];
    #paused = true;
    #frame = 0;
    #ticking = 0;
    #split = 0.5;
    #density = 1;
    /** Takes the picture that is being waited for off the list. */
    #wish = new AbortController();

    constructor() {
        super();
        const root = this.attachShadow({mode: "open", delegatesFocus: true});
        const sheet = new CSSStyleSheet();
        sheet.replaceSync(style);
        root.adoptedStyleSheets = [sheet];
        this.#stage = document.createElement("div");
        this.#stage.className = "stage";
        this.#stage.part.add("stage");
        this.#tags = ["As recorded", "Steady"].map((text, side) => {
            const tag = document.createElement("span");
            Object.assign(tag, {className: `tag ${side ? "right" : "left"}`, textContent: text, hidden: true});
            return tag;
        });
        this.#message = document.createElement("div");
        Object.assign(this.#message, {className: "message", role: "alert", hidden: true});
        this.#message.part.add("message");
        this.#stage.append(...this.#tags);
        root.append(this.#stage);
        this.#controls = new Controls(this.#stage, root, {
            toggle: () => this.#toggle(),
            seek: index => { this.#showSoon(index); },
            cycleRepeat: () => this.#cycleRepeat(),
            toggleSteady: () => { this.steady = !this.steady; },
            toggleCompare: () => { this.compare = !this.compare; },
            setSplit: share => { this.split = share; },
            setSpeed: speed => { this.speed = speed; },
            setTilt: on => this.#look?.setTilt(on),
            toggleFullscreen: () => this.#toggleFullscreen(),
        });
        this.#stage.append(this.#message);
        root.addEventListener("keydown", event => this.#key(/** @type {KeyboardEvent} */ (event)));
    }

    // ---- Programming interface ----

    get src() { return this.getAttribute("src") ?? ""; }
    set src(value) { this.setAttribute("src", value); }
    get record() { return this.getAttribute("record") ?? ""; }
    set record(value) { this.setAttribute("record", value); }
    get autoplay() { return this.hasAttribute("autoplay"); }
    set autoplay(value) { this.toggleAttribute("autoplay", Boolean(value)); }
    get loop() { return this.hasAttribute("loop"); }
    set loop(value) { this.toggleAttribute("loop", Boolean(value)); }
    get backAndForth() { return this.hasAttribute("back-and-forth"); }
    set backAndForth(value) { this.toggleAttribute("back-and-forth", Boolean(value)); }
    get borderFrames() { return this.hasAttribute("border-frames"); }
    set borderFrames(value) { this.toggleAttribute("border-frames", Boolean(value)); }
    get compare() { return this.hasAttribute("compare"); }
    set compare(value) { this.toggleAttribute("compare", Boolean(value)); }

    /** Corrected by the record; false: as recorded, cut to the same rectangle. */
    get steady() { return this.getAttribute("steady") !== "false"; }
    set steady(value) {
        if (value)
            this.removeAttribute("steady");
        else
            this.setAttribute("steady", "false");
    }

    /** Times the speed of the recording, 0.05 to 16. */
    get speed() {
        const speed = Number(this.getAttribute("speed") ?? 1);
        return speed > 0 ? within(speed, 0.05, 16) : 1;
    }
    set speed(value) { this.setAttribute("speed", String(value)); }

    /** Where a comparison is divided, a share of the width. */
    get split() { return this.#split; }
    set split(share) {
        this.#split = within(Number(share) || 0, 0, 1);
        this.#refresh();
    }

    /** Bound of the decoded frames that are kept, read when a sweep is opened. */
    get cacheMegabytes() {
        const megabytes = Number(this.getAttribute("cache-megabytes"));
        return megabytes > 0 ? megabytes : DEFAULT_CACHE_MEGABYTES;
    }
    set cacheMegabytes(value) { this.setAttribute("cache-megabytes", String(value)); }

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
        this.#prepare();
        this.#ticking = requestAnimationFrame(() => this.#tick());
    }

    pause() {
        this.#paused = true;
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
        const {sweep: {record}, shots, store} = await this.#whenReady();
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
        const canvas = document.createElement("canvas");
        canvas.setAttribute("role", "img");
        canvas.setAttribute("aria-label", "Sweep");
        canvas.tabIndex = -1;
        this.#stage.prepend(canvas);
        this.#canvas = canvas;
        this.#look = new LookAround(canvas, {
            path: () => this.#loaded?.path ?? null,
            current: () => this.#frame,
            pixelsPerCss: () => this.#loaded ? shownSize(this.#loaded.sweep.record).width / canvas.clientWidth : 0,
            show: index => { this.#showSoon(index); },
            hold: () => this.pause(),
            tap: () => this.#toggle(),
        });
        this.#resizing = new ResizeObserver(() => this.#refresh());
        this.#resizing.observe(this.#stage);
        this.#load();
    }

    disconnectedCallback() {
        this.#unload();
        this.#resizing?.disconnect();
        this.#look?.destroy();
        this.#painter?.destroy();
        this.#canvas?.remove();
        this.#resizing = this.#look = this.#painter = this.#canvas = null;
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
        this.#loaded?.sweep.source.setSpeed(this.speed);
        if (this.#loaded) {
            this.#loaded.playback.repeat = this.#repeat;
            this.#setSpeed(this.#loaded.playback);
        }
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
        const opening = this.#open(files, signal);
        this.#opening = opening;
        for (const tell of this.#early.splice(0))
            tell(opening);
        opening.then(loaded => this.#ready(loaded, signal), error => this.#fail(error, signal));
    }

    /** @param {import("./sweep.js").SweepFiles} files @param {AbortSignal} signal @returns {Promise<Loaded>} */
    async #open(files, signal) {
        const canvas = this.#canvas;
        if (!canvas)
            throw aborted("the player was removed");
        const painter = this.#painter ??= GlPainter.on(canvas, () => this.#forget()) ?? CanvasPainter.on(canvas);
        if (!painter)
            throw new PlayerError("This browser has neither WebGL2 nor a 2D canvas; the player needs one of them.");
        const sweep = await openSweep(files, signal);
        const shots = playlist(sweep.record, this.borderFrames);
        const store = new FrameStore(sweep.source, painter, this.cacheMegabytes * 1e6, error => this.#fail(error, signal));
        const path = new SweepPath(sweep.record, shots);
        const playback = new Playback(shots.length, sweep.rate);
        playback.repeat = this.#repeat;
        if (signal.aborted) {
            store.close();
            signal.throwIfAborted();
        }
        return {sweep, shots, path, store, playback};
    }

    /** @param {Loaded} loaded @param {AbortSignal} signal */
    async #ready(loaded, signal) {
        if (signal.aborted)
            return loaded.store.close();
        this.#loaded = loaded;
        this.#setSpeed(loaded.playback);
        loaded.sweep.source.setSpeed(this.speed);
        const {width, height} = shownSize(loaded.sweep.record);
        this.#stage.style.setProperty("--aspect", `${width} / ${height}`);
        if (this.#canvas)
            this.#canvas.style.touchAction = loaded.path.screen.axis === "x" ? "pan-y" : "pan-x";
        this.#frame = 0;
        this.#refresh();
        this.dispatchEvent(new Event("ready"));
        if (signal.aborted)
            return;
        const shown = this.#show(this.#frame);
        await shown.catch(() => {});
        const isStill = matchMedia("(prefers-reduced-motion: reduce)").matches;
        if (!signal.aborted && this.autoplay && !isStill)
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
        this.#message.hidden = true;
        this.#frame = 0;
        this.#update();
    }

    /** @returns {Promise<Loaded>} */
    async #whenReady() {
        return this.#opening ?? new Promise(resolve => this.#early.push(resolve));
    }

    /** @param {unknown} error @param {AbortSignal} signal  of the sweep that failed */
    #fail(error, signal) {
        if (signal.aborted)
            return;
        const text = error instanceof PlayerError ? error.message : `The sweep cannot be played: ${reasonOf(error)}`;
        this.pause();
        this.#message.textContent = text;
        this.#message.hidden = false;
        this.#update();
        this.dispatchEvent(new ErrorEvent("error", {message: text, error}));
    }

    // ---- Showing ----

    get #repeat() {
        return this.backAndForth ? "back-and-forth" : this.loop ? "loop" : "once";
    }

    /** @param {Playback} playback */
    #setSpeed(playback) {
        playback.speed = this.speed;
        playback.jump(seconds(), this.#frame);
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
        const {store, shots} = loaded;
        const shown = store.need(shots[index].frame, picture => {
            this.#draw(index, picture);
            loaded.playback.jump(seconds(), index);
        }, this.#wish.signal);
        shown.catch(() => {});
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
                loaded.store.prepare(loaded.shots[this.#frame].frame, this.#around(loaded));
        }, () => {});
    }

    /** Frames on both sides of the current one, for a hand that drags. @param {Loaded} loaded */
    #around({shots, store}) {
        const reach = Math.min(AHEAD, Math.floor((store.capacity - 1) / 3));
        const near = shots.slice(Math.max(0, this.#frame - reach), this.#frame + reach + 1).map(({frame}) => frame);
        const current = shots[this.#frame].frame;
        return [...new Set(near)].sort((a, b) => Math.abs(a - current) - Math.abs(b - current));
    }

    /** @param {number} index @param {Picture} picture */
    #draw(index, picture) {
        const {sweep: {record}, shots} = /** @type {Loaded} */ (this.#loaded);
        const canvas = this.#canvas;
        if (!canvas)
            return;
        const look = {steady: this.steady, compare: this.compare, split: this.#split};
        this.#paintWith().draw(picture, partsOf(record, shots[index], look, canvas.width, canvas.height));
        const isNew = index !== this.#frame || !canvas.dataset.drawn;
        canvas.dataset.drawn = "yes";
        this.#frame = index;
        if (!isNew)
            return;
        this.#update();
        this.dispatchEvent(new CustomEvent("framechange", {detail: {frame: index, videoFrame: shots[index].frame}}));
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
            this.#draw(next, picture);
        this.#prepare();
        this.#ticking = requestAnimationFrame(() => this.#tick());
    }

    /** Has the next pictures decoded; going back, whole runs of them. */
    #prepare() {
        const {shots, store, playback} = /** @type {Loaded} */ (this.#loaded);
        const count = Math.min(AHEAD, Math.floor(store.capacity / 2));
        const ahead = playback.upcoming(Math.max(2, count)).map(index => shots[index].frame);
        store.prepare(shots[this.#frame].frame, [...new Set(ahead)]);
    }

    /** Fits the canvas to the stage and draws the current picture anew. */
    #refresh() {
        const loaded = this.#loaded;
        const canvas = this.#canvas;
        this.#update();
        if (!loaded || !canvas)
            return;
        const {clientWidth, clientHeight} = this.#stage;
        this.#density = devicePixelRatio;
        const size = canvasSize(shownSize(loaded.sweep.record), clientWidth, clientHeight, this.#density);
        canvas.style.width = `${size.css.width}px`;
        canvas.style.height = `${size.css.height}px`;
        if (canvas.width !== size.width || canvas.height !== size.height)
            Object.assign(canvas, {width: size.width, height: size.height});
        this.#controls.placeSplit((clientWidth - size.css.width) / 2 + this.#split * size.css.width);
        const picture = loaded.store.get(loaded.shots[this.#frame].frame);
        if (picture && canvas.dataset.drawn)
            this.#draw(this.#frame, picture);
        else if (canvas.dataset.drawn)
            this.#show(this.#frame);
    }

    /** The pictures went with a lost context. */
    #forget() {
        this.#loaded?.store.forget();
        this.#refresh();
    }

    #update() {
        const {steady, compare, split, speed} = this;
        const isReady = this.#loaded !== null && this.#message.hidden;
        this.#controls.update({
            count: this.frameCount, index: this.#frame, paused: this.#paused, isReady, repeat: this.#repeat, steady, compare,
            split, speed,
        });
        this.#canvas?.setAttribute("aria-label", `Sweep, ${compare ? "half as recorded, half steady" : steady ? "steady" : "as recorded"}`);
        const [recorded, steadied] = this.#tags;
        recorded.hidden = !isReady || !compare && steady;
        steadied.hidden = !isReady || !compare;
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

    /** @param {KeyboardEvent} event */
    #key(event) {
        const target = /** @type {Element} */ (event.target);
        const isOwn = target.matches("select") || event.key === " " && target.matches("button");
        if (!this.#loaded || isOwn || event.altKey || event.ctrlKey || event.metaKey)
            return;
        const step = event.shiftKey ? 10 : 1;
        /** @type {Record<string, () => void>} */
        const actions = {
            " ": () => this.#toggle(),
            ArrowLeft: () => this.#step(-step),
            ArrowRight: () => this.#step(step),
            Home: () => this.#step(-Infinity),
            End: () => this.#step(Infinity),
        };
        const action = actions[event.key];
        if (!action)
            return;
        event.preventDefault();
        action();
    }

    /** @param {number} by */
    #step(by) {
        this.pause();
        this.#look?.stop();
        this.#showSoon(this.#frame + by);
    }
}
