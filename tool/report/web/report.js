"use strict";

(() => {
const data = JSON.parse(document.getElementById("data").textContent);
const byId = id => document.getElementById(id);

function element(name, text, className) {
    const made = document.createElement(name);
    if (text !== undefined)
        made.textContent = text;
    if (className)
        made.className = className;
    return made;
}

// ---- Words ----

const percent = (part, whole) => (100 * part / whole).toFixed(1) + " %";

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

function fillWords() {
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

// ---- Plots ----

const colours = {
    measured: "#8a929e", gaussian: "#d98a1c", smoothed: "#3b82d8", repeated: "#d6336c", zero: "#7d8794",
    left: "#3b82d8", right: "#d98a1c", top: "#2f9e6e", bottom: "#9a63d6",
};
const lineWidth = 1.75;
const angle = {key: "angle", name: "angle", unit: "degrees"};
const horizontal = {key: "x", name: "x, to the right", unit: "pixels"};
const vertical = {key: "y", name: "y, down", unit: "pixels"};
const axes = [horizontal, vertical, angle];
const {pathExtent} = data.summary;
const sweepAxis = pathExtent.y > pathExtent.x ? vertical : horizontal;
/// The axis of the sweep first.
const pathAxes = [sweepAxis, ...axes.filter(axis => axis !== sweepAxis)];
const frames = Array.from({length: data.summary.frames}, (none, i) => i);

const line = (label, values, colour, more) =>
    ({label, values, colour, ...more});
const level = (label, value, colour, dash) =>
    line(label, new Array(frames.length).fill(value), colour, {dash});

/// No line at all where no motion is repeated. Comes before the lines, which are then drawn over it.
function repeatedMarks(values) {
    const marked = values.map((value, i) => data.repeated[i] ? value : null);
    const count = marked.filter(value => value !== null).length;
    return count > 0 ? [line("repeated motion", marked, colours.repeated, {marks: count > 40 ? 4 : 7})] : [];
}

/// Of the refinement: as recorded, by the engine's record, by the refined one.
const trackLines = (track, axis) => data.refined.tracks.map(({name, [track]: values}, i) =>
    line(name, values[axis.key], [colours.measured, colours.gaussian, colours.smoothed][i], {dash: i === 1 ? [5, 4] : undefined}));

function pathPlot(axis) {
    const of = track => data[track][axis.key];
    const lines = data.refined ? trackLines("path", axis) : [
        ...repeatedMarks(of("measured")),
        line("measured", of("measured"), colours.measured),
        line("Gaussian", of("gaussian"), colours.gaussian, {dash: [5, 4]}),
        line("smoothed", of("smoothed"), colours.smoothed),
    ];
    return {title: `Path, ${axis.name}`, unit: axis.unit, lines};
}

/// About their mean distance: where the first frame stands is chance.
function residual(values, smoothed) {
    const apart = values.map((value, i) => value === null || smoothed[i] === null ? null : value - smoothed[i]);
    const known = apart.filter(value => value !== null);
    const mean = known.reduce((sum, value) => sum + value, 0) / known.length;
    return apart.map(value => value === null ? null : value - mean);
}

function shakePlot() {
    const {key, name, unit} = sweepAxis;
    // The stabiliser's own path lags behind, by more than the shake where the camera moves fast.
    const [recorded, smooth] = data.refined
        ? [data.refined.tracks[0].path[key], data.refined.tracks[2].path[key]] : [data.measured[key], data.gaussian[key]];
    const shake = residual(recorded, smooth);
    return {title: `Shake along the sweep, ${name}`, unit, lines: [
        ...(data.refined ? [] : repeatedMarks(shake)),
        level(data.refined ? "refined path" : "Gaussian path", 0, colours.zero, [6, 5]),
        line(data.refined ? "as recorded" : "measured", shake, colours.smoothed),
    ]};
}

function correctionPlot(axis) {
    const {crop, summary: {width, height}} = data;
    const lines = [line("correction", data.correction[axis.key], axis === angle ? colours.smoothed : colours.measured)];
    if (axis === horizontal)
        lines.push(level("left margin", crop.x, colours.left, [10, 5]),
            level("right margin", crop.x + crop.width - width, colours.right, [3, 4]));
    if (axis === vertical)
        lines.push(level("top margin", crop.y, colours.top, [10, 5]),
            level("bottom margin", crop.y + crop.height - height, colours.bottom, [3, 4]));
    return {title: `Correction, ${axis.name}`, unit: axis.unit, lines};
}

function roomPlot() {
    const dashes = {right: [3, 4], bottom: [3, 4]};
    return {title: "Room between the crop and the frame's edge", unit: "pixels", lines:
        ["left", "right", "top", "bottom"].map(side => line(side, data.room[side], colours[side], {dash: dashes[side]}))};
}

function motionPlot(axis) {
    const values = data.motion[axis.key];
    return {title: `Motion, ${axis.name}`, unit: axis.unit + " a frame", lines: [
        ...repeatedMarks(values), line("measured", values, colours.smoothed),
    ]};
}

const changePlot = axis =>
    ({title: `Change of motion, ${axis.name}`, unit: axis.unit, lines: trackLines("change", axis)});

/// Residual against the share kept: the plans as a curve, the two records as points.
function tradeOffPlot({key, name, unit}) {
    const {plans, tracks: [, engine, refined]} = data.refined;
    const sets = [plans, [engine], [refined]];
    const kept = [...new Set(sets.flat().map(({keep}) => 100 * keep))].sort((p, q) => p - q);
    // A logarithm has no place for 0.
    const valuesOf = set => kept.map(share => {
        const one = set.find(({keep}) => 100 * keep === share);
        return one && one.residual[key] > 0 ? one.residual[key] : null;
    });
    const [curve, engines, chosen] = sets.map(valuesOf);
    return {title: `Residual against view kept, ${name}`, unit, xs: kept, xLabel: "% of width and height kept", log: true, lines: [
        line("steadiest path", curve, colours.smoothed),
        line("engine's record", engines, colours.gaussian, {marks: 10}),
        line("chosen", chosen, colours.repeated, {marks: 10}),
    ]};
}

const colourOf = name => () => getComputedStyle(document.documentElement).getPropertyValue(name);

function axisOptions(label) {
    return {
        label, labelSize: 20, labelFont: "12px system-ui, sans-serif", font: "12px system-ui, sans-serif",
        stroke: colourOf("--faint"), grid: {stroke: colourOf("--grid"), width: 1},
        ticks: {stroke: colourOf("--grid"), width: 1},
    };
}

function seriesOptions({label, values, colour, dash, marks}) {
    // A single value makes no line.
    const dots = marks || values.filter(value => value !== null).length === 1;
    return {
        label, stroke: colour, dash, width: lineWidth, spanGaps: true,
        paths: marks ? () => null : undefined,
        points: {show: Boolean(dots), size: marks || 7, fill: colour, stroke: colour},
        value: (plot, value) => value === null || value === undefined ? "–" : Number(value.toFixed(4)).toString(),
    };
}

/// What a line looks like, for its legend.
function marker({colour, dash, marks}) {
    const made = (name, attributes) => {
        const one = document.createElementNS("http://www.w3.org/2000/svg", name);
        for (const [key, value] of Object.entries(attributes))
            one.setAttribute(key, value);
        return one;
    };
    const picture = made("svg", {width: 30, height: 10, "aria-hidden": "true"});
    picture.append(marks ? made("circle", {cx: 15, cy: 5, r: Math.min(4, Math.max(2.5, marks / 2)), fill: colour})
        : made("path", {d: "M1 5H29", stroke: colour, "stroke-width": 2, "stroke-dasharray": (dash || []).join(" ")}));
    return picture;
}

function showLineStyles(host, lines) {
    const markers = [...host.querySelectorAll(".u-series .u-marker")].slice(-lines.length);
    markers.forEach((place, i) => {
        place.removeAttribute("style");
        place.replaceChildren(marker(lines[i]));
    });
}

/// Room for the longest label of the y axis.
function yAxisSize(plot, labels) {
    const longest = Math.max(0, ...(labels || []).map(label => label.length));
    return 24 + 7 * Math.max(4, longest);
}

/// A constant is drawn in the middle.
const valueRange = (plot, low, high) =>
    low === high ? [low - 1, high + 1] : uPlot.rangeNum(low, high, 0.1, true);

/// Of a logarithm's ticks, the smallest too; those between the powers have no label.
const digits = (plot, ticks) => ticks.map(tick => tick === null ? "" : Number(tick.toPrecision(1)).toString());

const plotWidth = host => Math.max(280, host.clientWidth - 26);

function addPlot(section, {title, unit, lines, xs = frames, xLabel = "frame", log = false}) {
    const host = element("div", undefined, "plot");
    host.append(element("h3", title));
    byId(section).append(host);
    const plot = new uPlot({
        width: plotWidth(host), height: 230,
        cursor: xs === frames ? {sync: {key: "frames"}} : {},
        scales: {x: {time: false, range: (plot, low, high) => log ? [low - 1, high + 1] : [low, high]}, y: log ? {distr: 3} : {range: valueRange}},
        axes: [{...axisOptions(xLabel), size: 34}, {...axisOptions(unit), size: yAxisSize, ...(log ? {values: digits} : {})}],
        series: [{label: xLabel}, ...lines.map(seriesOptions)],
    }, [xs, ...lines.map(({values}) => values)], host);
    showLineStyles(host, lines);
    return {host, plot, title, byFrame: xs === frames};
}

function addRefinedPlots() {
    const shift = {key: "shift", name: "shift", unit: "pixels"};
    return [
        ...axes.map(axis => addPlot("change", changePlot(axis))),
        ...[shift, angle].map(axis => addPlot("tradeoff", tradeOffPlot(axis))),
    ];
}

function addPlots() {
    const [along, ...others] = pathAxes;
    const plots = [
        addPlot("path", pathPlot(along)), addPlot("path", shakePlot()),
        ...others.map(axis => addPlot("path", pathPlot(axis))),
        ...(data.refined ? addRefinedPlots() : []),
        ...axes.map(axis => addPlot("correction", correctionPlot(axis))),
        addPlot("correction", roomPlot()),
        ...axes.map(axis => addPlot("motion", motionPlot(axis))),
    ];
    const fit = width => plots.forEach(({host, plot}) => {
        const size = {width: width || plotWidth(host), height: plot.height};
        if (size.width !== plot.width)
            plot.setSize(size);
    });
    const repaint = () => plots.forEach(({plot}) => plot.redraw(false));
    addEventListener("resize", () => fit());
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", repaint);
    // On paper: in the light colours, at a width that fits the page.
    addEventListener("beforeprint", () => {
        document.documentElement.dataset.print = "";
        fit(640);
        repaint();
    });
    addEventListener("afterprint", () => {
        delete document.documentElement.dataset.print;
        fit();
        repaint();
    });
    return plots;
}

// ---- Player ----

/// The plots' cursors and the player show the same frame, whichever of them is moved.
function playAlong(plots) {
    const player = byId("player");
    let pictures = new Map();
    let pointed = null;
    orbitwalk.openEmbedded(player, "video", "record");
    player.addEventListener("ready", () => {
        pictures = new Map(Array.from({length: player.frameCount}, (none, i) => [player.videoFrame(i), i]));
    });
    player.addEventListener("framechange", ({detail}) => {
        for (const {plot} of pointed ? [] : plots)
            plot.setCursor({left: plot.valToPos(detail.videoFrame, "x"), top: 0}, false);
    });
    const show = frame => {
        const picture = pictures.get(frame);
        if (picture === undefined || picture === player.currentFrame)
            return;
        player.pause();
        player.seekToFrame(picture).catch(() => {});
    };
    for (const {plot} of plots) {
        plot.over.addEventListener("mouseenter", () => { pointed = plot; });
        plot.over.addEventListener("mouseleave", () => { pointed = null; });
        plot.hooks.setCursor = [() => plot === pointed && show(plot.cursor.idx)];
    }
}

// ---- Pictures ----

function fillCrop() {
    const {crop, summary: {width, height}} = data;
    const figure = byId("crop");
    figure.classList.toggle("tall", height > width);
    figure.querySelector("img").src = data.pictures.crop;
    const set = (selector, attributes) => {
        for (const [name, value] of Object.entries(attributes))
            figure.querySelector(selector).setAttribute(name, value);
    };
    set("svg", {viewBox: `0 0 ${width} ${height}`, preserveAspectRatio: "none"});
    set(".rectangle", {x: crop.x, y: crop.y, width: crop.width, height: crop.height});
    set(".outside", {d: `M0 0H${width}V${height}H0Z M${crop.x} ${crop.y}h${crop.width}v${crop.height}h${-crop.width}Z`});
    set(".shown", {points: crop.shown.join(" ")});
    figure.querySelector("figcaption").textContent =
        `Frame ${crop.frame} as the sensor saw it. Yellow: the crop rectangle, ${crop.width} × ${crop.height} at ` +
        `(${crop.x}, ${crop.y}). Dashed: what of this frame is shown there once it is corrected.`;
}

function picture(source, alt) {
    const made = element("img");
    made.src = source;
    made.alt = alt;
    return made;
}

function fillStrip() {
    const labelled = (label, source, frame) => {
        const half = element("div", undefined, "half");
        half.append(picture(source, `Frame ${frame} ${label}`), element("span", label));
        return half;
    };
    for (const {frame, recorded, steady} of data.pictures.strip) {
        const figure = element("figure");
        figure.append(labelled("as recorded", recorded, frame), labelled("as shown", steady, frame),
            element("figcaption", `frame ${frame}`));
        byId("strip").append(figure);
    }
}

// ---- The refinement ----

function fillRefined() {
    if (!data.refined)
        return;
    for (const section of document.querySelectorAll(".refined"))
        section.hidden = false;
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

// ---- Time ----

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

function fillTime() {
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

fillWords();
fillCrop();
fillStrip();
fillRefined();
fillTime();
window.reportPlots = addPlots();
playAlong(window.reportPlots.filter(({byFrame}) => byFrame));
})();
