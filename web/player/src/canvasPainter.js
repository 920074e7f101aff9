import {apply, inverse} from "./affine.js";

/**
 * @typedef {import("./glPainter.js").Painter} Painter
 * @typedef {import("./glPainter.js").Picture} Picture
 * @typedef {import("./glPainter.js").Part} Part
 * @typedef {import("./affine.js").Affine} Affine
 * @typedef {{bytes: number, bitmap: ImageBitmap}} BitmapPicture
 */

/**
 * Draws with the 2D canvas, for browsers without WebGL2. Black beyond the frame's edges.
 * @implements {Painter}
 */
export class CanvasPainter {
    #context;

    /** @param {HTMLCanvasElement} canvas @param {CanvasRenderingContext2D} context  of the canvas */
    constructor(canvas, context) {
        this.canvas = canvas;
        this.#context = context;
    }

    /** @param {HTMLCanvasElement} canvas */
    static on(canvas) {
        const context = canvas.getContext("2d", {alpha: false});
        return context && new CanvasPainter(canvas, context);
    }

    /** @param {VideoFrame | HTMLVideoElement} image @returns {Promise<BitmapPicture>} */
    async upload(image) {
        try {
            const bitmap = await createImageBitmap(image);
            return {bitmap, bytes: bitmap.width * bitmap.height * 4};
        } finally {
            if ("close" in image)
                image.close();
        }
    }

    /** @param {Picture} picture */
    release(picture) {
        /** @type {BitmapPicture} */ (picture).bitmap.close();
    }

    /** @param {Picture} picture @param {readonly Part[]} parts */
    draw(picture, parts) {
        let begin = 0;
        for (const {end, frameFromCanvas} of parts) {
            const {width, height} = this.canvas;
            paint(this.#context, picture, frameFromCanvas, begin * width, (end - begin) * width, height);
            begin = end;
        }
    }

    /** @param {Picture} picture @param {Affine} frameFromCanvas @param {number} width @param {number} height */
    read(picture, frameFromCanvas, width, height) {
        const canvas = new OffscreenCanvas(width, height);
        const context = canvas.getContext("2d", {alpha: false, willReadFrequently: true});
        if (!context)
            throw new Error("there is no 2D canvas");
        paint(context, picture, frameFromCanvas, 0, width, height);
        return context.getImageData(0, 0, width, height);
    }

    destroy() {}
}

/**
 * @param {CanvasRenderingContext2D | OffscreenCanvasRenderingContext2D} context
 * @param {Picture} picture
 * @param {Affine} frameFromCanvas
 * @param {number} left
 * @param {number} width
 * @param {number} height
 */
function paint(context, picture, frameFromCanvas, left, width, height) {
    const map = inverse(frameFromCanvas);
    // Here (0, 0) is the corner of the top left pixel, not its centre.
    const origin = apply(map, {x: -0.5, y: -0.5});
    context.save();
    context.beginPath();
    context.rect(left, 0, width, height);
    context.clip();
    context.fillRect(left, 0, width, height);
    context.imageSmoothingQuality = "high";
    context.setTransform(map.xx, map.yx, map.xy, map.yy, origin.x + 0.5, origin.y + 0.5);
    context.drawImage(/** @type {BitmapPicture} */ (picture).bitmap, 0, 0);
    context.restore();
}
