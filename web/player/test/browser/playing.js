// Playing, seeking and what they cost.
import assert from "node:assert/strict";
import {readFile} from "node:fs/promises";
import {costInWords, costOfPlaying, playThrough} from "../../bench/cost.js";
import {addPlayer, sourceOf} from "../../bench/browser.js";
import {markPlaces, withoutWebCodecs} from "./pictures.js";

/** What the raster costs is not asked here. */
const small = {width: 320, height: 300};

/** Time that passes only as the screen shows pictures, so that none is late on the slowest machine. */
const patientClock = () => {
    let now = 0;
    performance.now = () => now;
    const {requestAnimationFrame} = globalThis;
    globalThis.requestAnimationFrame = step => requestAnimationFrame(() => step(now += 1000 / 60));
};

/** @type {[string, (() => void) | undefined, string, (count: number) => number][]} The last: how many may be dropped. */
const ways = [
    ["WebCodecs and a screen that is never late", patientClock, "1", () => 0],
    // Most are due between two pictures of a screen.
    ["WebCodecs, too fast for any screen", undefined, "16", count => count - 2],
    // A frame stands for a quarter of a second and more.
    ["a video element, slowly", withoutWebCodecs, "0.125", count => count / 4],
];

async function testOrder(harness, t) {
    for (const [name, before, speed, mostDropped] of ways)
        await t.test(`playing with ${name} shows each frame once and in order`, async () => {
            const page = await harness.openPage({viewport: small, before});
            const {count} = await addPlayer(page, {...sourceOf("plain"), "border-frames": "", speed});
            await page.evaluate(() => globalThis.player.seekToFrame(0));
            const {frames, dropped, paused} = await playThrough(page);
            assert.ok(frames.every((frame, i) => i === 0 || frame > frames[i - 1]), `out of order: ${frames}`);
            assert.equal(frames[0], 0);
            assert.equal(frames.at(-1), count - 1, "the last picture was not shown");
            assert.equal(frames.length + dropped, count, `${frames} and ${dropped} dropped`);
            assert.ok(dropped <= mostDropped(count), `${dropped} of ${count} dropped`);
            assert.ok(paused);
            t.diagnostic(`${name}: ${frames.length} of ${count} pictures shown`);
            await page.finish();
        });
}

/** Seeks with a cache of a few frames, and reads the number off the canvas. */
async function testSeeks(harness, t, name, times, before) {
    await t.test(`${times} seeks end on the right frame: ${name}${before ? ", by a video element" : ""}`, async () => {
        const {record} = await harness.sweeps.sweep(name);
        const page = await harness.openPage({viewport: small, before});
        const bound = 5;
        const {count} = await addPlayer(page, {...sourceOf(name), "cache-megabytes": String(bound)});
        const places = record.renderedFrames.map(i => markPlaces(record, record.renderMatrix(i)));
        const result = await page.evaluate(async ({count, places, width, times}) => {
            const {player} = globalThis;
            const canvas = player.shadowRoot.querySelector("canvas");
            const copy = new OffscreenCanvas(width, 3);
            const context = copy.getContext("2d", {willReadFrequently: true});
            const wrong = [];
            let state = 7, most = 0;
            for (let k = 0; k < times; ++k) {
                state = state * 48271 % 2147483647;
                const wanted = state % count;
                await player.seekToFrame(wanted);
                const [{x, y}] = places[wanted];
                const [left, top, right] = [Math.round(x), Math.round(y), Math.round(places[wanted].at(-1).x)];
                const scale = canvas.width / width;
                context.drawImage(canvas, left * scale, (top - 1) * scale, (right - left + 1) * scale, 3 * scale, 0, 0, right - left + 1, 3);
                const {data} = context.getImageData(0, 1, right - left + 1, 1);
                const bits = places[wanted].map(place => data[4 * (Math.round(place.x) - left) + 1] > 128);
                const shown = bits.reduce((sum, bit, place) => sum + bit * 2 ** place, 0);
                if (shown !== wanted || player.currentFrame !== wanted)
                    wrong.push([wanted, shown, player.currentFrame]);
                most = Math.max(most, player.cachedBytes);
            }
            return {wrong, most};
        }, {count, places, width: record.width, times});
        assert.deepEqual(result.wrong, []);
        assert.ok(result.most <= bound * 1e6, `${result.most} bytes are kept`);
        await page.finish();
    });
}

async function testBackAndForth(harness, t) {
    await t.test("back and forth, it turns at both ends", async () => {
        const page = await harness.openPage({viewport: small, before: patientClock});
        const {count} = await addPlayer(page, {...sourceOf("plain"), "back-and-forth": ""});
        await page.evaluate(() => globalThis.player.seekToFrame(0));
        const frames = await page.evaluate(wanted => new Promise(resolve => {
            const seen = [];
            globalThis.player.addEventListener("framechange", ({detail}) => seen.push(detail.frame) === wanted && resolve(seen));
            globalThis.player.play();
        }), 2 * count);
        const way = [...Array(count).keys()];
        assert.deepEqual(frames, [...way.slice(1), ...way.slice(0, -1).reverse(), 1, 2]);
        await page.finish();
    });
}

/** Bytes that a browser's processes hold. */
async function resident(browser) {
    const session = await browser.newBrowserCDPSession();
    const {processInfo} = await session.send("SystemInfo.getProcessInfo");
    await session.detach();
    let sum = 0;
    for (const {id} of processInfo) {
        const status = await readFile(`/proc/${id}/status`, "utf8").catch(() => "");
        sum += 1024 * Number(/VmRSS:\s+(\d+)/.exec(status)?.[1] ?? 0);
    }
    return sum;
}

/** Keeps what only an explicit end frees. */
const noteHoldings = () => {
    const held = globalThis.held = {decoders: [], contexts: []};
    globalThis.VideoDecoder = class extends VideoDecoder {
        constructor(init) {
            super(init);
            held.decoders.push(this);
        }
    };
    const {getContext} = HTMLCanvasElement.prototype;
    HTMLCanvasElement.prototype.getContext = function (...kind) {
        const context = getContext.apply(this, kind);
        held.contexts.push(context);
        return context;
    };
};

/** A video element never hears that its first frame is there. */
const openForEver = () => {
    delete globalThis.VideoDecoder;
    const {addEventListener} = HTMLMediaElement.prototype;
    HTMLMediaElement.prototype.addEventListener = function (kind, ...more) {
        if (kind !== "loadeddata")
            return addEventListener.call(this, kind, ...more);
        globalThis.opening = this;
    };
};

async function testMemory(harness, t) {
    await t.test("memory does not grow over ten loops", async () => {
        const page = await harness.openPage({viewport: small});
        await addPlayer(page, {...sourceOf("plain"), loop: "", speed: "2", "cache-megabytes": "5"});
        const loops = count => page.evaluate(wanted => new Promise(resolve => {
            const {player} = globalThis;
            let before = 0, done = 0;
            const note = async ({detail}) => {
                done += detail.frame < before;
                before = detail.frame;
                if (done < wanted)
                    return;
                player.removeEventListener("framechange", note);
                player.pause();
                for (let k = 0; k < 4; ++k) {
                    globalThis.gc();
                    await new Promise(after => setTimeout(after, 100));
                }
                resolve(performance.memory.usedJSHeapSize);
            };
            player.addEventListener("framechange", note);
            player.play();
        }), count);
        const before = [await loops(2), await resident(harness.browser)];
        const after = [await loops(10), await resident(harness.browser)];
        assert.ok(after[0] - before[0] < 1e6, `the heap grew from ${before[0]} to ${after[0]}`);
        assert.ok(after[1] - before[1] < 60e6, `the processes grew from ${before[1]} to ${after[1]}`);
        t.diagnostic(`ten loops: heap ${((after[0] - before[0]) / 1e3).toFixed(0)} kB, processes ${((after[1] - before[1]) / 1e6).toFixed(1)} MB more`);
        await page.finish();
    });
    await t.test("a player that goes closes its decoders and gives back its drawing context", async () => {
        const page = await harness.openPage({viewport: small, before: noteHoldings});
        await addPlayer(page, sourceOf("plain"));
        await page.evaluate(async () => {
            await globalThis.player.seekToFrame(5);
            globalThis.player.remove();
        });
        await page.waitForFunction(() => {
            const {decoders, contexts} = globalThis.held;
            return decoders.length > 0 && decoders.every(({state}) => state === "closed") && contexts.length > 0 &&
                contexts.every(context => context.isContextLost());
        });
        await page.finish();
    });
    await t.test("a player that goes while its video is being opened lets go of it", async () => {
        const page = await harness.openPage({viewport: small, before: openForEver});
        await page.evaluate(source => {
            globalThis.player = Object.assign(document.createElement("orbitwalk-player"), source);
            document.body.append(globalThis.player);
        }, sourceOf("plain"));
        await page.waitForFunction(() => globalThis.opening?.hasAttribute("src"));
        await page.evaluate(() => globalThis.player.remove());
        await page.waitForFunction(() => !globalThis.opening.hasAttribute("src"));
        await page.finish();
    });
    await t.test("a lost drawing context comes back with the picture", async () => {
        const page = await harness.openPage({viewport: small});
        await addPlayer(page, sourceOf("plain"));
        const [before, after] = await page.evaluate(async () => {
            const {player} = globalThis;
            const canvas = player.shadowRoot.querySelector("canvas");
            const happens = name => new Promise(resolve => canvas.addEventListener(name, resolve, {once: true}));
            const read = async () => {
                await player.seekToFrame(4);
                const context = new OffscreenCanvas(canvas.width, canvas.height).getContext("2d");
                context.drawImage(canvas, 0, 0);
                return [...context.getImageData(0, 60, canvas.width, 1).data];
            };
            const before = await read();
            const control = canvas.getContext("webgl2").getExtension("WEBGL_lose_context");
            const lost = happens("webglcontextlost");
            control.loseContext();
            await lost;
            await player.seekToFrame(9);
            const restored = happens("webglcontextrestored");
            control.restoreContext();
            await restored;
            return [before, await read()];
        });
        assert.ok(before.some(value => value > 0 && value < 255));
        assert.deepEqual(after, before);
        await page.finish();
    });
    await t.test("players come and go, several at a time", async () => {
        const page = await harness.openPage({viewport: small});
        const warnings = [];
        page.on("console", message => warnings.push(message.text()));
        for (let i = 0; i < 17; ++i) {
            assert.equal((await addPlayer(page, sourceOf("plain"))).error, null);
            await page.evaluate(() => globalThis.player.remove());
        }
        assert.deepEqual(warnings.filter(text => text.includes("Too many active")), []);
        // Put back, a player plays again; beside another one, each on its own.
        const frames = await page.evaluate(async () => {
            const {player: one} = globalThis;
            const two = document.createElement("orbitwalk-player");
            Object.assign(two, {src: one.src, record: one.record});
            document.body.append(one, two);
            await Promise.all([one.seekToFrame(3), two.seekToFrame(5)]);
            return [one.currentFrame, two.currentFrame];
        });
        assert.deepEqual(frames, [3, 5]);
        await page.finish();
    });
}

async function testCost(harness, t) {
    await t.test("what 1080p costs the main thread is told", async () => {
        await harness.sweeps.large(12);
        const page = await harness.openPage({viewport: {width: 1920, height: 1200}});
        await addPlayer(page, sourceOf("large"));
        await page.evaluate(() => globalThis.player.seekToFrame(0));
        const cost = await costOfPlaying(page);
        t.diagnostic(`1080p: ${costInWords(cost)}`);
        assert.ok(cost.tasks.cpu > cost.commits.cpu && cost.commits.cpu > 0, "the trace does not show the player's work");
        await page.finish();
    });
}

/** @param {Awaited<ReturnType<import("../../bench/browser.js").startHarness>>} harness @param {import("node:test").TestContext} t */
export async function testPlaying(harness, t) {
    await harness.sweeps.sweep("plain");
    await testOrder(harness, t);
    await testSeeks(harness, t, "plain", 500);
    await testSeeks(harness, t, "with forward references", 500);
    await testSeeks(harness, t, "with forward references", 50, withoutWebCodecs);
    await testBackAndForth(harness, t);
    await testMemory(harness, t);
    await testCost(harness, t);
}
