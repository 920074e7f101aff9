import {askToTilt, canTilt} from "./lookAround.js";

/**
 * The buttons below the picture, and the boundary of a comparison on it. They show what the player tells them and ask
 * it for what the user wants.
 *
 * @typedef {object} ControlState
 * @property {number} count
 * @property {number} index
 * @property {boolean} paused
 * @property {boolean} isReady
 * @property {import("./playback.js").Repeat} repeat
 * @property {boolean} steady
 * @property {boolean} compare
 * @property {number} split
 * @property {number} speed
 * @property {boolean} isTilting
 *
 * @typedef {object} ControlRequests
 * @property {() => void} toggle
 * @property {(index: number) => void} seek
 * @property {() => void} cycleRepeat
 * @property {() => void} toggleSteady
 * @property {() => void} toggleCompare
 * @property {(share: number) => void} setSplit
 * @property {(speed: number) => void} setSpeed
 * @property {(on: boolean) => void} setTilt
 * @property {() => void} toggleFullscreen
 */

const SPEEDS = [0.25, 0.5, 1, 2];

const icons = {
    play: '<path class="solid" d="M7 4l13 8-13 8z"/>',
    pause: '<path d="M8 5v14M16 5v14"/>',
    once: '<path d="M4 12h15M14 7l5 5-5 5"/>',
    loop: '<path d="M4 11a7 7 0 0 1 7-6h6M14 2l3 3-3 3M20 13a7 7 0 0 1-7 6H7M10 22l-3-3 3-3"/>',
    "back-and-forth": '<path d="M3 12h18M7 8l-4 4 4 4M17 8l4 4-4 4"/>',
    steady: '<path d="M4 8V4h4M16 4h4v4M20 16v4h-4M8 20H4v-4M8 13l3 3 5-7"/>',
    compare: '<path d="M12 3v18M4 6h4v12H4M20 6h-4v12h4"/>',
    tilt: '<path d="M9 3h6v18H9zM4 8l-2 4 2 4M20 8l2 4-2 4"/>',
    fullscreen: '<path d="M4 9V4h5M15 4h5v5M20 15v5h-5M9 20H4v-5"/>',
};

const repeatNames = {once: "Play once", loop: "Loop", "back-and-forth": "Back and forth"};

const markup = `
<div class="controls" part="controls" role="group" aria-label="Playback">
  <button type="button" data-name="toggle"></button>
  <input class="scrubber" part="scrubber" type="range" min="0" step="1" aria-label="Frame">
  <output></output>
  <button type="button" data-name="repeat"></button>
  <button type="button" data-name="steady" aria-label="Steady" title="Steady"></button>
  <button type="button" data-name="compare" aria-label="Compare with as recorded" title="Compare with as recorded"></button>
  <select aria-label="Speed" title="Speed"></select>
  <button type="button" data-name="tilt" aria-label="Look around by tilting the device" title="Look around by tilting" aria-pressed="false"></button>
  <button type="button" data-name="fullscreen" aria-label="Full screen" title="Full screen"></button>
</div>`;

/** @param {HTMLElement} button @param {string} icon */
function setIcon(button, icon) {
    if (button.dataset.icon === icon)
        return;
    button.dataset.icon = icon;
    button.innerHTML = `<svg viewBox="0 0 24 24" aria-hidden="true">${icons[/** @type {keyof typeof icons} */ (icon)]}</svg>`;
}

/** @param {HTMLElement} button @param {string} label */
function setLabel(button, label) {
    button.title = label;
    button.setAttribute("aria-label", label);
}

export class Controls {
    #requests;
    #root;
    /** @type {HTMLInputElement} */
    #scrubber;
    /** @type {HTMLOutputElement} */
    #number;
    /** @type {HTMLSelectElement} */
    #speed;
    /** @type {HTMLElement} */
    #split;

    /**
     * @param {HTMLElement} stage   holds the picture
     * @param {ShadowRoot} root     gets the buttons
     * @param {ControlRequests} requests
     */
    constructor(stage, root, requests) {
        this.#requests = requests;
        const holder = document.createElement("template");
        holder.innerHTML = markup;
        root.append(holder.content);
        this.#root = root;
        const find = (/** @type {string} */ selector) => /** @type {any} */ (root.querySelector(selector));
        this.#scrubber = find(".scrubber");
        this.#number = find("output");
        this.#speed = find("select");
        this.#speed.append(...SPEEDS.map(speed => new Option(`${speed}×`, String(speed))));
        this.#split = document.createElement("div");
        this.#split.className = "split";
        Object.assign(this.#split, {tabIndex: 0, role: "slider", ariaLabel: "As recorded on the left, steady on the right",
            ariaValueMin: "0", ariaValueMax: "100", ariaOrientation: "horizontal"});
        stage.insertBefore(this.#split, stage.querySelector("[role=alert]"));
        for (const name of ["fullscreen", "tilt", "compare", "steady"])
            setIcon(this.#button(name), name);
        this.#button("tilt").hidden = !canTilt();
        this.#button("fullscreen").hidden = !document.fullscreenEnabled;
        this.#listen(stage);
    }

    /** @param {ControlState} state */
    update(state) {
        const toggle = this.#button("toggle");
        setIcon(toggle, state.paused ? "play" : "pause");
        setLabel(toggle, state.paused ? "Play" : "Pause");
        setIcon(this.#button("repeat"), state.repeat);
        setLabel(this.#button("repeat"), repeatNames[state.repeat]);
        this.#button("steady").setAttribute("aria-pressed", String(state.steady));
        this.#button("compare").setAttribute("aria-pressed", String(state.compare));
        this.#button("tilt").setAttribute("aria-pressed", String(state.isTilting));
        for (const control of [...this.#root.querySelectorAll("button"), this.#scrubber, this.#speed])
            control.disabled = !state.isReady;
        this.#scrubber.max = String(Math.max(0, state.count - 1));
        this.showPlace(state);
        if (![...this.#speed.options].some(option => Number(option.value) === state.speed))
            this.#speed.add(new Option(`${state.speed}×`, String(state.speed)));
        this.#speed.value = String(state.speed);
        this.#split.hidden = !state.compare || !state.isReady;
        this.#split.ariaValueNow = String(Math.round(100 * state.split));
    }

    /** Another picture, all else as it was. @param {Pick<ControlState, "count" | "index" | "isReady">} place */
    showPlace({count, index, isReady}) {
        const number = `${isReady ? index + 1 : 0} / ${count}`;
        this.#scrubber.value = String(index);
        this.#scrubber.setAttribute("aria-valuetext", `Frame ${number.replace("/", "of")}`);
        this.#number.textContent = number;
    }

    /** Where the boundary stands on the stage. @param {number} left  pixels */
    placeSplit(left) {
        this.#split.style.left = `${left}px`;
    }

    /** @param {string} name @returns {HTMLButtonElement} */
    #button(name) {
        return /** @type {any} */ (this.#root.querySelector(`[data-name="${name}"]`));
    }

    /** @param {HTMLElement} stage */
    #listen(stage) {
        const requests = this.#requests;
        const onClick = (/** @type {string} */ name, /** @type {() => void} */ ask) =>
            this.#button(name).addEventListener("click", ask);
        onClick("toggle", requests.toggle);
        onClick("repeat", requests.cycleRepeat);
        onClick("steady", requests.toggleSteady);
        onClick("compare", requests.toggleCompare);
        onClick("fullscreen", requests.toggleFullscreen);
        onClick("tilt", async () => {
            const isTilting = this.#button("tilt").ariaPressed === "true";
            requests.setTilt(!isTilting && await askToTilt());
        });
        this.#scrubber.addEventListener("input", () => requests.seek(Number(this.#scrubber.value)));
        this.#speed.addEventListener("change", () => requests.setSpeed(Number(this.#speed.value)));
        this.#split.addEventListener("pointerdown", event => {
            event.stopPropagation();
            this.#split.setPointerCapture(event.pointerId);
        });
        this.#split.addEventListener("pointermove", event => {
            if (!this.#split.hasPointerCapture(event.pointerId))
                return;
            const box = (stage.querySelector("canvas") ?? stage).getBoundingClientRect();
            requests.setSplit((event.clientX - box.left) / box.width);
        });
        this.#split.addEventListener("keydown", event => {
            const step = {ArrowLeft: -0.05, ArrowRight: 0.05, Home: -1, End: 1}[event.key];
            if (step === undefined)
                return;
            event.preventDefault();
            event.stopPropagation();
            requests.setSplit(Number(this.#split.ariaValueNow) / 100 + step);
        });
    }
}
