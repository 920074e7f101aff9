import {conversionOf} from "./colour.js";
import {pictureShader, planesShader, vertexShader} from "./shaders.js";

/**
 * A frame as a painter keeps it. Given back by release.
 * @typedef {{bytes: number}} Picture
 * @typedef {import("./affine.js").Affine} Affine
 *
 * A part of the canvas, left to right, and where its pixels come from.
 * @typedef {{end: number, frameFromCanvas: Affine}} Part  End: a share of the width, 1 for the last part.
 *
 * @typedef {object} Painter
 * @property {(image: VideoFrame | HTMLVideoElement) => Promise<Picture>} upload  closes a VideoFrame
 * @property {(picture: Picture) => void} release
 * @property {(picture: Picture, parts: readonly Part[]) => void} draw  on the whole canvas
 * @property {(picture: Picture, frameFromCanvas: Affine, width: number, height: number) => ImageData} read
 * @property {() => void} destroy
 */

/** Frame pixels a canvas pixel beyond which smaller copies are sampled. */
const SHRINKING = 1.5;

/**
 * @typedef {object} GlPicture
 * @property {number} bytes
 * @property {WebGLTexture[]} textures  luma and two of colour, or one
 * @property {import("./colour.js").Conversion | null} conversion  of planes
 * @property {number} width
 * @property {number} height
 * @property {boolean} hasCopies  smaller ones
 */

/** Draws with WebGL2. @implements {Painter} */
export class GlPainter {
    #gl;
    /** None since a lost context came back. @type {{planes: Program, picture: Program} | null} */
    #programs;
    /** @type {GlPicture[]} */
    #free = [];
    /** @type {ArrayBuffer | null} */
    #scratch = null;
    #onLost;
    #onRestored;

    /**
     * @param {HTMLCanvasElement} canvas
     * @param {WebGL2RenderingContext} gl  of the canvas
     * @param {() => void} onForget  all pictures are lost; those of before must not be used any more
     * @throws where the browser cannot make the warp's programs
     */
    constructor(canvas, gl, onForget) {
        this.canvas = canvas;
        this.#gl = gl;
        this.#programs = programsOf(gl);
        this.#onLost = (/** @type {Event} */ event) => event.preventDefault();
        this.#onRestored = () => {
            // What was made while there was no context is as lost as what was made before.
            this.#programs = null;
            this.#free = [];
            onForget();
        };
        canvas.addEventListener("webglcontextlost", this.#onLost);
        canvas.addEventListener("webglcontextrestored", this.#onRestored);
    }

    /** @param {HTMLCanvasElement} canvas @param {() => void} onForget */
    static on(canvas, onForget) {
        const gl = canvas.getContext("webgl2", {alpha: false, antialias: false, depth: false, powerPreference: "default"});
        return gl && new GlPainter(canvas, gl, onForget);
    }

    /** @param {VideoFrame | HTMLVideoElement} image @returns {Promise<GlPicture>} */
    async upload(image) {
        if (!("format" in image))
            return this.#uploadPicture(image, image.videoWidth, image.videoHeight);
        try {
            return image.format === "I420" ? await this.#uploadPlanes(image)
                : this.#uploadPicture(image, image.displayWidth, image.displayHeight);
        } finally {
            image.close();
        }
    }

    /** @param {Picture} picture */
    release(picture) {
        const own = /** @type {GlPicture} */ (picture);
        if (this.#free.length < 2)
            this.#free.push(own);
        else
            own.textures.forEach(texture => this.#gl.deleteTexture(texture));
    }

    /** @param {Picture} picture @param {readonly Part[]} parts */
    draw(picture, parts) {
        const gl = this.#gl;
        const {width, height} = this.canvas;
        gl.viewport(0, 0, width, height);
        gl.enable(gl.SCISSOR_TEST);
        let begin = 0;
        for (const {end, frameFromCanvas} of parts) {
            const column = Math.round(end * width);
            gl.scissor(begin, 0, column - begin, height);
            this.#paint(/** @type {GlPicture} */ (picture), frameFromCanvas, height - 1);
            begin = column;
        }
        gl.disable(gl.SCISSOR_TEST);
    }

    /** @param {Picture} picture @param {Affine} frameFromCanvas @param {number} width @param {number} height */
    read(picture, frameFromCanvas, width, height) {
        const gl = this.#gl;
        if (gl.isContextLost())
            throw new Error("the drawing context is lost");
        const target = this.#texture(gl.RGBA8, width, height, 1);
        const buffer = gl.createFramebuffer();
        gl.bindFramebuffer(gl.FRAMEBUFFER, buffer);
        gl.framebufferTexture2D(gl.FRAMEBUFFER, gl.COLOR_ATTACHMENT0, gl.TEXTURE_2D, target, 0);
        gl.viewport(0, 0, width, height);
        this.#paint(/** @type {GlPicture} */ (picture), frameFromCanvas, -1);
        const data = new ImageData(width, height);
        gl.readPixels(0, 0, width, height, gl.RGBA, gl.UNSIGNED_BYTE, data.data);
        gl.bindFramebuffer(gl.FRAMEBUFFER, null);
        gl.deleteFramebuffer(buffer);
        gl.deleteTexture(target);
        return data;
    }

    destroy() {
        this.canvas.removeEventListener("webglcontextlost", this.#onLost);
        this.canvas.removeEventListener("webglcontextrestored", this.#onRestored);
        this.#gl.getExtension("WEBGL_lose_context")?.loseContext();
        this.#scratch = null;
    }

    /** @param {GlPicture} picture @param {Affine} map @param {number} bottom */
    #paint(picture, map, bottom) {
        const gl = this.#gl;
        if (gl.isContextLost())
            return;
        this.#programs ??= programsOf(gl);
        const program = picture.conversion ? this.#programs.planes : this.#programs.picture;
        const isSmall = Math.hypot(map.xx, map.yx) > SHRINKING;
        if (isSmall && !picture.hasCopies)
            this.#addCopies(picture);
        gl.useProgram(program.handle);
        picture.textures.forEach((texture, unit) => {
            gl.activeTexture(gl.TEXTURE0 + unit);
            gl.bindTexture(gl.TEXTURE_2D, texture);
            gl.texParameteri(gl.TEXTURE_2D, gl.TEXTURE_MIN_FILTER, isSmall ? gl.LINEAR_MIPMAP_LINEAR : gl.LINEAR);
        });
        gl.uniform3f(program.at("rowX"), map.xx, map.xy, map.x0);
        gl.uniform3f(program.at("rowY"), map.yx, map.yy, map.y0);
        gl.uniform1f(program.at("bottom"), bottom);
        gl.uniform1i(program.at("smooth4"), isSmall ? 0 : 1);
        if (picture.conversion) {
            gl.uniform1i(program.at("luma"), 0);
            gl.uniform1i(program.at("cb"), 1);
            gl.uniform1i(program.at("cr"), 2);
            gl.uniformMatrix3fv(program.at("rgbFromVideo"), false, picture.conversion.rgbFromVideo);
            gl.uniform3fv(program.at("black"), picture.conversion.black);
        }
        gl.drawArrays(gl.TRIANGLES, 0, 3);
    }

    /** @param {GlPicture} picture */
    #addCopies(picture) {
        const gl = this.#gl;
        for (const texture of picture.textures) {
            gl.bindTexture(gl.TEXTURE_2D, texture);
            gl.generateMipmap(gl.TEXTURE_2D);
        }
        picture.hasCopies = true;
    }

    /** @param {number} format @param {number} width @param {number} height @param {number} levels */
    #texture(format, width, height, levels) {
        const gl = this.#gl;
        const texture = gl.createTexture();
        gl.activeTexture(gl.TEXTURE0);
        gl.bindTexture(gl.TEXTURE_2D, texture);
        gl.texStorage2D(gl.TEXTURE_2D, levels, format, width, height);
        gl.texParameteri(gl.TEXTURE_2D, gl.TEXTURE_WRAP_S, gl.CLAMP_TO_EDGE);
        gl.texParameteri(gl.TEXTURE_2D, gl.TEXTURE_WRAP_T, gl.CLAMP_TO_EDGE);
        return texture;
    }

    /** Room for a frame: what release was given last, where it fits. @param {boolean} isPlanar @param {number} width @param {number} height */
    #room(isPlanar, width, height) {
        const gl = this.#gl;
        const fits = this.#free.findIndex(other =>
            (other.textures.length === 3) === isPlanar && other.width === width && other.height === height);
        if (fits >= 0)
            return this.#free.splice(fits, 1)[0];
        const levels = Math.floor(Math.log2(Math.min(width, height) / 2)) + 1;
        const made = (/** @type {number} */ format, /** @type {number} */ scale) =>
            this.#texture(format, width / scale, height / scale, Math.min(levels, 5));
        const textures = isPlanar ? [made(gl.R8, 1), made(gl.R8, 2), made(gl.R8, 2)] : [made(gl.RGBA8, 1)];
        // A third for the smaller copies.
        const bytes = Math.round(width * height * (isPlanar ? 1.5 : 4) * 4 / 3);
        return {textures, bytes, width, height, conversion: null, hasCopies: false};
    }

    /** @param {VideoFrame | HTMLVideoElement} image @param {number} width @param {number} height @returns {GlPicture} */
    #uploadPicture(image, width, height) {
        const gl = this.#gl;
        const room = this.#room(false, width, height);
        gl.activeTexture(gl.TEXTURE0);
        gl.bindTexture(gl.TEXTURE_2D, room.textures[0]);
        gl.texSubImage2D(gl.TEXTURE_2D, 0, 0, 0, width, height, gl.RGBA, gl.UNSIGNED_BYTE, image);
        return Object.assign(room, {conversion: null, hasCopies: false});
    }

    /** @param {VideoFrame} frame  I420 @returns {Promise<GlPicture>} */
    async #uploadPlanes(frame) {
        const gl = this.#gl;
        const {width, height} = frame.visibleRect ?? {width: frame.codedWidth, height: frame.codedHeight};
        const size = frame.allocationSize();
        if (this.#scratch?.byteLength !== size)
            this.#scratch = new ArrayBuffer(size);
        const bytes = new Uint8Array(this.#scratch);
        const layout = await frame.copyTo(bytes);
        const room = this.#room(true, width, height);
        gl.pixelStorei(gl.UNPACK_ALIGNMENT, 1);
        room.textures.forEach((texture, plane) => {
            const scale = plane === 0 ? 1 : 2;
            const {offset, stride} = layout[plane];
            gl.activeTexture(gl.TEXTURE0);
            gl.bindTexture(gl.TEXTURE_2D, texture);
            gl.pixelStorei(gl.UNPACK_ROW_LENGTH, stride);
            gl.texSubImage2D(gl.TEXTURE_2D, 0, 0, 0, width / scale, height / scale, gl.RED, gl.UNSIGNED_BYTE, bytes, offset);
        });
        gl.pixelStorei(gl.UNPACK_ROW_LENGTH, 0);
        return Object.assign(room, {conversion: conversionOf(frame.colorSpace, width, height), hasCopies: false});
    }
}

/** @param {WebGL2RenderingContext} gl */
const programsOf = gl => ({planes: new Program(gl, planesShader), picture: new Program(gl, pictureShader)});

class Program {
    #gl;
    /** @type {Map<string, WebGLUniformLocation | null>} */
    #places = new Map();

    /** @param {WebGL2RenderingContext} gl @param {string} fragmentShader */
    constructor(gl, fragmentShader) {
        this.#gl = gl;
        this.handle = gl.createProgram();
        for (const [kind, text] of /** @type {[number, string][]} */ (
            [[gl.VERTEX_SHADER, vertexShader], [gl.FRAGMENT_SHADER, fragmentShader]])) {
            const shader = gl.createShader(kind);
            if (!shader)
                continue;
            gl.shaderSource(shader, text);
            gl.compileShader(shader);
            gl.attachShader(this.handle, shader);
        }
        gl.linkProgram(this.handle);
        if (!gl.getProgramParameter(this.handle, gl.LINK_STATUS) && !gl.isContextLost())
            throw new Error(`the warp's shader: ${gl.getProgramInfoLog(this.handle)}`);
    }

    /** @param {string} name */
    at(name) {
        let place = this.#places.get(name);
        if (place === undefined)
            this.#places.set(name, place = this.#gl.getUniformLocation(this.handle, name));
        return place;
    }
}
