// Sweeps as the tool makes them, whose frames carry their number, and the pictures that `orbitwalk render` makes of them.
import {cp, mkdir, readFile, rename, rm, writeFile} from "node:fs/promises";
import {join} from "node:path";
import {openRecord} from "@orbitwalk/record";
import {withTenBorderFrames} from "../../../record/test/tenBorderFrames.js";
import {run} from "../../../test/run.js";
import {tool} from "../../../test/tool.js";

const ffmpeg = (...options) => run("ffmpeg", "-v", "error", "-y", ...options);

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

const clips = {
    landscape: {size: [640, 360], simulate: ["--frames", "18"]},
    portrait: {size: [360, 640], simulate: ["--frames", "10", "--speed", "8"]},
};

/** Changes the copy of a captured sweep; its summary would tell. @type {Record<string, (directory: string) => Promise<void>>} */
const changes = {
    async refined(directory) {
        await tool("refine", directory, "-q");
    },
    async "with ten border frames"(directory) {
        const record = join(directory, "sweep.obw");
        await writeFile(record, withTenBorderFrames(await readFile(record)));
        await rm(join(directory, "sweep.json"));
    },
    /** By a phone that is held upright, at an even pace. */
    async "held upright"(directory) {
        const record = join(directory, "sweep.obw");
        const bytes = await readFile(record);
        bytes.writeInt32LE(270, 28);
        for (let i = 0; i < 18; ++i)
            bytes.writeInt32LE(12e6 * i, 44072 + 4 * i);
        await writeFile(record, bytes);
        await rm(join(directory, "sweep.json"));
    },
    async "with forward references"(directory) {
        const video = join(directory, "sweep.mp4"), anew = join(directory, "anew.mp4");
        await ffmpeg("-i", video, "-c:v", "libx264", "-preset", "fast", "-crf", "16", "-bf", "3", "-g", "12",
            "-movflags", "+faststart", anew);
        await rename(anew, video);
        await rm(join(directory, "sweep.json"));
    },
};

const captures = {
    plain: {clip: "landscape", capture: []},
    mirrored: {clip: "landscape", capture: ["--front-flip", "--duration", "0.5", "--skip", "5,9-10"]},
    portrait: {clip: "portrait", capture: ["--orientation", "90"]},
};

/** Makes each clip and sweep once, when it is first asked for. @param {string} work */
export function sweepsIn(work) {
    const made = new Map();
    const once = (key, make) => made.get(key) ?? made.set(key, make()).get(key);

    const clip = name => once(`clip ${name}`, async () => {
        const {size: [width, height], simulate} = clips[name];
        const plain = join(work, `${name}.plain.mp4`), marked = join(work, `${name}.mp4`);
        await tool("simulate", "-q", "-o", plain, "--size", `${width}x${height}`, ...simulate);
        await ffmpeg("-i", plain, "-vf", marking(width, height), "-c:v", "libx264", "-preset", "ultrafast", "-crf", "10",
            "-pix_fmt", "yuv420p", marked);
        return marked;
    });

    /** Leaves sweep.mp4 and sweep.obw in the directory of that name. @param {string} name */
    const sweep = name => once(name, async () => {
        const directory = join(work, name);
        if (changes[name]) {
            await sweep("plain");
            await cp(join(work, "plain"), directory, {recursive: true});
            await changes[name](directory);
        } else {
            await tool("capture", await clip(captures[name].clip), "-q", "-o", directory, ...captures[name].capture);
        }
        return {record: openRecord(await readFile(join(directory, "sweep.obw")))};
    });

    /** As well what render makes of it: steady.rgba. @param {string} name */
    const rendered = name => once(`${name}, rendered`, async () => {
        const {record} = await sweep(name);
        const directory = join(work, name), steady = join(work, `${name}.steady.mp4`);
        const refined = name === "refined";
        await tool("render", directory, "-q", "-o", steady, "--quality", "1", "--border-frames", ...refined ? ["--refined"] : []);
        await ffmpeg("-noautorotate", "-i", steady, "-sws_flags", "bicubic+accurate_rnd+full_chroma_int+full_chroma_inp",
            "-pix_fmt", "rgba", "-f", "rawvideo", join(directory, "steady.rgba"));
        if (!refined)
            return {record};
        await rename(join(directory, "refined.obw"), join(directory, "sweep.obw"));
        return {record: openRecord(await readFile(join(directory, "sweep.obw")))};
    });

    /** 1080p with the noise of a sensor, which makes a video large: 290 frames take 20 MB. @param {number} frames */
    const large = frames => once("large", async () => {
        const shot = join(work, "large.shot.mp4");
        await mkdir(join(work, "large"));
        await ffmpeg("-f", "lavfi", "-i", `testsrc2=size=${1920 + 12 * frames}x1080:rate=30,crop=1920:1080:x=n*12:y=0,noise=alls=16:allf=t`,
            "-frames:v", String(frames), "-c:v", "libx264", "-preset", "ultrafast", "-crf", "12", "-pix_fmt", "yuv420p", shot);
        await tool("capture", shot, "-q", "-o", join(work, "large"));
    });

    /** Makes them all in the background, while tests wait for what plays in its own time; who asks for one hears why it failed. */
    async function prepare() {
        for (const name of [...Object.keys(captures).slice(1), ...Object.keys(changes)])
            await rendered(name).catch(() => {});
        await large(12).catch(() => {});
    }

    return {sweep, rendered, large, prepare};
}
