import {RenderMatrix} from "@orbitwalk/record";
import {compose, enlargement, mirror, translation, unturned} from "./affine.js";

/**
 * One picture that a player shows.
 * @typedef {{frame: number, matrix: RenderMatrix}} Shot  The frame's number in the video.
 * @typedef {import("@orbitwalk/record").RecordReader} RecordReader
 * @typedef {import("./affine.js").Affine} Affine
 */

/**
 * The pictures in playing order; with border frames, copies of the first frame before the sweep and of the last one
 * after it. Empty when the record renders no frame.
 * @param {RecordReader} record
 * @param {boolean} withBorderFrames
 * @returns {Shot[]}
 */
export function playlist(record, withBorderFrames) {
    const frames = record.renderedFrames;
    if (frames.length === 0)
        return [];
    const border = (/** @type {number} */ count, /** @type {number} */ frame, /** @type {(k: number) => RenderMatrix} */ at) =>
        Array.from({length: withBorderFrames ? count : 0}, (_, k) => ({frame, matrix: at(k)}));
    return [
        ...border(record.leftBorderCount, frames[0], k => record.leftBorder(k)),
        ...frames.map(frame => ({frame, matrix: record.renderMatrix(frame)})),
        ...border(record.rightBorderCount, frames[frames.length - 1], k => record.rightBorder(k)),
    ];
}

/** @param {RenderMatrix} matrix @returns {Affine} */
function affineOf(matrix) {
    const w = matrix.elements;
    // A matrix that flipWarpMatrix has mirrored gives the negative of the frame's x.
    const sign = matrix.isMirrored ? -1 : 1;
    return {xx: sign * w[0], xy: sign * w[3], x0: sign * w[6], yx: w[1], yy: w[4], y0: w[7]};
}

/**
 * By how many degrees, clockwise, the finished picture is turned to stand upright; a mirrored one the other way.
 * @param {RecordReader} record
 * @returns {0 | 90 | 270}
 */
export function turnOf({orientation, isFlipped}) {
    if (orientation !== 90 && orientation !== 270)
        return 0;
    return (orientation === 90) === isFlipped ? 270 : 90;
}

/** The crop rectangle's size as it is shown. @param {RecordReader} record */
export function shownSize(record) {
    const {width, height} = record.crop;
    return turnOf(record) === 0 ? {width, height} : {width: height, height: width};
}

/**
 * Where each pixel of a canvas that shows the crop rectangle comes from in the frame; mirrored where the preview was.
 * @param {RecordReader} record
 * @param {RenderMatrix} matrix  the identity: the frame as recorded
 * @param {number} width   of the canvas
 * @param {number} height
 * @returns {Affine}
 */
export function frameFromCanvas(record, matrix, width, height) {
    const {crop} = record;
    const cropped = compose(translation(crop.x, crop.y), enlargement(crop.width / width, crop.height / height));
    const shown = record.isFlipped ? compose(cropped, mirror(width)) : cropped;
    return compose(affineOf(matrix), shown);
}

/**
 * The same for a canvas on which the picture stands upright.
 * @param {RecordReader} record
 * @param {RenderMatrix} matrix
 * @param {number} width   of the canvas
 * @param {number} height
 * @returns {Affine}
 */
export function frameFromUpright(record, matrix, width, height) {
    const turn = turnOf(record);
    const lying = turn === 0 ? frameFromCanvas(record, matrix, width, height) : frameFromCanvas(record, matrix, height, width);
    return compose(lying, unturned(turn, width, height));
}
