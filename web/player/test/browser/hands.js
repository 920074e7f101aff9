// What people do with it: drag, keys, buttons, preferences.
import assert from "node:assert/strict";
import {addPlayer, sourceOf} from "./harness.js";

const current = page => page.evaluate(() => globalThis.player.currentFrame);
const comesTo = (page, frame) => page.waitForFunction(wanted => globalThis.player.currentFrame === wanted, frame, {timeout: 20000});

/** Of the pictures along the sweep, frame pixels. */
const positionsOf = record => record.renderedFrames.map(i => record.displacement(i));

/** The pictures whose displacement is nearest to a position. */
function nearest(record, position) {
    const distances = positionsOf(record).map(one => Math.abs(one - position));
    const least = Math.min(...distances);
    return distances.flatMap((distance, i) => distance === least ? [i] : []);
}

async function testDrag(harness, t, name, record) {
    await t.test(`dragging shows the frame under the finger: ${name}`, async () => {
        const page = await harness.openPage({reducedMotion: "reduce"});
        const {count} = await addPlayer(page, sourceOf(name));
        const start = count >> 1;
        await page.evaluate(frame => globalThis.player.seekToFrame(frame), start);
        const box = await page.evaluate(() => {
            const {x, y, width, height} = globalThis.player.shadowRoot.querySelector("canvas").getBoundingClientRect();
            return {x, y, width, height};
        });
        const scale = record.crop.width / box.width * (record.isFlipped ? -1 : 1);
        const middle = {x: box.x + box.width / 2, y: box.y + box.height / 2};
        await page.mouse.move(middle.x, middle.y);
        await page.mouse.down();
        const seen = new Set();
        for (const moved of [-90, -40, -20, 7, 30, 75, 130, -10]) {
            await page.mouse.move(middle.x + moved, middle.y + 5);
            const wanted = nearest(record, positionsOf(record)[start] + moved * scale);
            await page.waitForFunction(frames => frames.includes(globalThis.player.currentFrame), wanted, {timeout: 20000});
            seen.add(wanted[0]);
        }
        await page.mouse.up();
        assert.ok(seen.size > 4, "the drag hardly moved");
        const last = await current(page);
        await page.waitForTimeout(200);
        assert.equal(await current(page), last, "it glides though less motion is wanted");
        await page.finish();
    });
}

async function testGlide(harness, t) {
    await t.test("a flick glides on, a tap plays", async () => {
        const page = await harness.openPage({viewport: {width: 320, height: 300}});
        const {count} = await addPlayer(page, sourceOf("plain"));
        let glided = 0;
        // On a busy machine the moves come too slowly for a flick.
        for (let attempt = 0; attempt < 8 && glided === 0; ++attempt) {
            await page.evaluate(frame => globalThis.player.seekToFrame(frame), count - 2);
            await page.mouse.move(100, 80);
            await page.mouse.down();
            await page.mouse.move(120, 80, {steps: 3});
            await page.mouse.up();
            const released = await current(page);
            await page.waitForTimeout(300);
            glided = released - await current(page);
        }
        assert.ok(glided > 0, "it stopped where it was let go of");
        assert.equal(await page.evaluate(() => globalThis.player.paused), true);
        await page.mouse.click(100, 80);
        await page.waitForFunction(() => !globalThis.player.paused);
        await page.finish();
    });
}

/** Tabs through the player; the names of what has the focus. */
async function focusOrder(page) {
    const names = [];
    for (let k = 0; k < 9; ++k) {
        await page.keyboard.press("Tab");
        const name = await page.evaluate(() => {
            const active = globalThis.player.shadowRoot.activeElement;
            return active && (active.ariaLabel ?? active.getAttribute("aria-label"));
        });
        if (!name)
            break;
        names.push(name);
    }
    return names;
}

async function testKeyboard(harness, t) {
    await t.test("the keyboard reaches and does everything", async () => {
        const page = await harness.openPage();
        const {count} = await addPlayer(page, sourceOf("plain"));
        assert.deepEqual((await focusOrder(page)).filter(name => name !== "Full screen"),
            ["Play", "Frame", "Play once", "Steady", "Compare with as recorded", "Speed"]);
        await page.evaluate(() => globalThis.player.focus());
        await page.keyboard.press("End");
        await comesTo(page, count - 1);
        await page.keyboard.press("ArrowLeft");
        await comesTo(page, count - 2);
        await page.keyboard.press("Home");
        await comesTo(page, 0);
        await page.keyboard.press("ArrowRight");
        await comesTo(page, 1);
        await page.keyboard.press("Shift+ArrowRight");
        await comesTo(page, 11);
        await page.keyboard.press("Tab");
        await page.keyboard.press(" ");
        await page.waitForFunction(() => !globalThis.player.paused);
        await page.keyboard.press(" ");
        await page.waitForFunction(() => globalThis.player.paused);
        const press = label => page.evaluate(name => globalThis.player.shadowRoot.querySelector(`[aria-label="${name}"]`).click(), label);
        await press("Play once");
        await press("Loop");
        await press("Steady");
        await press("Compare with as recorded");
        const attributes = await page.evaluate(() => globalThis.player.getAttributeNames().filter(name => !["src", "record"].includes(name)));
        assert.deepEqual(attributes.sort(), ["back-and-forth", "compare", "steady"]);
        assert.equal(await page.evaluate(() => globalThis.player.steady), false);
        await page.finish();
    });
}

async function testPreferences(harness, t) {
    await t.test("less motion: no autoplay", async () => {
        for (const [reducedMotion, paused] of [["reduce", true], ["no-preference", false]]) {
            const page = await harness.openPage({reducedMotion});
            await addPlayer(page, {...sourceOf("plain"), autoplay: "", loop: ""});
            await page.evaluate(() => globalThis.player.seekToFrame(3));
            await page.waitForTimeout(300);
            assert.equal(await page.evaluate(() => globalThis.player.paused), paused);
            await page.finish();
        }
    });
}

/** The left of the boundary shows the frame as it is in the video, the right the steady picture. */
async function testCompare(harness, t, record) {
    await t.test("a comparison shows both sides of the boundary", async () => {
        const page = await harness.openPage();
        await addPlayer(page, {...sourceOf("plain"), compare: ""});
        const frame = record.frameCount >> 1;
        const rows = await page.evaluate(async index => {
            const {player} = globalThis;
            const canvas = player.shadowRoot.querySelector("canvas");
            const copy = new OffscreenCanvas(canvas.width, canvas.height);
            const context = copy.getContext("2d", {willReadFrequently: true});
            const row = async look => {
                Object.assign(player, look);
                await player.seekToFrame(index);
                context.drawImage(canvas, 0, 0);
                return [...context.getImageData(0, copy.height >> 1, copy.width, 1).data];
            };
            return {
                both: await row({compare: true, split: 0.25}),
                steady: await row({compare: false, steady: true}),
                recorded: await row({compare: false, steady: false}),
            };
        }, frame);
        const cut = rows.both.length / 4;
        assert.deepEqual(rows.both.slice(0, cut - 4), rows.recorded.slice(0, cut - 4));
        assert.deepEqual(rows.both.slice(cut + 4), rows.steady.slice(cut + 4));
        assert.notDeepEqual(rows.steady, rows.recorded);
        await page.finish();
    });
}

async function testTilt(harness, t, record) {
    await t.test("tilting the device moves along the sweep, where that is allowed", async () => {
        const page = await harness.openPage({viewport: {width: 360, height: 640}, hasTouch: true, isMobile: true, before: () => {
            globalThis.answer = "denied";
            DeviceOrientationEvent.requestPermission = async () => globalThis.answer;
        }});
        const {count} = await addPlayer(page, sourceOf("plain"));
        const start = count >> 1;
        await page.evaluate(frame => globalThis.player.seekToFrame(frame), start);
        const button = page.getByRole("button", {name: "Look around by tilting the device"});
        const isOn = () => button.getAttribute("aria-pressed").then(value => value === "true");
        const tilt = degrees => page.evaluate(gamma =>
            dispatchEvent(new DeviceOrientationEvent("deviceorientation", {alpha: 0, beta: 30, gamma})), degrees);
        await button.tap();
        assert.equal(await isOn(), false, "it was not allowed");
        await page.evaluate(() => { globalThis.answer = "granted"; });
        await button.tap();
        await page.waitForFunction(name => globalThis.player.shadowRoot.querySelector(name).ariaPressed === "true", "[data-name=tilt]");
        // How it is held at first is the middle; 50 degrees are the whole way. The picture moves against the tilt.
        const positions = positionsOf(record);
        const way = Math.max(...positions) - Math.min(...positions);
        await tilt(5);
        for (const turned of [10, 20, -12]) {
            await tilt(5 + turned);
            const wanted = nearest(record, positions[start] - turned / 50 * way);
            await page.waitForFunction(frames => frames.includes(globalThis.player.currentFrame), wanted, {timeout: 20000});
        }
        const last = await current(page);
        await button.tap();
        assert.equal(await isOn(), false);
        await tilt(40);
        assert.equal(await current(page), last, "it tilts though that was switched off");
        await button.tap();
        await page.evaluate(() => {
            const {player} = globalThis;
            player.remove();
            document.body.append(player);
        });
        assert.equal(await isOn(), false, "it was taken off the page");
        await page.finish();
    });
}

async function testFullScreen(harness, t) {
    await t.test("full screen, and back", async () => {
        const page = await harness.openPage();
        await addPlayer(page, sourceOf("plain"));
        const button = page.getByRole("button", {name: "Full screen"});
        await button.click();
        await page.waitForFunction(() => document.fullscreenElement === globalThis.player);
        await page.waitForFunction(() => {
            const {width, height} = globalThis.player.getBoundingClientRect();
            return width === innerWidth && height === innerHeight;
        });
        await button.click();
        await page.waitForFunction(() => document.fullscreenElement === null);
        await page.finish();
    });
}

/** @param {Awaited<ReturnType<import("./harness.js").startHarness>>} harness @param {import("node:test").TestContext} t */
export async function testHands(harness, t) {
    const {record} = await harness.sweeps.sweep("plain");
    const mirrored = await harness.sweeps.sweep("mirrored");
    await testDrag(harness, t, "plain", record);
    await testDrag(harness, t, "mirrored", mirrored.record);
    await testGlide(harness, t);
    await testTilt(harness, t, record);
    await testKeyboard(harness, t);
    await testFullScreen(harness, t);
    await testPreferences(harness, t);
    await testCompare(harness, t, record);
}
