// The record that docs/record.md writes out in hex, typed by hand.
import assert from "node:assert/strict";
import test from "node:test";
import {openRecord, RecordError} from "../src/index.js";

const words = {
    0: "00 05 00 00  d0 02 00 00  02 00 00 00  00 00 00 00  01 00 00 00",
    32: "01 00 00 00  01 00 00 00",
    44: "e8 03 00 00  64 00 00 00  38 00 00 00  38 04 00 00  5f 02 00 00  03 00 00 00  03 00 00 00",
    72: "00 35 0c 00  40 d8 f6 ff  00 00 00 00",
    84: "c0 27 09 00  00 35 0c 00  00 00 00 00",
    96: "00 8d aa ff  80 61 8c 00  40 42 0f 00",
    108: "00 35 0c 00  40 d8 f6 ff  00 00 00 00",
    120: "c0 27 09 00  00 35 0c 00  00 00 00 00",
    132: "00 8d aa ff  80 61 8c 00  40 42 0f 00",
    48072: "01 00 00 00  01 00 00 00",
    52072: "0a 00 00 00  01 00 00 00",
    52080: "40 42 0f 00  00 00 00 00  00 00 00 00",
    52092: "00 00 00 00  40 42 0f 00  00 00 00 00",
    52104: "80 69 67 ff  00 09 3d 00  40 42 0f 00",
};

function example() {
    const bytes = new Uint8Array(52808);
    for (const [offset, hex] of Object.entries(words))
        bytes.set(hex.split(/ +/).map(byte => parseInt(byte, 16)), Number(offset));
    return bytes;
}

const near = (point, x, y) => {
    assert.ok(Math.abs(point.x - x) < 1e-9 && Math.abs(point.y - y) < 1e-9, `${point.x}, ${point.y}, not ${x}, ${y}`);
};

test("the worked example reads as it was worked out", () => {
    const record = openRecord(example());
    assert.deepEqual([record.width, record.height, record.frameCount], [1280, 720, 2]);
    assert.deepEqual(record.range, {begin: 0, end: 2});
    assert.deepEqual(record.renderedFrames, [0, 1]);
    assert.deepEqual(record.crop, {x: 100, y: 56, width: 1080, height: 607});
    assert.deepEqual([record.direction, record.orientation, record.isFlipped], [1, 0, false]);
    const matrix = record.renderMatrix(0);
    assert.deepEqual(matrix.elements, [0.8, -0.6, 0, 0.6, 0.8, 0, -5.6, 9.2, 1]);
    near(matrix.frameFromOutput({x: 100, y: 50}), 104.4, -10.8);
    near(matrix.outputFromFrame({x: 104.4, y: -10.8}), 100, 50);
    near(matrix.outputFromFrame({x: 0, y: 0}), 10, -4);
    assert.ok(Math.abs(matrix.angle - Math.asin(0.6)) < 1e-12);
    assert.deepEqual([record.leftBorderCount, record.rightBorderCount], [1, 0]);
    near(record.leftBorder(0).outputFromFrame({x: 0, y: 0}), 10, -4);
    // The crop's columns are 100 to 1179.
    near(record.mirrored({x: 100, y: 7}), 1179, 7);
});

test("indices beyond a count throw, and the reader keeps its own copy", () => {
    const bytes = example();
    const record = openRecord(bytes);
    bytes.fill(0);
    assert.equal(record.renderMatrix(1).elements[0], 0.8);
    for (const beyond of [() => record.renderMatrix(2), () => record.flag(-1), () => record.leftBorder(1),
        () => record.rightBorder(0), () => record.displacement(0.5)])
        assert.throws(beyond, RangeError);
});

test("a view into a larger buffer is read where it stands", () => {
    const buffer = new Uint8Array(60000);
    buffer.set(example(), 123);
    assert.equal(openRecord(buffer.subarray(123, 123 + 52808)).crop.width, 1080);
    assert.throws(() => openRecord(buffer.buffer), {name: "RecordError", fault: "Size"});
    assert.throws(() => openRecord(new ArrayBuffer(0)), RecordError);
});
