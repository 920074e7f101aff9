// Sweeps as the tool makes them, whose frames carry their number, and the pictures that `orbitwalk render` makes of them.
import assert from "node:assert/strict";
import {execFile} from "node:child_process";
import {copyFile, mkdir, readFile, rm} from "node:fs/promises";
import {join} from "node:path";
import {promisify} from "node:util";
import {openRecord} from "@orbitwalk/record";

const run = promisify(execFile);
const tool = process.env.ORBITWALK_TOOL;
assert.ok(tool, "ORBITWALK_TOOL has to name the tool");

const ffmpeg = (...options) => run("ffmpeg", ["-v", "error", "-y", ...options]);

/** A number as squares in a row, the lowest bit first: white is 1. In frames' pixels, corners at (left, top). */
export const mark = {bits: 6, side: 20, left: 0.3, top: 0.22};

/** @param {number} width @param {number} height */
function marking(width, height) {
    const left = Math.round(mark.left * width), top = Math.round(mark.top * height);
    const box = (bit, colour, more) => `drawbox=x=${left + bit * mark.side}:y=${top}:w=${mark.side}:h=${mark.side}:` +
        `color=${colour}:t=fill${more}`;
    const bits = [...Array(mark.bits).keys()];
    return bits.flatMap(bit => [box(bit, "black", ""), box(bit, "white", `:enable='gt(mod(floor(n/${2 ** bit}),2),0)'`)]).join(",");
}

/**
 * @typedef {object} SweepSettings
 * @property {string} [size]
 * @property {number} [frames]
 * @property {string[]} [simulate]
 * @property {string[]} [capture]
 * @property {boolean} [refined]
 * @property {boolean} [bFrames]  encoded anew with frames that refer forwards
 */

/**
 * Leaves sweep.mp4, sweep.obw and, of what render makes of them, steady.rgb in a directory.
 * @param {string} work
 * @param {string} name
 * @param {SweepSettings} settings
 */
export async function makeSweep(work, name, {size = "640x360", frames = 16, simulate = [], capture = [], refined, bFrames}) {
    const directory = join(work, name);
    const file = more => join(work, `${name}.${more}`);
    const [width, height] = size.split("x").map(Number);
    await run(tool, ["simulate", "-q", "-o", file("clip.mp4"), "--size", size, "--frames", String(frames), ...simulate]);
    await ffmpeg("-i", file("clip.mp4"), "-vf", marking(width, height), "-c:v", "libx264", "-preset", "ultrafast", "-crf", "10",
        "-pix_fmt", "yuv420p", file("marked.mp4"));
    await run(tool, ["capture", file("marked.mp4"), "-q", "-o", directory, ...capture]);
    if (refined)
        await run(tool, ["refine", directory, "-q"]);
    if (bFrames) {
        await rm(join(directory, "sweep.json"));
        await ffmpeg("-i", join(directory, "sweep.mp4"), "-c:v", "libx264", "-preset", "fast", "-crf", "16", "-bf", "3",
            "-g", "12", "-movflags", "+faststart", file("b.mp4"));
        await copyFile(file("b.mp4"), join(directory, "sweep.mp4"));
    }
    await run(tool, ["render", directory, "-q", "-o", file("steady.mp4"), "--quality", "1", "--border-frames", ...refined ? ["--refined"] : []]);
    await ffmpeg("-noautorotate", "-i", file("steady.mp4"), "-sws_flags", "bicubic+accurate_rnd+full_chroma_int+full_chroma_inp",
        "-pix_fmt", "rgba", "-f", "rawvideo", join(directory, "steady.rgba"));
    if (refined)
        await copyFile(join(directory, "refined.obw"), join(directory, "sweep.obw"));
    const record = openRecord(await readFile(join(directory, "sweep.obw")));
    return {name, record};
}

/** A video of 1080p and about 20 MB, captured. @param {string} work @param {number} frames */
export async function makeLargeSweep(work, frames) {
    const directory = join(work, "large");
    await mkdir(directory, {recursive: true});
    await run(tool, ["simulate", "-q", "-o", join(work, "large.clip.mp4"), "--frames", String(frames), "--noise", "4"]);
    await run(tool, ["capture", join(work, "large.clip.mp4"), "-q", "-o", directory]);
    return {name: "large", record: openRecord(await readFile(join(directory, "sweep.obw")))};
}
