/**
 * Turns what a hand or a tilted device does into positions along the sweep.
 * @typedef {import("./sweepPath.js").SweepPath} SweepPath
 */

/** Pixels that a pointer moves before it drags. */
const DRAG_THRESHOLD = 4;
/** Seconds after which a glide has lost two thirds of its speed. */
const GLIDE_SECONDS = 0.325;
/** Pixels a second at which a glide ends, and below which none begins. */
const SLOWEST = 20;
/** Degrees of tilt from one end of the sweep to the other. */
const TILT_RANGE = 50;

/**
 * @typedef {object} LookTarget
 * @property {() => SweepPath | null} path  none while nothing is loaded
 * @property {() => number} current
 * @property {() => number} pixelsPerCss  frame pixels that one pixel of the page shows
 * @property {(index: number) => void} show
 * @property {() => void} hold     a hand takes the picture
 * @property {() => void} tap      it was no drag
 */

export class LookAround {
    #element;
    #target;
    #ending = new AbortController();
    /** @type {{id: number, from: {x: number, y: number}, position: number, isDrag: boolean} | null} */
    #drag = null;
    /** The last moves of the pointer. @type {{time: number, position: number}[]} */
    #trail = [];
    #glide = 0;
    /** @type {{degrees: number, position: number} | null} */
    #tilt = null;
    /** @type {((event: DeviceOrientationEvent) => void) | null} */
    #onTilt = null;

    /** @param {HTMLElement} element @param {LookTarget} target */
    constructor(element, target) {
        this.#element = element;
        this.#target = target;
        const options = {signal: this.#ending.signal};
        element.addEventListener("pointerdown", event => this.#down(event), options);
        element.addEventListener("pointermove", event => this.#move(event), options);
        element.addEventListener("pointerup", event => this.#up(event), options);
        element.addEventListener("pointercancel", () => { this.#drag = null; }, options);
    }

    /** Ends a glide. */
    stop() {
        cancelAnimationFrame(this.#glide);
    }

    destroy() {
        this.stop();
        this.setTilt(false);
        this.#ending.abort();
    }

    get isTilting() { return this.#onTilt !== null; }

    /** @param {boolean} on */
    setTilt(on) {
        if (this.#onTilt)
            removeEventListener("deviceorientation", this.#onTilt);
        this.#onTilt = null;
        this.#tilt = null;
        if (!on)
            return;
        this.#onTilt = event => this.#tilted(event);
        addEventListener("deviceorientation", this.#onTilt);
    }

    /** @param {PointerEvent} event */
    #down(event) {
        const path = this.#target.path();
        if (!path || event.button !== 0)
            return;
        this.stop();
        this.#element.setPointerCapture(event.pointerId);
        const from = {x: event.clientX, y: event.clientY};
        const position = path.positions[this.#target.current()];
        this.#drag = {id: event.pointerId, from, position, isDrag: false};
        this.#trail = [{time: event.timeStamp, position}];
    }

    /** @param {PointerEvent} event */
    #move(event) {
        const path = this.#target.path();
        const drag = this.#drag;
        if (!path || !drag || event.pointerId !== drag.id)
            return;
        const {axis, sign} = path.screen;
        const moved = {x: event.clientX - drag.from.x, y: event.clientY - drag.from.y};
        if (!drag.isDrag && Math.hypot(moved.x, moved.y) < DRAG_THRESHOLD)
            return;
        if (!drag.isDrag)
            this.#target.hold();
        drag.isDrag = true;
        const position = drag.position + sign * moved[axis] * this.#target.pixelsPerCss();
        this.#trail = [...this.#trail.slice(-5), {time: event.timeStamp, position}];
        this.#target.show(path.nearest(position, this.#target.current()));
    }

    /** @param {PointerEvent} event */
    #up(event) {
        const drag = this.#drag;
        this.#drag = null;
        if (!drag || event.pointerId !== drag.id)
            return;
        if (!drag.isDrag)
            return this.#target.tap();
        const first = this.#trail.find(({time}) => event.timeStamp - time < 100);
        const last = this.#trail[this.#trail.length - 1];
        const isStill = matchMedia("(prefers-reduced-motion: reduce)").matches;
        if (first && last.time > first.time && !isStill)
            this.#glideOn(last.position, 1000 * (last.position - first.position) / (last.time - first.time));
    }

    /** @param {number} position @param {number} speed  frame pixels a second */
    #glideOn(position, speed) {
        let before = performance.now();
        const step = () => {
            const path = this.#target.path();
            const now = performance.now();
            const seconds = (now - before) / 1000;
            before = now;
            if (!path || Math.abs(speed) < SLOWEST)
                return;
            position += speed * seconds;
            speed *= Math.exp(-seconds / GLIDE_SECONDS);
            this.#target.show(path.nearest(position, this.#target.current()));
            if (position > path.least && position < path.most)
                this.#glide = requestAnimationFrame(step);
        };
        this.#glide = requestAnimationFrame(step);
    }

    /** @param {DeviceOrientationEvent} event */
    #tilted(event) {
        const path = this.#target.path();
        if (!path || event.gamma === null || event.beta === null || this.#drag)
            return;
        const turn = screen.orientation?.angle ?? 0;
        const across = turn === 90 ? event.beta : turn === 270 ? -event.beta : event.gamma;
        const degrees = path.screen.axis === "x" ? across : event.beta;
        this.#tilt ??= {degrees, position: path.positions[this.#target.current()]};
        const perDegree = (path.most - path.least) / TILT_RANGE;
        const position = this.#tilt.position - path.screen.sign * (degrees - this.#tilt.degrees) * perDegree;
        this.#target.hold();
        this.#target.show(path.nearest(position, this.#target.current()));
    }
}

/** The browser can tell how the device is held, and a hand may hold it. */
export const canTilt = () =>
    typeof DeviceOrientationEvent === "function" && matchMedia("(pointer: coarse)").matches;

/** Asks where the browser wants to be asked; to be called by a click. */
export async function askToTilt() {
    const event = /** @type {{requestPermission?: () => Promise<string>}} */ (
        /** @type {unknown} */ (DeviceOrientationEvent));
    return !event.requestPermission || await event.requestPermission().catch(() => "denied") === "granted";
}
