import {RenderMatrix} from "@orbitwalk/record";
import {inverse} from "./affine.js";
import {frameFromUpright, shownSize} from "./playlist.js";

/**
 * Where the pictures of a sweep lie along it, for looking around: a hand that drags the picture by so many pixels
 * wants the one whose displacement differs by as many.
 * @typedef {import("@orbitwalk/record").RecordReader} RecordReader
 * @typedef {import("./playlist.js").Shot} Shot
 */

/** Displacements at the record's limit stand for anything beyond. */
const FARTHEST = 2147.483;

/**
 * The displacement of each frame of the video. Where the record's saturate, the sweep goes on at its mean step.
 * @param {RecordReader} record
 * @returns {number[]}
 */
export function displacements(record) {
    const frames = record.renderedFrames;
    const path = Array.from({length: record.frameCount}, (_, i) => record.displacement(i));
    const end = frames.findIndex(i => Math.abs(path[i]) >= FARTHEST);
    if (end < 2)
        return path;
    const last = frames[end - 1];
    const step = (path[last] - path[frames[0]]) / (last - frames[0]);
    return path.map((value, i) => i > last ? path[last] + step * (i - last) : value);
}

export class SweepPath {
    /** Position of each shot, pixels of the frame. @type {number[]} */
    positions;
    /** Which way a picture moves on the screen when the position grows. @type {{axis: "x" | "y", sign: 1 | -1}} */
    screen;

    /** @param {RecordReader} record @param {readonly Shot[]} shots */
    constructor(record, shots) {
        const alongX = (record.direction <= 2) === (record.orientation === 0 || record.orientation === 180);
        const axis = alongX ? "x" : "y";
        const {width, height} = shownSize(record);
        const screenFromFrame = inverse(frameFromUpright(record, RenderMatrix.identity, width, height));
        const [x, y] = alongX ? [screenFromFrame.xx, screenFromFrame.yx] : [screenFromFrame.xy, screenFromFrame.yy];
        this.screen = Math.abs(x) > Math.abs(y) ? {axis: "x", sign: x < 0 ? -1 : 1} : {axis: "y", sign: y < 0 ? -1 : 1};
        const centre = {x: (record.width - 1) / 2, y: (record.height - 1) / 2};
        const path = displacements(record);
        // A border frame moves the picture of the frame that it repeats.
        this.positions = shots.map(({frame, matrix}) => {
            const own = record.renderMatrix(frame);
            return path[frame] + matrix.outputFromFrame(centre)[axis] - own.outputFromFrame(centre)[axis];
        });
    }

    get least() { return Math.min(...this.positions); }
    get most() { return Math.max(...this.positions); }

    /**
     * The shot that lies nearest; of several, the one nearest to the current.
     * @param {number} position
     * @param {number} current
     */
    nearest(position, current) {
        let best = current;
        const distance = (/** @type {number} */ i) => Math.abs(this.positions[i] - position);
        for (let i = 0; i < this.positions.length; ++i) {
            const gain = distance(best) - distance(i);
            if (gain > 0 || gain === 0 && Math.abs(i - current) < Math.abs(best - current))
                best = i;
        }
        return best;
    }
}
