// The plots, each by its title, unit and lines.
import {data} from "./page.js";

const colours = {
    measured: "#8a929e", gaussian: "#d98a1c", smoothed: "#3b82d8", repeated: "#d6336c", zero: "#7d8794",
    left: "#3b82d8", right: "#d98a1c", top: "#2f9e6e", bottom: "#9a63d6",
};
const angle = {key: "angle", name: "angle", unit: "degrees"};
const horizontal = {key: "x", name: "x, to the right", unit: "pixels"};
const vertical = {key: "y", name: "y, down", unit: "pixels"};
const axes = [horizontal, vertical, angle];
const {pathExtent} = data.summary;
const sweepAxis = pathExtent.y > pathExtent.x ? vertical : horizontal;
export const frames = Array.from({length: data.summary.frames}, (none, i) => i);

const line = (label, values, colour, more) =>
    ({label, values, colour, ...more});
const level = (label, value, colour, dash) =>
    line(label, new Array(frames.length).fill(value), colour, {dash});

/** No line at all where no motion is repeated. Comes before the lines, which are then drawn over it. */
function repeatedMarks(values) {
    const marked = values.map((value, i) => data.repeated[i] ? value : null);
    const count = marked.filter(value => value !== null).length;
    return count > 0 ? [line("repeated motion", marked, colours.repeated, {marks: count > 40 ? 4 : 7})] : [];
}

/** Of the refinement: as recorded, by the engine's record, by the refined one. */
const trackLines = (track, axis) => data.refined.tracks.map((each, i) =>
    line(each.name, each[track][axis.key], [colours.measured, colours.gaussian, colours.smoothed][i], {dash: i === 1 ? [5, 4] : undefined}));

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

/** About their mean distance: where the first frame stands is chance. */
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

/** Residual against the share kept: the plans as a curve, the two records as points. */
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

function refinedPlots() {
    const shift = {key: "shift", name: "shift", unit: "pixels"};
    return [
        ...axes.map(axis => ({section: "change", ...changePlot(axis)})),
        ...[shift, angle].map(axis => ({section: "tradeoff", ...tradeOffPlot(axis)})),
    ];
}

/** Each with the id of its section; the axis of the sweep comes first. */
export function allPlots() {
    const across = axes.filter(axis => axis !== sweepAxis);
    return [
        {section: "path", ...pathPlot(sweepAxis)},
        {section: "path", ...shakePlot()},
        ...across.map(axis => ({section: "path", ...pathPlot(axis)})),
        ...(data.refined ? refinedPlots() : []),
        ...axes.map(axis => ({section: "correction", ...correctionPlot(axis)})),
        {section: "correction", ...roomPlot()},
        ...axes.map(axis => ({section: "motion", ...motionPlot(axis)})),
    ];
}
