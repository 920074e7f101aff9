/**
 * Where the fields of a record stand. All are little-endian 32-bit words; a matrix is nine of them, row-major, each
 * the value times 1000000.
 */

export const RECORD_SIZE = 52808;
export const MAX_FRAMES = 1000;
export const MAX_BORDER_FRAMES = 10;

const MATRIX_SIZE = 9 * 4;
const RENDER_MATRICES = 72;
const DISPLACEMENTS = 44072;
const FLAGS = 48072;
const LEFT_BORDER_MATRICES = 52080;
const RIGHT_BORDER_MATRICES = 52444;

/**
 * The words before the matrices, and the counts among them.
 * @typedef {ReturnType<typeof decodeFields>} RecordFields
 */

/** @param {DataView} view  of RECORD_SIZE bytes */
export function decodeFields(view) {
    const word = (/** @type {number} */ offset) => view.getInt32(offset, true);
    return {
        width: word(0),
        height: word(4),
        numFrames: word(8),
        startIndex: word(12),
        endIndex: word(16),
        algoType: word(20),
        algoVersion: view.getFloat32(24, true),
        orientation: word(28),
        captureDirection: word(32),
        cameraType: word(36),
        frontCameraFlipped: word(40),
        maxFrames: word(44),
        crop: {x: word(48), y: word(52), width: word(56), height: word(60)},
        matrixRows: word(64),
        matrixCols: word(68),
        viewAngleMaxFrames: word(52072),
        leftBorderFrames: word(52076),
        rightBorderFrames: word(52440),
    };
}

/** @typedef {"frame" | "left border frame" | "right border frame"} MatrixKind */

/** @type {Record<MatrixKind, number>} */
const firstMatrix = {
    "frame": RENDER_MATRICES,
    "left border frame": LEFT_BORDER_MATRICES,
    "right border frame": RIGHT_BORDER_MATRICES,
};

/**
 * The nine elements as written.
 * @param {DataView} view
 * @param {MatrixKind} kind
 * @param {number} index
 */
export function fixedMatrix(view, kind, index) {
    const begin = firstMatrix[kind] + index * MATRIX_SIZE;
    return Array.from({length: 9}, (_, i) => view.getInt32(begin + 4 * i, true));
}

/** @param {DataView} view @param {number} frame */
export const fixedDisplacement = (view, frame) => view.getInt32(DISPLACEMENTS + 4 * frame, true);

/** @param {DataView} view @param {number} frame */
export const renderFlag = (view, frame) => view.getInt32(FLAGS + 4 * frame, true);
