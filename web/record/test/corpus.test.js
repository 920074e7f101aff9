// Every record of a generated corpus gives what `orbitwalk inspect --json` prints of it, or is refused in its words.
import assert from "node:assert/strict";
import {mkdtemp, readFile, rm, writeFile} from "node:fs/promises";
import {tmpdir} from "node:os";
import {join} from "node:path";
import test, {after, before} from "node:test";
import {tool} from "../../test/tool.js";
import {openRecord, RecordError} from "../src/index.js";
import {withTenBorderFrames} from "./tenBorderFrames.js";

let work = "";
before(async () => { work = await mkdtemp(join(tmpdir(), "record-")); });
after(() => rm(work, {recursive: true, force: true}));

/** What the tool's JSON says, by this reader's answers. */
function inspected(record) {
    const entry = (index, matrix, fixed) => {
        const origin = matrix.outputFromFrame({x: 0, y: 0});
        return {index, dx: origin.x, dy: origin.y, angle: matrix.angle, matrix: fixed};
    };
    const all = (count, one) => Array.from({length: count}, (_, i) => one(i));
    const {crop, ...fields} = record.fields;
    const header = ["width", "height", "numFrames", "startIndex", "endIndex", "algoType", "algoVersion", "orientation",
        "captureDirection", "cameraType", "frontCameraFlipped"];
    return {
        ...Object.fromEntries(header.map(name => [name, fields[name]])),
        crop,
        leftBorder: all(record.leftBorderCount, k => entry(k, record.leftBorder(k), record.fixedLeftBorder(k))),
        frames: all(record.frameCount, i => ({
            ...entry(i, record.renderMatrix(i), record.fixedMatrix(i)),
            flag: record.flag(i), rendered: record.isRendered(i), displacement: record.displacement(i),
        })),
        rightBorder: all(record.rightBorderCount, k => entry(k, record.rightBorder(k), record.fixedRightBorder(k))),
    };
}

/** Equal but for the last digit of an arc tangent, and the sign of a zero. */
function assertSame(mine, tools, where) {
    if (typeof tools !== "object")
        return assert.ok(mine === tools || Math.abs(mine - tools) <= 4e-16 * Math.abs(tools) && where.endsWith("angle"),
            `${where}: ${mine}, the tool says ${tools}`);
    assert.deepEqual(Object.keys(mine), Object.keys(tools), where);
    for (const key of Object.keys(tools))
        assertSame(mine[key], tools[key], `${where}.${key}`);
}

async function compare(name, bytes) {
    const file = join(work, `${name}.obw`);
    await writeFile(file, bytes);
    let tools, refusal;
    try {
        tools = JSON.parse((await tool("inspect", "--json", file)).stdout);
    } catch (error) {
        assert.equal(error.code, 1, error);
        refusal = error.stderr.trim();
    }
    await rm(file);
    // What only the directory of a capture can tell.
    if (tools)
        delete tools.vertical;
    try {
        const record = openRecord(bytes);
        assert.equal(refusal, undefined, `${name}: only the tool refuses it`);
        assertSame(inspected(record), tools, name);
        return null;
    } catch (error) {
        if (!(error instanceof RecordError))
            throw error;
        assert.ok(refusal, `${name}: only this reader refuses it: ${error.message}`);
        assert.equal(refusal, `orbitwalk: ${file}: not a motion record: ${error.message}`);
        return error.fault;
    }
}

const captures = {
    "wide": {simulate: ["--size", "960x540", "--frames", "12"], capture: []},
    "portrait": {simulate: ["--size", "360x640", "--frames", "8"], capture: ["--orientation", "90"]},
    "to the left, flipped": {
        simulate: ["--size", "640x480", "--frames", "12", "--direction", "right2left"],
        capture: ["--front-flip", "--direction", "right2left"],
    },
    "part of the frames": {
        simulate: ["--size", "640x480", "--frames", "12"],
        capture: ["--first", "2", "--last", "9", "--skip", "4,6-7"],
    },
    "one frame": {simulate: ["--size", "320x240", "--frames", "1"], capture: []},
    "nothing to steady": {simulate: ["--size", "64x64", "--frames", "6", "--speed", "400"], capture: []},
};

async function make(name) {
    const {simulate, capture} = captures[name];
    const clip = join(work, `${name}.mp4`), directory = join(work, name);
    await tool("simulate", "-q", "-o", clip, ...simulate);
    await tool("capture", clip, "-q", "-o", directory, ...capture);
    return readFile(join(directory, "sweep.obw"));
}

/** Each is made once, for the first who asks. */
const records = new Map();
const recordOf = name => records.get(name) ?? records.set(name, make(name)).get(name);

for (const name of Object.keys(captures))
    test(`a capture: ${name}`, async () => assert.equal(await compare(name, await recordOf(name)), null));

test("ten border frames a side", async () => {
    const bytes = withTenBorderFrames(await recordOf("wide"));
    const {leftBorderCount, rightBorderCount} = openRecord(bytes);
    assert.deepEqual([leftBorderCount, rightBorderCount], [10, 10]);
    assert.equal(await compare("ten border frames", bytes), null);
});

/** Numbers that look random, the same in every run. */
function* randomNumbers(seed) {
    for (let state = seed; ; state = state * 48271 % 2147483647)
        yield state;
}

/** One to three words of a record at or near a limit, most often in the header, a count or a matrix that counts. */
function damaged(valid, random) {
    const below = count => random.next().value % count;
    const bytes = Uint8Array.from(valid);
    const view = new DataView(bytes.buffer);
    const limits = [-(2 ** 31), 2 ** 31 - 1, -1e6, -1, 0, 1, 2, 3, 4, 9, 10, 11, 13, 1000, 1001, 32767, 999999, 1e6];
    for (let left = 1 + below(3); left > 0; --left) {
        const place = [() => below(18), () => below(18), () => 18 + below(9 * 12), () => 12018 + below(12),
            () => 13018 + below(184), () => below(13202)][below(6)]();
        const old = view.getInt32(4 * place, true);
        view.setInt32(4 * place, below(3) === 0 ? old + below(3) - 1 : limits[below(limits.length)], true);
    }
    return bytes;
}

test("hostile records", async () => {
    const random = randomNumbers(20231);
    const faults = new Map();
    const sources = await Promise.all(["wide", "to the left, flipped", "one frame"].map(recordOf));
    const corpus = Array.from({length: 36}, (_, i) => damaged(sources[i % 3], random));
    const some = async first => {
        for (let i = first; i < corpus.length; i += 2) {
            const fault = await compare(`hostile ${i}`, corpus[i]);
            faults.set(fault, (faults.get(fault) ?? 0) + 1);
        }
    };
    await Promise.all([some(0), some(1)]);
    assert.ok(faults.get(null) > 6, "the corpus hardly reaches the answers");
    assert.ok(faults.size >= 8, `only ${[...faults.keys()]}`);
});

test("other sizes", async () => {
    const valid = await recordOf("wide");
    for (const size of [0, 10, 52807])
        assert.equal(await compare(`${size} bytes`, valid.subarray(0, size)), "Size");
    assert.equal(await compare("one more", Uint8Array.from([...valid, 0])), "Size");
    assert.equal(await compare("zeros", new Uint8Array(52808)), "FrameSize");
});
