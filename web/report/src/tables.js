// What a refinement leaves, and the time that each stage took.
import {byId, data, element, percent} from "./page.js";

export function fillRefined() {
    if (!data.refined)
        return;
    for (const section of document.querySelectorAll(".refined"))
        section.removeAttribute("hidden");
    byId("path-words").textContent = "Where the centre of the picture stands relative to the first frame shown: as recorded, " +
        `as the engine's record shows it, and as the refined one does, by the motions measured in ${data.refined.video}.`;
    const table = element("table");
    const head = table.createTHead().insertRow();
    for (const title of ["", "residual", "remains", "turn", "kept of width and height"])
        head.append(element("th", title));
    const [{residual: recorded}] = data.refined.tracks;
    const body = table.createTBody();
    for (const {name, residual, keep} of data.refined.tracks) {
        const row = body.insertRow();
        for (const text of [name, residual.shift.toFixed(2) + " px",
            recorded.shift > 0 ? percent(residual.shift, recorded.shift) : "–", residual.angle.toFixed(3) + "°", percent(keep, 1)])
            row.insertCell().textContent = text;
    }
    byId("remains").append(table);
}

const stageNames = {
    decode: "decode the video", measure: "measure the motion", feed: "hand frames over",
    waitForEncoder: "wait for the encoder", finishVideo: "finish the video", smooth: "smooth the path",
    renderMatrices: "compute the matrices", cleanUp: "clean up", other: "everything else", total: "total",
};

const milliseconds = seconds => (1000 * seconds).toFixed(seconds < 0.01 ? 2 : 0) + " ms";

function stageSeconds() {
    const {total, ...stages} = data.summary.seconds;
    const known = Object.values(stages).reduce((sum, seconds) => sum + seconds, 0);
    return {...stages, other: Math.max(0, total - known), total};
}

export function fillTime() {
    if (!data.captureKnown) {
        byId("time").append(element("p", "The times are unknown: there is no sweep.json beside the sweep."));
        return;
    }
    const seconds = stageSeconds();
    const table = element("table");
    for (const [stage, value] of Object.entries(seconds)) {
        const row = table.insertRow();
        row.insertCell().textContent = stageNames[stage] || stage;
        row.insertCell().textContent = milliseconds(value);
        const bar = element("div", undefined, "bar");
        bar.style.width = (seconds.total > 0 ? 100 * value / seconds.total : 0) + "%";
        row.insertCell().append(bar);
    }
    byId("time").append(table);
}
