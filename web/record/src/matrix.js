/** @typedef {{x: number, y: number}} Point  Pixels, y down. */

/**
 * A written matrix W, decoded: it acts on row vectors of output coordinates, [x y 1]_frame = [x y 1]_output * W, and
 * its third column is (0, 0, 1). Immutable.
 */
export class RenderMatrix {
    /** The identity: the output picture is the frame. */
    static identity = new RenderMatrix([1e6, 0, 0, 0, 1e6, 0, 0, 0, 1e6]);

    /** @param {readonly number[]} fixedPoint  nine elements of a record, row-major, times 1000000 */
    constructor(fixedPoint) {
        const at = (/** @type {number} */ i) => fixedPoint[i] / 1e6;
        /** Row-major. @type {readonly number[]} */
        this.elements = Object.freeze([at(0), at(1), 0, at(3), at(4), 0, at(6), at(7), 1]);
        Object.freeze(this);
    }

    /**
     * The point of the frame that the output picture shows at a point.
     * @param {Point} output
     * @returns {Point}
     */
    frameFromOutput({x, y}) {
        const w = this.elements;
        return {x: x * w[0] + y * w[3] + w[6], y: x * w[1] + y * w[4] + w[7]};
    }

    /**
     * The point of the output picture that shows a point of the frame. Finite for every matrix of an opened record.
     * @param {Point} frame
     * @returns {Point}
     */
    outputFromFrame(frame) {
        const w = this.elements;
        const x = frame.x - w[6];
        const y = frame.y - w[7];
        const det = this.determinant;
        return {x: (x * w[4] - y * w[3]) / det, y: (y * w[0] - x * w[1]) / det};
    }

    /** Radians by which the frame is turned in the output picture, positive from x to y (clockwise on the screen). */
    get angle() {
        return Math.atan2(-this.elements[1], this.elements[4]);
    }

    /** 1 for a rotation, -1 for one that flipWarpMatrix has mirrored. */
    get determinant() {
        const w = this.elements;
        return w[0] * w[4] - w[1] * w[3];
    }

    /** flipWarpMatrix has negated the x that frameFromOutput gives. */
    get isMirrored() {
        return this.determinant < 0;
    }
}
