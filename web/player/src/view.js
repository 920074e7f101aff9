import {RenderMatrix} from "@orbitwalk/record";
import {frameFromUpright} from "./playlist.js";

/**
 * Which part of the stage the canvas takes, and which maps draw a shot on it.
 * @typedef {import("@orbitwalk/record").RecordReader} RecordReader
 * @typedef {import("./playlist.js").Shot} Shot
 * @typedef {{steady: boolean, compare: boolean, split: number}} Look
 */

/** A canvas larger than any screen only costs. */
const LONGEST_SIDE = 4096;

/**
 * The largest canvas of the picture's shape that the box holds.
 * @param {{width: number, height: number}} picture
 * @param {number} width   of the box, CSS pixels
 * @param {number} height
 * @param {number} density device pixels a CSS pixel
 */
export function canvasSize(picture, width, height, density) {
    const scale = Math.min(width / picture.width, height / picture.height);
    const css = {width: scale * picture.width, height: scale * picture.height};
    const device = Math.min(density, LONGEST_SIDE / Math.max(css.width, css.height, 1));
    return {
        css,
        width: Math.max(1, Math.round(css.width * device)),
        height: Math.max(1, Math.round(css.height * device)),
    };
}

/**
 * @param {RecordReader} record
 * @param {Shot} shot
 * @param {Look} look
 * @param {number} width   of the canvas
 * @param {number} height
 * @returns {import("./glPainter.js").Part[]}
 */
export function partsOf(record, shot, {steady, compare, split}, width, height) {
    const map = (/** @type {RenderMatrix} */ matrix) => frameFromUpright(record, matrix, width, height);
    if (compare)
        return [{end: split, frameFromCanvas: map(RenderMatrix.identity)}, {end: 1, frameFromCanvas: map(shot.matrix)}];
    return [{end: 1, frameFromCanvas: map(steady ? shot.matrix : RenderMatrix.identity)}];
}
