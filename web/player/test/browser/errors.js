// Whatever is wrong, the element says what, and nothing is left unhandled.
import assert from "node:assert/strict";
import {mkdir, readFile, writeFile} from "node:fs/promises";
import {join} from "node:path";
import {addPlayer, sourceOf} from "../../bench/browser.js";

const visibleMessage = () => {
    const message = globalThis.player.shadowRoot.querySelector("[role=alert]");
    return message.checkVisibility() ? message.textContent : null;
};
const messageIn = page => page.evaluate(visibleMessage);

/** @type {[string, () => void, RegExp][]} */
const browsers = [
    ["decode", () => {
        delete globalThis.VideoDecoder;
        delete HTMLVideoElement.prototype.requestVideoFrameCallback;
    }, /neither WebCodecs nor requestVideoFrameCallback/],
    ["make a canvas", () => {
        HTMLCanvasElement.prototype.getContext = () => null;
    }, /neither WebGL2 nor a 2D canvas/],
    ["link the warp", () => {
        const {getProgramParameter} = WebGL2RenderingContext.prototype;
        WebGL2RenderingContext.prototype.getProgramParameter = function (program, name) {
            return name !== WebGL2RenderingContext.LINK_STATUS && getProgramParameter.call(this, program, name);
        };
    }, /cannot be played: the warp's shader/],
    ["draw", () => {
        WebGL2RenderingContext.prototype.drawArrays = () => { throw new Error("out of ink"); };
    }, /cannot be played: out of ink/],
];

/** @param {Awaited<ReturnType<import("../../bench/browser.js").startHarness>>} harness @param {import("node:test").TestContext} t */
export async function testErrors(harness, t) {
    const {work, sweeps} = harness;
    await Promise.all(["with forward references", "mirrored", "portrait"].map(sweeps.sweep));
    const read = name => readFile(join(work, name));
    const bad = join(work, "bad");
    await mkdir(bad);
    const video = await read("with forward references/sweep.mp4");
    const fragments = await read("plain/sweep.mp4");
    const files = {
        "cut.mp4": video.subarray(0, video.length >> 1),
        "stub.mp4": video.subarray(0, 300),
        "fragments.mp4": fragments.subarray(0, fragments.length >> 1),
        "text.mp4": "no video at all",
        "ten.obw": "ten bytes.",
    };
    await Promise.all(Object.entries(files).map(([name, bytes]) => writeFile(join(bad, name), bytes)));

    const good = sourceOf("with forward references");
    /** @type {[string, Record<string, string>, RegExp][]} */
    const cases = [
        ["another video's record, of another size", {record: "/portrait/sweep.obw"}, /another video.*360 × 640.*640 × 360/],
        ["another video's record, of another length", {record: "/mirrored/sweep.obw"}, /another video.*15 frames.*has 18\./],
        ["a record of 10 bytes", {record: "/bad/ten.obw"}, /not a motion record: it has 10 bytes/],
        ["no record", {record: "/bad/none.obw"}, /record \/bad\/none.obw cannot be read: 404/],
        ["no video", {src: "/bad/none.mp4"}, /video cannot be read.*404/],
        ["neither", {src: "/bad/none.mp4", record: "/bad/none.obw"}, /404/],
        ["a video's first bytes", {src: "/bad/stub.mp4"}, /video cannot be read|holds no video/],
        ["a fragmented video that is cut off", {src: "/bad/fragments.mp4", record: "/plain/sweep.obw"},
            /cut off.*18 frames, the video has \d+\./],
        ["text for a video", {src: "/bad/text.mp4"}, /video cannot be read/],
    ];
    const page = await harness.openPage();
    for (const [name, attributes, expected] of cases)
        await t.test(`says what is wrong: ${name}`, async () => {
            const {error} = await addPlayer(page, {...good, ...attributes});
            assert.match(error ?? "no error", expected);
            assert.equal(await messageIn(page), error);
            assert.equal(await page.evaluate(() => globalThis.player.pictureAt(0).catch(reason => reason.message)), error);
            // And the next sweep plays.
            await page.evaluate(async ({src, record}) => {
                Object.assign(globalThis.player, {src, record});
                await new Promise(resolve => globalThis.player.addEventListener("ready", resolve, {once: true}));
            }, good);
            assert.equal(await messageIn(page), null);
            await page.evaluate(() => globalThis.player.remove());
        });
    await t.test("says where a video that is cut off ends", async () => {
        await addPlayer(page, {...good, src: "/bad/cut.mp4"});
        const error = await page.evaluate(() => globalThis.player.seekToFrame(17).then(() => null, reason => reason.message));
        assert.match(error ?? "no error", /cannot be decoded|ends before/);
        assert.equal(await messageIn(page), error);
    });
    await page.finish();

    for (const [verb, before, expected] of browsers)
        await t.test(`says what is wrong: a browser that cannot ${verb}`, async () => {
            const old = await harness.openPage({before});
            await old.evaluate(() => {
                globalThis.errors = [];
                addEventListener("error", ({target, message}) => target === globalThis.player && globalThis.errors.push(message), true);
            });
            await addPlayer(old, {...good, autoplay: ""});
            await old.waitForFunction(visibleMessage);
            // Whatever else is asked of it fails quietly.
            await old.evaluate(() => Promise.allSettled([globalThis.player.seekToFrame(1), globalThis.player.pictureAt(1)]));
            const message = await messageIn(old);
            assert.match(message, expected);
            const {errors, paused} = await old.evaluate(() => ({errors: globalThis.errors, paused: globalThis.player.paused}));
            assert.deepEqual({errors, paused}, {errors: [message], paused: true});
            await old.finish();
        });
}
