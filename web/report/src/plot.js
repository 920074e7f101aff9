// One plot, drawn by uPlot.
import uPlot from "uplot";
import {frames} from "./lines.js";
import {byId, element} from "./page.js";

const lineWidth = 1.75;
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

/** What a line looks like, for its legend. */
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

/** Room for the longest label of the y axis. */
function yAxisSize(plot, labels) {
    const longest = Math.max(0, ...(labels || []).map(label => label.length));
    return 24 + 7 * Math.max(4, longest);
}

/** A constant is drawn in the middle. */
const valueRange = (plot, low, high) => /** @type {[number, number]} */ (
    low === high ? [low - 1, high + 1] : uPlot.rangeNum(low, high, 0.1, true));

/** Of a logarithm's ticks, the smallest too; those between the powers have no label. */
const digits = (plot, ticks) => ticks.map(tick => tick === null ? "" : Number(tick.toPrecision(1)).toString());

export const plotWidth = host => Math.max(280, host.clientWidth - 26);

export function addPlot({section, title, unit, lines, xs = frames, xLabel = "frame", log = false}) {
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
