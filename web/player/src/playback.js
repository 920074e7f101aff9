/**
 * The clock of the player: which picture is due, at a rate and a speed, once, in a loop, or back and forth. Knows
 * nothing of a screen, and takes the time from its caller.
 *
 * A picture that is not decoded yet holds the clock; one that the screen was too slow for is dropped and counted.
 *
 * @typedef {"once" | "loop" | "back-and-forth"} Repeat
 * @typedef {"here" | "coming" | "missed"} Availability  Missed: it will not come unless somebody seeks it.
 */

/** Longer than any picture takes to draw: the page slept. */
const LONGEST_TICK = 2;

export class Playback {
    /** @type {Repeat} */
    repeat = "once";
    /** Pictures that were due and never shown. */
    dropped = 0;
    /** The picture that stands on the screen. */
    index = 0;
    /** @type {1 | -1} */
    direction = 1;
    /** Times the rate. */
    speed = 1;
    #count;
    #rate;
    /** When the current picture was due, seconds. */
    #since = 0;
    #last = 0;
    /** The next picture was due and not there. */
    #isHeld = false;

    /** @param {number} count  of pictures @param {number} rate  pictures a second */
    constructor(count, rate) {
        this.#count = count;
        this.#rate = rate;
    }

    /** @param {number} now  seconds @param {number} index  the picture that stands */
    start(now, index) {
        this.index = index;
        this.direction = 1;
        this.#since = this.#last = now;
    }

    /** Shows another picture and goes on from there. @param {number} now @param {number} index */
    jump(now, index) {
        this.index = index;
        this.#since = now;
        this.#isHeld = false;
    }

    /**
     * @param {number} now  seconds
     * @param {(index: number) => Availability} availability
     * @returns {number | "same" | "ended"}  the picture to show
     */
    tick(now, availability) {
        if (now - this.#last > LONGEST_TICK)
            this.#since = now;
        this.#last = now;
        const step = 1 / (this.#rate * this.speed);
        if (this.#isHeld)
            this.#since = now - step;
        this.#isHeld = false;
        let due = Math.floor((now - this.#since) / step + 1e-6);
        let chosen = null;
        let passed = 0;
        let shown = 0;
        let place = {index: this.index, direction: this.direction};
        for (let k = 1; k <= due; ++k) {
            const next = this.#after(place);
            if (next === null)
                return chosen === null ? "ended" : this.#show(chosen, shown, step, passed);
            place = next;
            const state = availability(next.index);
            if (state === "here") {
                passed = k - 1;
                shown = k;
                chosen = next;
            } else if (state === "coming") {
                break;
            } else {
                due = Math.max(due, Math.min(k + 1, this.#count));
            }
        }
        if (chosen !== null)
            return this.#show(chosen, shown, step, passed);
        this.#isHeld = due > 0;
        return "same";
    }

    /** @param {{index: number, direction: 1 | -1}} chosen @param {number} shown @param {number} step @param {number} passed */
    #show(chosen, shown, step, passed) {
        this.dropped += passed;
        this.#since += shown * step;
        this.index = chosen.index;
        this.direction = chosen.direction;
        return chosen.index;
    }

    /**
     * @param {{index: number, direction: 1 | -1}} place
     * @returns {{index: number, direction: 1 | -1} | null}
     */
    #after({index, direction}) {
        const next = index + direction;
        if (next >= 0 && next < this.#count)
            return {index: next, direction};
        if (this.repeat === "loop")
            return {index: direction > 0 ? 0 : this.#count - 1, direction};
        if (this.repeat === "back-and-forth" && this.#count > 1)
            return {index: index - direction, direction: direction > 0 ? -1 : 1};
        return null;
    }

    /** The pictures that come after the current one. @param {number} count */
    upcoming(count) {
        const list = [];
        /** @type {{index: number, direction: 1 | -1} | null} */
        let place = {index: this.index, direction: this.direction};
        while (list.length < count && (place = this.#after(place)) !== null)
            list.push(place.index);
        return list;
    }
}
