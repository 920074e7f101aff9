// What the player shows is what `orbitwalk render` writes.
import assert from "node:assert/strict";
import {addPlayer, sourceOf} from "../../bench/browser.js";
import {mark} from "./sweeps.js";

/**
 * Mean absolute differences of luma, red, green and blue from render's picture, and the numbers that pictures carry;
 * and how far one is from the next picture.
 */
const compareAll = (page, name, places) => page.evaluate(async ({name, places}) => {
    const {player} = globalThis;
    const steady = new Uint8Array(await (await fetch(`/${name}/steady.rgba`)).arrayBuffer());
    const pictures = [];
    let others = 0;
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
        if (i === player.frameCount >> 1)
            others = Math.max(...errorsOf(i + 1));
        const bits = places[i].map(({x, y}) => data[4 * (Math.round(y) * width + Math.round(x)) + 1] > 128 ? 1 : 0);
        pictures.push({
            size: [width, height],
            errors: errorsOf(i),
            number: bits.reduce((sum, bit, place) => sum + bit * 2 ** place, 0),
        });
    }
    return {pictures, others, renderedCount: steady.length / (4 * pictures[0].size[0] * pictures[0].size[1])};
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

/** @type {[string, string, (() => void)?][]} */
const cases = [
    ["with ten border frames", "WebCodecs and WebGL2"],
    ["with ten border frames", "a video element", withoutWebCodecs],
    ["with ten border frames", "a 2d canvas", withoutWebGL],
    ["mirrored", "WebCodecs and WebGL2"],
    ["portrait", "WebCodecs and WebGL2"],
    ["refined", "WebCodecs and WebGL2"],
    ["with forward references", "WebCodecs and WebGL2"],
    ["with forward references", "a video element", withoutWebCodecs],
];

/** @param {Awaited<ReturnType<import("../../bench/browser.js").startHarness>>} harness @param {import("node:test").TestContext} t */
export async function testPictures(harness, t) {
    for (const [name, means, before] of cases)
        await t.test(`pictures of a sweep, ${name}, by ${means}`, async () => {
            const {record} = await harness.sweeps.rendered(name);
            const shots = shotsOf(record, true);
            // A refined path has as many as it finds room for.
            if (name !== "refined")
                assert.equal(shots.length, record.renderedFrames.length + (name === "with ten border frames" ? 20 : 12));
            const page = await harness.openPage({before});
            assert.deepEqual(await addPlayer(page, {...sourceOf(name), "border-frames": ""}), {count: shots.length, error: null});
            const {pictures, others, renderedCount} = await compareAll(page, name, shots.map(({matrix}) => markPlaces(record, matrix)));
            assert.equal(renderedCount, shots.length);
            assert.ok(others > 2, "the next picture would pass, too");
            pictures.forEach(({size, errors, number}, i) => {
                assert.deepEqual(size, [record.width, record.height]);
                assert.equal(number, shots[i].frame, `picture ${i} shows another frame`);
                assert.ok(Math.max(...errors) < 2, `picture ${i} differs by ${errors}`);
            });
            const worst = Math.max(...pictures.flatMap(({errors}) => errors));
            t.diagnostic(`${name}, by ${means}: ${shots.length} pictures, the largest mean difference is ${worst.toFixed(2)}`);
            await page.finish();
        });
}
