import {checkRecord, checkSize, isUnwritten} from "./check.js";
import {decodeFields, fixedDisplacement, fixedMatrix, renderFlag} from "./layout.js";
import {RenderMatrix} from "./matrix.js";

/** @typedef {{x: number, y: number, width: number, height: number}} Crop  Pixels of the frame. */
/** @typedef {{begin: number, end: number}} FrameRange  Frames begin to end - 1. */
/** @typedef {import("./matrix.js").Point} Point */

/** @param {number} index @param {number} count */
function checkIndex(index, count) {
    if (!Number.isInteger(index) || index < 0 || index >= count)
        throw new RangeError(`index ${index} beyond the record's count ${count}`);
}

/**
 * An opened record: checked and immutable. An index outside the count that a method names throws RangeError.
 * Made by openRecord.
 */
export class RecordReader {
    #view;
    #fields;

    /**
     * @param {DataView} view  of a record that nobody else changes
     * @param {import("./layout.js").RecordFields} fields
     */
    constructor(view, fields) {
        this.#view = view;
        this.#fields = fields;
    }

    get width() { return this.#fields.width; }
    get height() { return this.#fields.height; }
    /** @returns {Crop} */
    get crop() { return {...this.#fields.crop}; }
    get frameCount() { return this.#fields.numFrames; }

    /**
     * The range to render, limited to the frames there are. Empty when the start lies beyond the end.
     * @returns {FrameRange}
     */
    get range() {
        const {startIndex, endIndex, numFrames} = this.#fields;
        const end = Math.min(endIndex + 1, numFrames);
        return {begin: Math.min(startIndex, end), end};
    }

    /** A player shows the frame: it lies in the range and its flag is 1. @param {number} frame */
    isRendered(frame) {
        const {begin, end} = this.range;
        return this.flag(frame) === 1 && frame >= begin && frame < end;
    }

    /** The frames that a player shows, ascending. */
    get renderedFrames() {
        return Array.from({length: this.frameCount}, (_, i) => i).filter(i => this.isRendered(i));
    }

    /** @param {number} frame */
    renderMatrix(frame) {
        checkIndex(frame, this.frameCount);
        return isUnwritten(this.#view, this.#fields, frame) ? RenderMatrix.identity
            : new RenderMatrix(this.fixedMatrix(frame));
    }

    /** The nine elements as written, times 1000000. @param {number} frame */
    fixedMatrix(frame) {
        checkIndex(frame, this.frameCount);
        return fixedMatrix(this.#view, "frame", frame);
    }

    /** The flag as written. @param {number} frame */
    flag(frame) {
        checkIndex(frame, this.frameCount);
        return renderFlag(this.#view, frame);
    }

    /**
     * Pixels along the sweep from the first rendered frame: where the picture stands, so it falls while a camera pans
     * to the right. Saturates at 2147.483647.
     * @param {number} frame
     */
    displacement(frame) {
        checkIndex(frame, this.frameCount);
        return fixedDisplacement(this.#view, frame) / 1e6;
    }

    /** Border frames show the first rendered frame again before the sweep, the farthest first. */
    get leftBorderCount() { return this.#fields.leftBorderFrames; }
    /** And the last one again after it. */
    get rightBorderCount() { return this.#fields.rightBorderFrames; }

    /** @param {number} k */
    leftBorder(k) {
        return new RenderMatrix(this.fixedLeftBorder(k));
    }

    /** @param {number} k */
    rightBorder(k) {
        return new RenderMatrix(this.fixedRightBorder(k));
    }

    /** @param {number} k */
    fixedLeftBorder(k) {
        checkIndex(k, this.leftBorderCount);
        return fixedMatrix(this.#view, "left border frame", k);
    }

    /** @param {number} k */
    fixedRightBorder(k) {
        checkIndex(k, this.rightBorderCount);
        return fixedMatrix(this.#view, "right border frame", k);
    }

    /** Degrees as in the record: 0, 90, 270 or 360 unless the caller of start gave another. */
    get orientation() { return this.#fields.orientation; }
    /** 1 left to right, 2 right to left, 3 and 4 up and down. */
    get direction() { return this.#fields.captureDirection; }
    /** The preview was mirrored: a player shows at each output point what belongs to mirrored(). */
    get isFlipped() { return this.#fields.frontCameraFlipped === 1; }

    /**
     * The output point that lies opposite in the crop rectangle.
     * @param {Point} output
     * @returns {Point}
     */
    mirrored({x, y}) {
        const {crop} = this.#fields;
        return {x: 2 * crop.x + crop.width - 1 - x, y};
    }

    /** The header's words as written. */
    get fields() {
        return {...this.#fields, crop: this.crop};
    }
}

/**
 * Checks and copies a record.
 * @param {ArrayBuffer | ArrayBufferView} bytes
 * @returns {RecordReader}
 * @throws {RecordError} with what is wrong
 */
export function openRecord(bytes) {
    checkSize(bytes.byteLength);
    const own = ArrayBuffer.isView(bytes)
        ? bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.byteLength)
        : bytes.slice(0);
    const view = new DataView(own);
    const fields = decodeFields(view);
    checkRecord(view, fields);
    return new RecordReader(view, fields);
}
