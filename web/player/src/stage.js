import {canvasSize} from "./view.js";

/** Where the picture stands: the canvas, the words over it, and how it fits into the page. */
export class Stage {
    element = document.createElement("div");
    /** None while the player is on no page. @type {HTMLCanvasElement | null} */
    canvas = null;
    #message = document.createElement("div");
    #tags;

    constructor() {
        this.element.className = "stage";
        this.element.part.add("stage");
        this.#tags = ["As recorded", "Steady"].map((text, side) => {
            const tag = document.createElement("span");
            return Object.assign(tag, {className: `tag ${side ? "right" : "left"}`, textContent: text, hidden: true});
        });
        Object.assign(this.#message, {className: "message", role: "alert", hidden: true});
        this.#message.part.add("message");
        this.element.append(...this.#tags, this.#message);
    }

    addCanvas() {
        this.canvas = document.createElement("canvas");
        this.canvas.setAttribute("role", "img");
        this.canvas.tabIndex = -1;
        this.element.prepend(this.canvas);
        return this.canvas;
    }

    removeCanvas() {
        this.canvas?.remove();
        this.canvas = null;
    }

    /** Covers the picture with what went wrong; null: nothing did. @param {string | null} text */
    say(text) {
        this.#message.textContent = text;
        this.#message.hidden = text === null;
    }

    get isSaying() { return !this.#message.hidden; }

    /**
     * Takes the shape of a picture, and leaves the page to scroll across the sweep by touch.
     * @param {{width: number, height: number}} picture
     * @param {"x" | "y"} axis  of the sweep
     */
    shape({width, height}, axis) {
        this.element.style.setProperty("--aspect", `${width} / ${height}`);
        if (this.canvas)
            this.canvas.style.touchAction = axis === "x" ? "pan-y" : "pan-x";
    }

    /**
     * Fits the canvas into the stage.
     * @param {{width: number, height: number}} picture
     * @returns {{left: number, width: number}}  where the canvas stands on the stage, CSS pixels
     */
    fit(picture) {
        const {clientWidth, clientHeight} = this.element;
        const {css, width, height} = canvasSize(picture, clientWidth, clientHeight, devicePixelRatio);
        const {canvas} = this;
        if (canvas) {
            canvas.style.width = `${css.width}px`;
            canvas.style.height = `${css.height}px`;
            if (canvas.width !== width || canvas.height !== height)
                Object.assign(canvas, {width, height});
        }
        return {left: (clientWidth - css.width) / 2, width: css.width};
    }

    /** Says which picture is which. @param {{steady: boolean, compare: boolean, isReady: boolean}} look */
    label({steady, compare, isReady}) {
        this.canvas?.setAttribute("aria-label",
            `Sweep, ${compare ? "half as recorded, half steady" : steady ? "steady" : "as recorded"}`);
        const [recorded, steadied] = this.#tags;
        recorded.hidden = !isReady || !compare && steady;
        steadied.hidden = !isReady || !compare;
    }
}
