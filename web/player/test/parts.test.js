// Parts of the player that need no browser.
import assert from "node:assert/strict";
import {readFile} from "node:fs/promises";
import test from "node:test";
import {gzipSync} from "node:zlib";
import {RenderMatrix} from "@orbitwalk/record";
import {Playback} from "../src/playback.js";
import {frameFromUpright, shownSize, turnOf} from "../src/playlist.js";
import {displacements, SweepPath} from "../src/sweepPath.js";

/** Ticks a clock of 10 pictures a second; what it shows. */
function play({repeat, count = 4, times, availability = () => "here"}) {
    const playback = new Playback(count, 10);
    playback.repeat = repeat;
    playback.start(0, 0);
    return {shown: times.map(time => playback.tick(time, availability)), dropped: playback.dropped};
}

/** A tick in the middle of each picture. */
const steadyTicks = count => Array.from({length: count}, (_, k) => (k + 1.5) / 10);

test("the clock shows each picture once and then ends, begins anew or turns", () => {
    assert.deepEqual(play({repeat: "once", times: steadyTicks(4)}), {shown: [1, 2, 3, "ended"], dropped: 0});
    assert.deepEqual(play({repeat: "loop", times: steadyTicks(6)}).shown, [1, 2, 3, 0, 1, 2]);
    assert.deepEqual(play({repeat: "back-and-forth", times: steadyTicks(8)}).shown, [1, 2, 3, 2, 1, 0, 1, 2]);
    assert.deepEqual(play({repeat: "back-and-forth", count: 1, times: steadyTicks(1)}).shown, ["ended"]);
    assert.deepEqual(play({repeat: "once", times: [0.05, 0.15, 0.16, 0.25]}).shown, ["same", 1, "same", 2]);
});

test("a slow screen drops pictures, a slow decoder holds the clock", () => {
    assert.deepEqual(play({repeat: "once", times: [0.35, 0.45]}), {shown: [3, "ended"], dropped: 2});
    const until = new Map([[2, 0.4]]);
    let now = 0;
    const availability = index => (until.get(index) ?? 0) > now ? "coming" : "here";
    const times = [0.15, 0.25, 0.35, 0.45, 0.5, 0.55];
    const playback = new Playback(4, 10);
    playback.start(0, 0);
    const shown = times.map(time => playback.tick(now = time, availability));
    assert.deepEqual({shown, dropped: playback.dropped}, {shown: [1, "same", "same", 2, "same", 3], dropped: 0});
    const missed = index => index === 1 ? "missed" : "here";
    assert.deepEqual(play({repeat: "once", times: [0.15, 0.25, 0.35], availability: missed}), {shown: [2, "same", 3], dropped: 1});
});

test("a sweep whose displacement saturates goes on at its mean step", () => {
    const path = [0, -900, -2100, -2147.483647, -2147.483647];
    const record = {frameCount: 5, renderedFrames: [0, 1, 2, 3, 4], displacement: i => path[i]};
    assert.deepEqual(displacements(record), [0, -900, -2100, -3150, -4200]);
});

test("the picture stands upright, and a mirrored one is its mirror picture", () => {
    // A crop of 4x2 at (10, 20). Its corners, as the canvas shows them: top left and top right.
    const corners = (orientation, isFlipped) => {
        const record = {orientation, isFlipped, crop: {x: 10, y: 20, width: 4, height: 2}};
        const {width, height} = shownSize(record);
        const map = frameFromUpright(record, RenderMatrix.identity, width, height);
        const at = (x, y) => [map.xx * x + map.xy * y + map.x0, map.yx * x + map.yy * y + map.y0];
        return {turn: turnOf(record), size: [width, height], left: at(0, 0), right: at(width - 1, 0)};
    };
    assert.deepEqual(corners(0, false), {turn: 0, size: [4, 2], left: [10, 20], right: [13, 20]});
    assert.deepEqual(corners(360, true), {turn: 0, size: [4, 2], left: [13, 20], right: [10, 20]});
    // Clockwise: the bottom left corner comes to the top left.
    assert.deepEqual(corners(90, false), {turn: 90, size: [2, 4], left: [10, 21], right: [10, 20]});
    assert.deepEqual(corners(270, false), {turn: 270, size: [2, 4], left: [13, 20], right: [13, 21]});
    assert.deepEqual(corners(90, true), {turn: 270, size: [2, 4], left: [10, 20], right: [10, 21]});
});

test("a hand moves along the sweep on the screen, however the phone was held", () => {
    const screenOf = (direction, orientation, isFlipped) => new SweepPath({
        direction, orientation, isFlipped, crop: {x: 10, y: 20, width: 4, height: 2}, width: 24, height: 42, frameCount: 0,
        renderedFrames: [],
    }, []).screen;
    // Directions: 1 and 2 are horizontal for who holds the phone, 3 and 4 vertical.
    assert.deepEqual(screenOf(1, 0, false), {axis: "x", sign: 1});
    assert.deepEqual(screenOf(2, 180, true), {axis: "x", sign: -1});
    assert.deepEqual(screenOf(3, 0, true), {axis: "y", sign: 1});
    // Turned clockwise by 90 degrees, what the frame has on its right stands below, what it has below on the left.
    assert.deepEqual(screenOf(4, 90, false), {axis: "y", sign: 1});
    assert.deepEqual(screenOf(1, 90, false), {axis: "x", sign: -1});
    assert.deepEqual(screenOf(2, 270, false), {axis: "x", sign: 1});
});

test("player and demuxer are small", async t => {
    const size = gzipSync(await readFile(new URL("../dist/player.js", import.meta.url)), {level: 9}).length;
    t.diagnostic(`player.js has ${size} bytes gzipped`);
    assert.ok(size < 100_000, `${size} bytes`);
});
