/** @param {number} value @param {number} least @param {number} most */
export const within = (value, least, most) => Math.min(most, Math.max(least, value));

const DEFAULT_CACHE_MEGABYTES = 192;

/** A page that is made on a server may import the player there, where nothing can be an element. */
const Element = globalThis.HTMLElement ?? class {};

/** The attributes of <orbitwalk-player> as properties. */
export class PlayerAttributes extends Element {
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

    /** Times the speed of the recording, 1/16 to 16: what a <video> element plays at, too. */
    get speed() {
        const speed = Number(this.getAttribute("speed") ?? 1);
        return speed > 0 ? within(speed, 1 / 16, 16) : 1;
    }
    set speed(value) { this.setAttribute("speed", String(value)); }

    /** Bound of the decoded frames that are kept, read when a sweep is opened. */
    get cacheMegabytes() {
        const megabytes = Number(this.getAttribute("cache-megabytes"));
        return megabytes > 0 ? megabytes : DEFAULT_CACHE_MEGABYTES;
    }
    set cacheMegabytes(value) { this.setAttribute("cache-megabytes", String(value)); }
}
