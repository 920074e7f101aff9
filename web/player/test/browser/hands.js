// What people do with it: drag, keys, buttons, preferences.
import assert from "node:assert/strict";
import {addPlayer, sourceOf} from "../../bench/browser.js";

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

/** A finger on the page, by the browser's own events. */
async function fingerOn(page) {
    const session = await page.context().newCDPSession(page);
    const send = (type, touchPoints) => session.send("Input.dispatchTouchEvent", {type, touchPoints});
    return {
        down: (x, y) => send("touchStart", [{x, y}]),
        move: (x, y) => send("touchMove", [{x, y}]),
        up: () => send("touchEnd", []),
    };
}

const mouseOn = page => ({
    down: (x, y) => page.mouse.move(x, y).then(() => page.mouse.down()),
    move: (x, y) => page.mouse.move(x, y),
    up: () => page.mouse.up(),
});

const canvasBox = page => page.evaluate(() => {
    const {x, y, width, height} = globalThis.player.shadowRoot.querySelector("canvas").getBoundingClientRect();
    return {x, y, width, height};
});

/** @param {"width" | "height"} across  what of the crop the width of the screen shows */
async function testDrag(harness, t, name, record, across, hand, device) {
    await t.test(`dragging shows the frame under the finger: ${name}`, async () => {
        const page = await harness.openPage({reducedMotion: "reduce", ...device});
        const {count} = await addPlayer(page, sourceOf(name));
        const start = count >> 1;
        await page.evaluate(frame => globalThis.player.seekToFrame(frame), start);
        const box = await canvasBox(page);
        const scale = record.crop[across] / box.width * (record.isFlipped ? -1 : 1);
        const middle = {x: box.x + box.width / 2, y: box.y + box.height / 2};
        const {down, move, up} = await hand(page);
        await down(middle.x, middle.y);
        const seen = new Set();
        for (const moved of [-90, -40, -20, 7, 30, 75, 130, -10]) {
            await move(middle.x + moved, middle.y + 5);
            const wanted = nearest(record, positionsOf(record)[start] + moved * scale);
            await page.waitForFunction(frames => frames.includes(globalThis.player.currentFrame), wanted, {timeout: 20000});
            seen.add(wanted[0]);
        }
        await up();
        assert.ok(seen.size > 4, "the drag hardly moved");
        const last = await current(page);
        await page.waitForTimeout(200);
        assert.equal(await current(page), last, "it glides though less motion is wanted");
        await page.finish();
    });
}

async function testGlide(harness, t, record) {
    await t.test("a flick glides on, a tap plays", async () => {
        const page = await harness.openPage({viewport: {width: 320, height: 300}});
        const {count} = await addPlayer(page, sourceOf("plain"));
        const scale = record.crop.width / (await canvasBox(page)).width;
        const start = count - 2;
        const letGo = nearest(record, positionsOf(record)[start] + 20 * scale);
        let reached = count;
        // On a busy machine the moves come too slowly for a flick.
        for (let attempt = 0; attempt < 8 && reached >= Math.min(...letGo); ++attempt) {
            await page.evaluate(frame => globalThis.player.seekToFrame(frame), start);
            await page.mouse.move(100, 80);
            await page.mouse.down();
            await page.mouse.move(120, 80, {steps: 3});
            await page.mouse.up();
            await page.waitForTimeout(300);
            reached = await current(page);
        }
        assert.ok(reached < Math.min(...letGo), `let go of at ${letGo}, it stands at ${reached}`);
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
        const {count} = await addPlayer(page, {...sourceOf("plain"), compare: ""});
        assert.deepEqual(await focusOrder(page), ["As recorded on the left, steady on the right", "Play", "Frame", "Play once",
            "Steady", "Compare with as recorded", "Speed", "Full screen"]);
        await page.evaluate(() => globalThis.player.shadowRoot.querySelector("[data-name=toggle]").focus());
        for (const [key, frame] of [["End", count - 1], ["ArrowLeft", count - 2], ["Home", 0], ["ArrowRight", 1],
            ["Shift+ArrowRight", 11]]) {
            await page.keyboard.press(key);
            await comesTo(page, frame);
        }
        await page.keyboard.press("Tab");
        await page.keyboard.press(" ");
        await page.waitForFunction(() => !globalThis.player.paused);
        await page.keyboard.press(" ");
        await page.waitForFunction(() => globalThis.player.paused);
        // On the boundary, the arrows move it and not the sweep.
        const frame = await current(page);
        await page.keyboard.press("Shift+Tab");
        await page.keyboard.press("Shift+Tab");
        for (const [key, split] of [["ArrowRight", 0.55], ["ArrowLeft", 0.5], ["Home", 0], ["End", 1]]) {
            await page.keyboard.press(key);
            assert.equal(await page.evaluate(() => globalThis.player.split), split);
        }
        assert.equal(await current(page), frame);
        await page.finish();
    });
}

async function testControls(harness, t) {
    await t.test("buttons, scrubber, speed and the boundary do what they say", async () => {
        const page = await harness.openPage();
        await addPlayer(page, sourceOf("plain"));
        await page.getByLabel("Frame").fill("7");
        await comesTo(page, 7);
        for (const name of ["Play once", "Loop", "Steady", "Compare with as recorded"])
            await page.getByRole("button", {name, exact: true}).click();
        await page.getByLabel("Speed").selectOption("0.5");
        const box = await canvasBox(page);
        await page.mouse.move(box.x + box.width / 2, box.y + 20);
        await page.mouse.down();
        await page.mouse.move(box.x + box.width / 4, box.y + 30);
        await page.mouse.up();
        const {attributes, split, frame} = await page.evaluate(() => {
            const {player} = globalThis;
            const all = [...player.attributes].filter(({name}) => !["src", "record"].includes(name));
            return {attributes: Object.fromEntries(all.map(({name, value}) => [name, value])), split: player.split, frame: player.currentFrame};
        });
        assert.deepEqual(attributes, {"back-and-forth": "", steady: "false", compare: "", speed: "0.5"});
        assert.ok(Math.abs(split - 0.25) < 0.01, `${split}`);
        assert.equal(frame, 7, "the boundary's drag moved the sweep");
        await page.finish();
    });
    await t.test("attributes and properties are the same", async () => {
        const page = await harness.openPage();
        const [set, read] = await page.evaluate(() => {
            const one = document.createElement("orbitwalk-player"), other = document.createElement("orbitwalk-player");
            Object.assign(one, {src: "a", record: "b", autoplay: true, loop: true, backAndForth: true, steady: false, compare: true,
                speed: 2, borderFrames: true, cacheMegabytes: 64});
            const speeds = ["1e-3", "99", "-1", "fast"].map(text => {
                other.setAttribute("speed", text);
                return other.speed;
            });
            return [[...one.attributes].map(({name, value}) => `${name}=${value}`).sort(), speeds];
        });
        assert.deepEqual(set, ["autoplay=", "back-and-forth=", "border-frames=", "cache-megabytes=64", "compare=", "loop=", "record=b",
            "speed=2", "src=a", "steady=false"]);
        assert.deepEqual(read, [1 / 16, 16, 1, 1]);
        await page.finish();
    });
}

async function testPreferences(harness, t) {
    await t.test("less motion or a pause before it begins: no autoplay", async () => {
        for (const [reducedMotion, pauses, paused] of [["reduce", false, true], ["no-preference", true, true], ["no-preference", false, false]]) {
            const page = await harness.openPage({reducedMotion, before: pauses ? () =>
                addEventListener("ready", ({target}) => target.pause(), true) : undefined});
            await addPlayer(page, {...sourceOf("plain"), autoplay: "", loop: ""});
            await page.evaluate(() => globalThis.player.seekToFrame(3));
            await page.waitForTimeout(300);
            assert.equal(await page.evaluate(() => globalThis.player.paused), paused);
            await page.finish();
        }
    });
}

/** Luminance as WCAG 2 defines it; what is half transparent lies on a white picture. @param {string} colour  as computed */
function luminance(colour) {
    const [red, green, blue, alpha = 1] = colour.match(/[\d.]+/g).map(Number);
    const linear = [red, green, blue].map(value => (value * alpha / 255) + 1 - alpha)
        .map(value => value <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4);
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2];
}

async function testContrast(harness, t) {
    await t.test("text and controls stand out, light and dark", async () => {
        for (const colorScheme of ["light", "dark"]) {
            const page = await harness.openPage({colorScheme});
            await addPlayer(page, {...sourceOf("plain"), compare: ""});
            const pairs = await page.evaluate(() => {
                const style = selector => getComputedStyle(globalThis.player.shadowRoot.querySelector(selector));
                const {backgroundColor: ground} = getComputedStyle(globalThis.player);
                const own = selector => [style(selector).color, style(selector).backgroundColor];
                return {
                    words: [[style("output").color, ground], [style("select").color, ground], own(".message"), own(".tag")],
                    shapes: [[style("[data-name=toggle]").color, ground], own("[aria-pressed=true]"), [style(".scrubber").accentColor, ground]],
                };
            });
            for (const [kind, least] of [["words", 4.5], ["shapes", 3]])
                for (const pair of pairs[kind]) {
                    const [dark, light] = pair.map(luminance).sort((a, b) => a - b);
                    assert.ok((light + 0.05) / (dark + 0.05) >= least, `${colorScheme} ${kind}: ${pair}`);
                }
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
        // Whoever asks for a picture waits for those that were asked for before.
        for (let i = 0; i < count; ++i)
            await page.evaluate(index => globalThis.player.pictureAt(index, 8), i);
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

/** @param {Awaited<ReturnType<import("../../bench/browser.js").startHarness>>} harness @param {import("node:test").TestContext} t */
export async function testHands(harness, t) {
    const recordOf = async name => (await harness.sweeps.sweep(name)).record;
    const record = await recordOf("plain");
    await testDrag(harness, t, "plain", record, "width", mouseOn);
    await testDrag(harness, t, "mirrored", await recordOf("mirrored"), "width", mouseOn);
    await testDrag(harness, t, "held upright", await recordOf("held upright"), "height", fingerOn,
        {viewport: {width: 360, height: 740}, hasTouch: true, isMobile: true});
    await testGlide(harness, t, record);
    await testTilt(harness, t, record);
    await testKeyboard(harness, t);
    await testControls(harness, t);
    await testFullScreen(harness, t);
    await testPreferences(harness, t);
    await testContrast(harness, t);
    await testCompare(harness, t, record);
}
