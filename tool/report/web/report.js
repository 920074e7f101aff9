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
    if (data.feedbackStep === null)
        return data.smoothing;
    return `step ${data.feedbackStep} of 0 to ${data.feedbackSteps} passed` +
        (data.feedbackStep === 0 ? ", the smoothest" : "");
}

function repeatedText() {
    return data.repeatedMotions === 0
        ? "none" : `${data.repeatedMotions} of ${data.frames} frames (${percent(data.repeatedMotions, data.frames)})`;
}

function summaryRows() {
    const {crop, capture} = data;
    return [
        ["Video", capture ? capture.video : "unknown: there is no sweep.json"],
        ["Size", `${data.width} × ${data.height} px`],
        ["Frames", data.frames + (capture && capture.truncated ? ", the video has more" : "")],
        ["Rendered", `${data.rendered} in the range ${data.first} to ${data.last}`],
        ["Direction", data.direction],
        ["Orientation", data.orientation + (data.flipped ? ", front camera's preview mirrored" : "")],
        ["Crop kept", `${percent(crop.width, data.width)} of the width, ${percent(crop.height, data.height)} of the height`],
        ["Smoothing", smoothingText()],
        ["Repeated motions", repeatedText()],
    ];
}

function fillWords() {
    const name = data.capture ? data.capture.video : "A captured sweep";
    document.title = name + " – sweep report";
    byId("title").textContent = name;
    for (const [label, text] of summaryRows()) {
        const row = element("div");
        row.append(element("dt", label), element("dd", text));
        byId("summary").append(row);
    }
    if (data.feedbackStep === null)
        warn(`the frames are not corrected, smoothing is ${data.smoothing}.`);
    if (data.repeatedWarning !== null)
        warn(data.repeatedWarning + ".");
}

function warn(text) {
    byId("warnings").append(element("p", "Warning: " + text, "warning"));
}

// ---- Plots ----

const colours = {
    measured: "#8a929e", gaussian: "#d98a1c", smoothed: "#3b82d8", repeated: "#d6336c", limit: "#d14b3d",
    left: "#3b82d8", right: "#d98a1c", top: "#2f9e6e", bottom: "#9a63d6",
};
const lineWidth = 1.75;
const angle = {key: "angle", name: "angle", unit: "degrees"};
const horizontal = {key: "x", name: "x, to the right", unit: "pixels"};
const vertical = {key: "y", name: "y, down", unit: "pixels"};
const axes = [horizontal, vertical, angle];

const line = (label, values, colour, more) =>
    ({label, values, colour, ...more});
const level = (label, value) =>
    line(label, new Array(data.frames).fill(value), colours.limit, {dash: [6, 5]});

/// No line at all where no motion is repeated. Comes before the lines, which are then drawn over it.
function repeatedMarks(values) {
    const marked = values.map((value, i) => data.repeated[i] ? value : null);
    const some = marked.some(value => value !== null);
    return some ? [line("repeated motion", marked, colours.repeated, {marks: true})] : [];
}

function pathPlot(axis) {
    const of = track => data[track][axis.key];
    return {title: `Path, ${axis.name}`, unit: axis.unit, lines: [
        ...repeatedMarks(of("measured")),
        line("measured", of("measured"), colours.measured),
        line("Gaussian", of("gaussian"), colours.gaussian, {dash: [5, 4]}),
        line("smoothed", of("smoothed"), colours.smoothed),
    ]};
}

function correctionPlot(axis) {
    const {crop, width, height} = data;
    const lines = [line("correction", data.correction[axis.key], colours.smoothed)];
    if (axis === horizontal)
        lines.push(level("left margin", crop.x), level("right margin", crop.x + crop.width - width));
    if (axis === vertical)
        lines.push(level("top margin", crop.y), level("bottom margin", crop.y + crop.height - height));
    return {title: `Correction, ${axis.name}`, unit: axis.unit, lines};
}

function roomPlot() {
    return {title: "Room between the crop and the frame's edge", unit: "pixels", lines:
        ["left", "right", "top", "bottom"].map(side => line(side, data.room[side], colours[side]))};
}

function motionPlot(axis) {
    const values = data.motion[axis.key];
    return {title: `Motion, ${axis.name}`, unit: axis.unit + " a frame", lines: [
        ...repeatedMarks(values), line("measured", values, colours.smoothed),
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
        points: {show: dots, size: 7, fill: colour, stroke: colour},
        value: (plot, value) => value === null || value === undefined ? "–" : Number(value.toFixed(4)).toString(),
    };
}

/// Room for the longest label of the y axis.
function yAxisSize(plot, labels) {
    const longest = Math.max(0, ...(labels || []).map(label => label.length));
    return 24 + 7 * Math.max(4, longest);
}

/// A constant is drawn in the middle.
const valueRange = (plot, low, high) =>
    low === high ? [low - 1, high + 1] : uPlot.rangeNum(low, high, 0.1, true);

const plotWidth = host => Math.max(280, host.clientWidth - 26);

function addPlot(section, {title, unit, lines}) {
    const host = element("div", undefined, "plot");
    host.append(element("h3", title));
    byId(section).append(host);
    const frames = Array.from({length: data.frames}, (none, i) => i);
    const plot = new uPlot({
        width: plotWidth(host), height: 230,
        cursor: {sync: {key: "frames"}},
        scales: {x: {time: false}, y: {range: valueRange}},
        axes: [{...axisOptions("frame"), size: 34}, {...axisOptions(unit), size: yAxisSize}],
        series: [{label: "frame"}, ...lines.map(seriesOptions)],
    }, [frames, ...lines.map(({values}) => values)], host);
    return {host, plot, title};
}

function addPlots() {
    const plots = [
        ...axes.map(axis => addPlot("path", pathPlot(axis))),
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
    const {crop, width, height} = data;
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
    for (const {frame, recorded, steady} of data.pictures.strip) {
        const figure = element("figure");
        figure.append(picture(recorded, `Frame ${frame} as recorded`), picture(steady, `Frame ${frame} as shown`),
            element("figcaption", `frame ${frame}`));
        byId("strip").append(figure);
    }
}

// ---- Time ----

const stageNames = {
    decode: "decode the video", measure: "measure the motion", feed: "hand frames over",
    waitForEncoder: "wait for the encoder", finishVideo: "finish the video", smooth: "smooth the path",
    renderMatrices: "compute the matrices", cleanUp: "clean up", other: "everything else", total: "total",
};

const milliseconds = seconds => (1000 * seconds).toFixed(seconds < 0.01 ? 2 : 0) + " ms";

function stageSeconds() {
    const {total, ...stages} = data.capture.seconds;
    const known = Object.values(stages).reduce((sum, seconds) => sum + seconds, 0);
    return {...stages, other: Math.max(0, total - known), total};
}

function fillTime() {
    if (!data.capture) {
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
fillTime();
window.reportPlots = addPlots();
playAlong(window.reportPlots);
})();
