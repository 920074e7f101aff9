// Whatever is wrong, the element says what, and nothing is left unhandled.
import assert from "node:assert/strict";
import {copyFile, mkdir, readFile, writeFile} from "node:fs/promises";
import {join} from "node:path";
import {addPlayer, sourceOf} from "./harness.js";
import {makeSweep} from "./sweeps.js";

const messageIn = page => page.evaluate(() => {
    const message = globalThis.player.shadowRoot.querySelector("[role=alert]");
    return message.checkVisibility() ? message.textContent : null;
});

/** @param {Awaited<ReturnType<import("./harness.js").startHarness>>} harness @param {import("node:test").TestContext} t */
export async function testErrors(harness, t) {
    const {work} = harness;
    const file = name => join(work, name);
    await makeSweep(work, "good", {frames: 20, bFrames: true});
    await makeSweep(work, "shorter", {frames: 18});
    await makeSweep(work, "smaller", {size: "320x240", frames: 8});
    const video = await readFile(file("good/sweep.mp4"));
    await mkdir(file("bad"));
    await writeFile(file("bad/cut.mp4"), video.subarray(0, video.length >> 1));
    await writeFile(file("bad/stub.mp4"), video.subarray(0, 300));
    const fragments = await readFile(file("shorter/sweep.mp4"));
    await writeFile(file("bad/fragments.mp4"), fragments.subarray(0, fragments.length >> 1));
    await writeFile(file("bad/text.mp4"), "no video at all");
    await writeFile(file("bad/ten.obw"), "ten bytes.");
    await copyFile(file("good/sweep.obw"), file("bad/sweep.obw"));

    const good = sourceOf("good");
    /** @type {[string, Record<string, string>, RegExp, (() => void)?][]} */
    const cases = [
        ["another video's record, of another size", {...good, record: "/smaller/sweep.obw"}, /another video.*320 × 240.*640 × 360/],
        ["another video's record, of another length", {...good, record: "/shorter/sweep.obw"}, /another video.*18 frames.*has 20/],
        ["a record of 10 bytes", {...good, record: "/bad/ten.obw"}, /not a motion record: it has 10 bytes/],
        ["no record", {...good, record: "/bad/none.obw"}, /record \/bad\/none.obw cannot be read: 404/],
        ["no video", {...good, src: "/bad/none.mp4"}, /video cannot be read.*404/],
        ["neither", {src: "/bad/none.mp4", record: "/bad/none.obw"}, /404/],
        ["a video's first bytes", {...good, src: "/bad/stub.mp4"}, /video cannot be read|holds no video/],
        ["a fragmented video that is cut off", {src: "/bad/fragments.mp4", record: "/shorter/sweep.obw"}, /cut off.*18 frames, the video has 15/],
        ["text for a video", {...good, src: "/bad/text.mp4"}, /video cannot be read/],
        ["a browser that cannot decode", good, /neither WebCodecs nor requestVideoFrameCallback/, () => {
            delete globalThis.VideoDecoder;
            delete HTMLVideoElement.prototype.requestVideoFrameCallback;
        }],
        ["a browser that cannot draw", good, /neither WebGL2 nor a 2D canvas/, () => {
            HTMLCanvasElement.prototype.getContext = () => null;
        }],
    ];
    for (const [name, attributes, expected, before] of cases)
        await t.test(`says what is wrong: ${name}`, async () => {
            const page = await harness.openPage({before});
            const {error} = await addPlayer(page, attributes);
            assert.match(error ?? "no error", expected);
            assert.equal(await messageIn(page), error);
            assert.equal(await page.evaluate(() => globalThis.player.pictureAt(0).catch(reason => reason.message)), error);
            // And the next sweep plays.
            if (!before) {
                await page.evaluate(async ({src, record}) => {
                    Object.assign(globalThis.player, {src, record});
                    await new Promise(resolve => globalThis.player.addEventListener("ready", resolve, {once: true}));
                }, good);
                assert.equal(await messageIn(page), null);
            }
            await page.finish();
        });

    await t.test("says where a video that is cut off ends", async () => {
        const page = await harness.openPage();
        await addPlayer(page, {src: "/bad/cut.mp4", record: "/bad/sweep.obw"});
        const error = await page.evaluate(() => globalThis.player.seekToFrame(19).then(() => null, reason => reason.message));
        assert.match(error ?? "no error", /cannot be decoded|ends before/);
        assert.equal(await messageIn(page), error);
        await page.finish();
    });
}
