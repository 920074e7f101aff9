// What the player shows is what `orbitwalk render` writes.
import assert from "node:assert/strict";
import {addPlayer, sourceOf} from "./harness.js";
import {makeSweep, mark} from "./sweeps.js";

/** Mean absolute differences of luma, red, green and blue from render's picture, and the numbers that pictures carry. */
const compareAll = (page, name, places) => page.evaluate(async ({name, places}) => {
    const {player} = globalThis;
    const steady = new Uint8Array(await (await fetch(`/${name}/steady.rgba`)).arrayBuffer());
    const pictures = [];
    for (let i = 0; i < player.frameCount; ++i) {
        const {data, width, height} = await player.pictureAt(i);
        const errorsOf = k => {
            const rendered = steady.subarray(k * data.length, (k + 1) * data.length);
            let luma = 0, red = 0, green = 0, blue = 0;
            for (let at = 0; at < rendered.length; at += 4) {
                const r = data[at] - rendered[at], g = data[at + 1] - rendered[at + 1], b = data[at + 2] - rendered[at + 2];
                luma += Math.abs(0.2126 * r + 0.7152 * g + 0.0722 * b);
                red += Math.abs(r);
                green += Math.abs(g);
                blue += Math.abs(b);
            }
            return [luma, red, green, blue].map(sum => sum / (width * height));
        };
        const bits = places[i].map(({x, y}) => data[4 * (Math.round(y) * width + Math.round(x)) + 1] > 128 ? 1 : 0);
        pictures.push({
            size: [width, height],
            errors: errorsOf(i),
            others: Math.max(...errorsOf(i + 1)),
            number: bits.reduce((sum, bit, place) => sum + bit * 2 ** place, 0),
        });
    }
    return {pictures, renderedCount: steady.length / (4 * pictures[0].size[0] * pictures[0].size[1])};
}, {name, places});

/** The pictures in playing order, read off the record alone: frame and matrix. */
function shotsOf(record, border) {
    const shown = Array.from({length: record.frameCount}, (_, i) => i).filter(i => record.isRendered(i));
    const sides = border ? [record.leftBorderCount, record.rightBorderCount] : [0, 0];
    return [
        ...Array.from({length: sides[0]}, (_, k) => ({frame: shown[0], matrix: record.leftBorder(k)})),
        ...shown.map(frame => ({frame, matrix: record.renderMatrix(frame)})),
        ...Array.from({length: sides[1]}, (_, k) => ({frame: shown[shown.length - 1], matrix: record.rightBorder(k)})),
    ];
}

/** Where a picture shows the middles of the squares of its number. */
export function markPlaces(record, matrix) {
    const {crop, width, height} = record;
    const left = Math.round(mark.left * width), top = Math.round(mark.top * height);
    return Array.from({length: mark.bits}, (_, bit) => {
        const middle = {x: left + (bit + 0.5) * mark.side - 0.5, y: top + mark.side / 2 - 0.5};
        const output = matrix.outputFromFrame(middle);
        const x = (output.x - crop.x + 0.5) * width / crop.width - 0.5;
        const y = (output.y - crop.y + 0.5) * height / crop.height - 0.5;
        return {x: record.isFlipped ? width - 1 - x : x, y};
    });
}

export const withoutWebCodecs = () => { delete globalThis.VideoDecoder; };
const withoutWebGL = () => {
    const {getContext} = HTMLCanvasElement.prototype;
    HTMLCanvasElement.prototype.getContext = function (kind, ...more) {
        return kind === "webgl2" ? null : getContext.call(this, kind, ...more);
    };
};

/** @type {[string, import("./sweeps.js").SweepSettings & {before?: () => void}][]} */
const cases = [
    ["plain", {frames: 18, size: "1280x720"}],
    ["mirrored", {capture: ["--front-flip", "--skip", "5,9-10"]}],
    ["portrait", {size: "360x640", capture: ["--orientation", "90"], simulate: ["--speed", "8"]}],
    ["refined", {refined: true}],
    ["forward-references", {frames: 26, bFrames: true}],
    ["in-a-video-element", {before: withoutWebCodecs}],
    ["on-a-2d-canvas", {before: withoutWebGL}],
];

/** @param {Awaited<ReturnType<import("./harness.js").startHarness>>} harness @param {import("node:test").TestContext} t */
export async function testPictures(harness, t) {
    for (const [name, {before, ...settings}] of cases)
        await t.test(`pictures of a sweep: ${name}`, async () => {
            const {record} = await makeSweep(harness.work, name, settings);
            const shots = shotsOf(record, true);
            assert.ok(shots.length > record.renderedFrames.length || name === "refined", "no border frames");
            const page = await harness.openPage({before});
            assert.deepEqual(await addPlayer(page, {...sourceOf(name), "border-frames": ""}), {count: shots.length, error: null});
            const {pictures, renderedCount} = await compareAll(page, name, shots.map(({matrix}) => markPlaces(record, matrix)));
            assert.equal(renderedCount, shots.length);
            assert.ok(pictures[renderedCount >> 1].others > 2, "the next picture would pass, too");
            pictures.forEach(({size, errors, number}, i) => {
                assert.deepEqual(size, [record.width, record.height]);
                assert.equal(number, shots[i].frame, `picture ${i} shows another frame`);
                assert.ok(Math.max(...errors) < 2, `picture ${i} differs by ${errors}`);
            });
            const worst = Math.max(...pictures.flatMap(({errors}) => errors));
            t.diagnostic(`${name}: ${shots.length} pictures, the largest mean difference is ${worst.toFixed(2)}`);
            await page.finish();
        });
}
