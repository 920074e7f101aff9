/**
 * A map between two pictures' coordinates, each with (0, 0) at the centre of its top left pixel:
 * x' = xx x + xy y + x0, y' = yx x + yy y + y0.
 * @typedef {{xx: number, xy: number, x0: number, yx: number, yy: number, y0: number}} Affine
 * @typedef {import("@orbitwalk/record").Point} Point
 */

/** @param {Affine} map @param {Point} point @returns {Point} */
export function apply(map, {x, y}) {
    return {x: map.xx * x + map.xy * y + map.x0, y: map.yx * x + map.yy * y + map.y0};
}

/** The inner map first. @param {Affine} outer @param {Affine} inner @returns {Affine} */
export function compose(outer, inner) {
    const origin = apply(outer, {x: inner.x0, y: inner.y0});
    return {
        xx: outer.xx * inner.xx + outer.xy * inner.yx,
        xy: outer.xx * inner.xy + outer.xy * inner.yy,
        x0: origin.x,
        yx: outer.yx * inner.xx + outer.yy * inner.yx,
        yy: outer.yx * inner.xy + outer.yy * inner.yy,
        y0: origin.y,
    };
}

/** @param {Affine} map  with a determinant other than 0 @returns {Affine} */
export function inverse(map) {
    const det = map.xx * map.yy - map.xy * map.yx;
    const linear = {xx: map.yy / det, xy: -map.xy / det, x0: 0, yx: -map.yx / det, yy: map.xx / det, y0: 0};
    const origin = apply(linear, {x: map.x0, y: map.y0});
    return {...linear, x0: -origin.x, y0: -origin.y};
}

/** @param {number} x @param {number} y @returns {Affine} */
export const translation = (x, y) => ({xx: 1, xy: 0, x0: x, yx: 0, yy: 1, y0: y});

/**
 * Pixels of a picture to those of one that shows it enlarged by the factors: edges on edges, so that the centre of
 * the top left pixel moves by half a pixel's growth.
 * @param {number} factorX @param {number} factorY @returns {Affine}
 */
export const enlargement = (factorX, factorY) =>
    ({xx: factorX, xy: 0, x0: (factorX - 1) / 2, yx: 0, yy: factorY, y0: (factorY - 1) / 2});

/**
 * Where a picture that is turned clockwise takes its pixels from. @param {0 | 90 | 270} degrees
 * @param {number} width   of the turned picture
 * @param {number} height
 * @returns {Affine}
 */
export function unturned(degrees, width, height) {
    if (degrees === 90)
        return {xx: 0, xy: 1, x0: 0, yx: -1, yy: 0, y0: width - 1};
    if (degrees === 270)
        return {xx: 0, xy: -1, x0: height - 1, yx: 1, yy: 0, y0: 0};
    return translation(0, 0);
}

/** Left to right, within columns 0 to width - 1. @param {number} width @returns {Affine} */
export const mirror = width => ({xx: -1, xy: 0, x0: width - 1, yx: 0, yy: 1, y0: 0});
