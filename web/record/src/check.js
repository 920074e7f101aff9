import {fixedMatrix, MAX_BORDER_FRAMES, MAX_FRAMES, RECORD_SIZE} from "./layout.js";
import {RenderMatrix} from "./matrix.js";

/**
 * @typedef {"Size" | "FrameSize" | "Capacity" | "MatrixShape" | "FrameCount" | "Range" | "BorderCount" | "Code" |
 *     "Crop" | "MatrixForm" | "MatrixSingular"} RecordFault
 * @typedef {import("./layout.js").RecordFields} Fields
 */

/** Why bytes were refused. The message is half a sentence: "has 12 bytes, a record has 52808". */
export class RecordError extends Error {
    /** @param {RecordFault} fault @param {string} text */
    constructor(fault, text) {
        super(text);
        this.name = "RecordError";
        /** @type {RecordFault} */
        this.fault = fault;
    }
}

/** @param {boolean} holds @param {RecordFault} fault @param {() => string} text */
function require(holds, fault, text) {
    if (!holds)
        throw new RecordError(fault, text());
}

/** @param {number} value @param {number} least @param {number} most */
const isWithin = (value, least, most) => value >= least && value <= most;

/** @param {number} size */
export function checkSize(size) {
    require(size <= RECORD_SIZE, "Size", () => "has more than the 52808 bytes of a record");
    require(size === RECORD_SIZE, "Size", () => `has ${size} bytes, a record has 52808`);
}

/** @param {Fields} r  Limits of the engine's start: three bytes a pixel fit 31 bits. */
function checkFrameSize(r) {
    require(isWithin(r.width, 4, 32767) && isWithin(r.height, 4, 32767) && r.width * r.height * 3 < 2 ** 31, "FrameSize",
        () => `has an implausible frame size, ${r.width}x${r.height}`);
}

/** @param {Fields} r */
function checkLayout(r) {
    require(r.maxFrames === MAX_FRAMES && r.viewAngleMaxFrames === MAX_BORDER_FRAMES, "Capacity",
        () => `has room for ${r.maxFrames} frames and ${r.viewAngleMaxFrames} border frames, not 1000 and 10`);
    require(r.matrixRows === 3 && r.matrixCols === 3, "MatrixShape",
        () => `has matrices of ${r.matrixRows}x${r.matrixCols}, not 3x3`);
}

/** @param {Fields} r  A start beyond the end is valid and selects no frame. */
function checkCounts(r) {
    require(isWithin(r.numFrames, 0, MAX_FRAMES), "FrameCount", () => `counts ${r.numFrames} frames, not 0 to 1000`);
    require(r.startIndex >= 0 && isWithin(r.endIndex, 0, r.numFrames), "Range",
        () => `renders frames ${r.startIndex} to ${r.endIndex} of ${r.numFrames}`);
    require(isWithin(r.leftBorderFrames, 0, MAX_BORDER_FRAMES) && isWithin(r.rightBorderFrames, 0, MAX_BORDER_FRAMES),
        "BorderCount",
        () => `counts ${r.leftBorderFrames} and ${r.rightBorderFrames} border frames, not 0 to 10`);
}

/** @param {Fields} r  Orientations are the caller's and pass whatever they are. */
function checkCodes(r) {
    require(isWithin(r.captureDirection, 1, 4), "Code",
        () => `has capture direction ${r.captureDirection}, not 1 to 4`);
    require(isWithin(r.frontCameraFlipped, 0, 1), "Code", () => `has flip ${r.frontCameraFlipped}, not 0 or 1`);
    require(Number.isFinite(r.algoVersion), "Code",
        () => "has an algorithm version that is not a finite number");
}

/** @param {Fields} r */
function checkCrop(r) {
    const {x, y, width, height} = r.crop;
    require(isWithin(x, 0, r.width - 1) && isWithin(y, 0, r.height - 1) && isWithin(width, 1, r.width - x) &&
        isWithin(height, 1, r.height - y), "Crop",
        () => `has crop ${width}x${height} at ${x},${y} in a frame of ${r.width}x${r.height}`);
}

/**
 * Truncation may take one unit from each element of the third column. The linear part is known to one unit an element,
 * so the determinant to the sum of their magnitudes units: below a hundred times that, the inverse would be off by
 * more than a hundredth.
 * @param {DataView} view
 * @param {import("./layout.js").MatrixKind} kind
 * @param {number} index
 */
function checkMatrix(view, kind, index) {
    const fixed = fixedMatrix(view, kind, index);
    require(isWithin(fixed[2], -1, 1) && isWithin(fixed[5], -1, 1) && isWithin(fixed[8], 999999, 1000001), "MatrixForm",
        () => `has no third column 0, 0, 1 in the matrix of ${kind} ${index}`);
    const matrix = new RenderMatrix(fixed);
    let magnitude = 0;
    for (const i of [0, 1, 3, 4])
        magnitude += Math.abs(matrix.elements[i]);
    require(Math.abs(matrix.determinant) > 100 * 1e-6 * magnitude, "MatrixSingular",
        () => `has a singular matrix for ${kind} ${index}`);
}

/**
 * The engine leaves the matrix of a capture of a single frame unwritten, all zero.
 * @param {DataView} view
 * @param {Fields} fields
 * @param {number} frame
 */
export function isUnwritten(view, fields, frame) {
    return fields.numFrames === 1 && fixedMatrix(view, "frame", frame).every(element => element === 0);
}

/**
 * @param {DataView} view
 * @param {Fields} fields
 * @throws {RecordError}
 */
export function checkRecord(view, fields) {
    for (const check of [checkFrameSize, checkLayout, checkCounts, checkCodes, checkCrop])
        check(fields);
    for (let i = 0; i < fields.numFrames; ++i)
        if (!isUnwritten(view, fields, i))
            checkMatrix(view, "frame", i);
    for (let k = 0; k < fields.leftBorderFrames; ++k)
        checkMatrix(view, "left border frame", k);
    for (let k = 0; k < fields.rightBorderFrames; ++k)
        checkMatrix(view, "right border frame", k);
}
