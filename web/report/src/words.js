// Title, verdict, warnings and the summary's table.
import {byId, data, element, percent} from "./page.js";

function smoothingText() {
    if (data.refined)
        return "planned over the whole sweep";
    if (data.feedbackStep === null)
        return data.smoothing;
    return data.feedbackStep === 0 ? "full strength"
        : `eased ${data.feedbackStep} of ${data.feedbackSteps} times, to keep enough of the view`;
}

function unmeasuredText() {
    const {summary, refined} = data;
    const count = refined ? refined.unmeasured : summary.repeatedMotions;
    return count === 0 ? "none" : `${count} of ${summary.frames} frames (${percent(count, summary.frames)})`;
}

function versionsText() {
    const {captureKnown, summary, refined, toolVersion} = data;
    const capture = summary.schema ? `orbitwalk ${summary.toolVersion}, sweep.json schema ${summary.schema}` : "an earlier version";
    return `report by orbitwalk ${toolVersion}` + (captureKnown ? `; captured by ${capture}` : "") +
        (refined ? `; refined by orbitwalk ${refined.toolVersion}` : "");
}

function summaryRows() {
    const {crop, summary, captureKnown} = data;
    const {width, height} = summary;
    return [
        ["Video", captureKnown ? summary.video : "unknown: there is no sweep.json"],
        ["Versions", versionsText()],
        ["Size", `${width} × ${height} px`],
        ["Frames", summary.frames + (summary.truncated ? ", the video has more" : "")],
        ["Shown", `${summary.rendered} in the range ${summary.first} to ${summary.last}`],
        ["Direction", data.direction],
        ["Orientation", data.orientation + (data.flipped ? ", front camera's preview mirrored" : "")],
        ["View kept", `${percent(crop.width, width)} of the width, ${percent(crop.height, height)} of the height`],
        ["Smoothing", smoothingText()],
        ["Motions not measured", unmeasuredText()],
    ];
}

export function fillWords() {
    const {summary, verdict} = data;
    const name = data.captureKnown ? summary.video : "A captured sweep";
    document.title = name + " – sweep report";
    byId("title").textContent = name;
    byId("verdict").textContent = verdict.text;
    byId("verdict").classList.toggle("not", !verdict.steadier);
    for (const [label, text] of summaryRows()) {
        const row = element("div");
        row.append(element("dt", label), element("dd", text));
        byId("summary").append(row);
    }
    if (data.feedbackStep === null && !data.refined)
        warn(`the frames are not corrected, smoothing is ${data.smoothing}.`);
    if (data.repeatedWarning !== null && !data.refined)
        warn(data.repeatedWarning + ".");
    if (summary.direction === "vertical")
        warn("the camera went up or down: a vertical sweep is not supported.");
    if (!summary.complete)
        warn("the video ended early or was damaged: the sweep holds what could be read.");
}

function warn(text) {
    byId("warnings").append(element("p", "Warning: " + text, "warning"));
}
