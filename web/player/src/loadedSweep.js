import {FrameStore} from "./frameStore.js";
import {Playback} from "./playback.js";
import {playlist, shownSize} from "./playlist.js";
import {SweepPath} from "./sweepPath.js";

/** Frames that are decoded before they are due. */
const AHEAD = 16;

/** A sweep that is open, with all that plays it. */
export class LoadedSweep {
    /**
     * @param {import("./sweep.js").Sweep} sweep
     * @param {import("./glPainter.js").Painter} painter
     * @param {{borderFrames: boolean, cacheMegabytes: number}} settings
     * @param {(error: unknown) => void} onError
     */
    constructor(sweep, painter, {borderFrames, cacheMegabytes}, onError) {
        this.record = sweep.record;
        this.source = sweep.source;
        this.shots = playlist(sweep.record, borderFrames);
        this.path = new SweepPath(sweep.record, this.shots);
        this.store = new FrameStore(sweep.source, painter, cacheMegabytes * 1e6, onError);
        this.playback = new Playback(this.shots.length, sweep.rate);
    }

    /** Of the picture as it is shown, upright. */
    get size() { return shownSize(this.record); }

    /**
     * Going on from a picture at a moment.
     * @param {{repeat: import("./playback.js").Repeat, speed: number}} pace
     * @param {number} now    seconds
     * @param {number} index  of the picture
     */
    setPace({repeat, speed}, now, index) {
        Object.assign(this.playback, {repeat, speed});
        this.playback.jump(now, index);
        this.source.setSpeed(speed);
    }

    /** For a hand that drags: has the pictures on both sides decoded. @param {number} index */
    prepareAround(index) {
        const {shots, store} = this;
        const reach = Math.min(AHEAD, Math.floor((store.capacity - 1) / 3));
        const near = shots.slice(Math.max(0, index - reach), index + reach + 1).map(({frame}) => frame);
        const current = shots[index].frame;
        store.prepare(current, [...new Set(near)].sort((a, b) => Math.abs(a - current) - Math.abs(b - current)));
    }

    /** While playing: has the next pictures decoded; going back, whole runs of them. @param {number} index */
    prepareNext(index) {
        const {shots, store, playback} = this;
        const count = Math.min(AHEAD, Math.floor(store.capacity / 2));
        const ahead = playback.upcoming(Math.max(2, count)).map(next => shots[next].frame);
        store.prepare(shots[index].frame, [...new Set(ahead)]);
    }
}
