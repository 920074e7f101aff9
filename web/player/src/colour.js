/**
 * How a video's luma and colour planes make red, green and blue, all within 0 to 1.
 * @typedef {{rgbFromVideo: number[], black: number[]}} Conversion  A matrix column by column.
 */

/** Shares of red and blue in luma. */
const bt709 = {red: 0.2126, blue: 0.0722};
const bt601 = {red: 0.299, blue: 0.114};
const bt2020 = {red: 0.2627, blue: 0.0593};

/**
 * @param {VideoColorSpace} space  what the stream says
 * @param {number} width   of the frame, by which players choose where the stream says nothing
 * @param {number} height
 * @returns {Conversion}
 */
export function conversionOf(space, width, height) {
    const named = /** @type {Record<string, typeof bt709>} */ (
        {bt709, smpte170m: bt601, bt470bg: bt601, "bt2020-ncl": bt2020});
    const weights = named[space.matrix ?? ""] ?? (width >= 1280 || height > 576 ? bt709 : bt601);
    const green = 1 - weights.red - weights.blue;
    const luma = space.fullRange ? 1 : 255 / 219;
    const colour = space.fullRange ? 2 : 255 / 112;
    const blue = colour * (1 - weights.blue);
    const red = colour * (1 - weights.red);
    return {
        rgbFromVideo: [
            luma, luma, luma,
            0, -blue * weights.blue / green, blue,
            red, -red * weights.red / green, 0,
        ],
        black: [space.fullRange ? 0 : 16 / 255, 128 / 255, 128 / 255],
    };
}
