// The pages that `orbitwalk player` and `report` write: opened as files, they play and ask for nothing.
import assert from "node:assert/strict";
import {cp} from "node:fs/promises";
import {join} from "node:path";
import {fileURLToPath} from "node:url";
import {tool} from "../../../test/tool.js";
import {withoutWebCodecs} from "./pictures.js";

const urlFile = path => fileURLToPath(new URL(path, import.meta.url));

/** @param {Awaited<ReturnType<import("../../bench/browser.js").startHarness>>} harness @param {import("node:test").TestContext} t */
export async function testPages(harness, t) {
    const {record} = await harness.sweeps.sweep("plain");
    const directory = join(harness.work, "plain");
    const file = join(harness.work, "page.html");
    await tool("player", directory, "-q", "-o", file);

    for (const [name, before] of [["WebCodecs", () => {}], ["a video element", withoutWebCodecs]])
        await t.test(`one file plays with ${name} and asks for nothing`, async () => {
            const context = await harness.browser.newContext();
            const page = await context.newPage();
            const requests = [], unhandled = [];
            page.on("request", request => requests.push(request.url().split(":")[0]));
            page.on("pageerror", error => unhandled.push(String(error)));
            page.on("console", message => message.type() === "error" && unhandled.push(message.text()));
            await page.addInitScript(before);
            await page.goto(`file://${file}`);
            const shown = await page.evaluate(async () => {
                const player = document.getElementById("player");
                const {width, data} = await player.pictureAt(4);
                // It plays by itself.
                await new Promise(resolve => player.addEventListener("framechange", ({detail}) => detail.frame > 2 && resolve(null)));
                player.pause();
                return {count: player.frameCount, width, isDrawn: data.some(value => value > 0 && value < 255)};
            });
            assert.deepEqual(shown, {count: record.renderedFrames.length, width: record.width, isDrawn: true});
            assert.deepEqual(requests.filter(scheme => !["file", "blob", "data"].includes(scheme)), []);
            assert.equal(requests.filter(scheme => scheme === "file").length, 1);
            // The policy would stop what a changed page asked for.
            await page.evaluate(() => fetch("http://127.0.0.1:9/").catch(() => {}));
            assert.ok(unhandled.every(text => text.includes("Content Security Policy")) && unhandled.length > 0, `${unhandled}`);
            await context.close();
        });

    await t.test("the example plays and shows thumbnails, or says why not", async () => {
        const place = join(harness.work, "example");
        for (const [from, name] of [[join(directory, "sweep.mp4"), "sweep.mp4"], [join(directory, "sweep.obw"), "sweep.obw"],
            [urlFile("../../dist/player.js"), "player.js"], [urlFile("../../../../examples/player/index.html"), "index.html"]])
            await cp(from, join(place, name), {recursive: true});
        const page = await harness.openPage({}, "example/index.html");
        await page.waitForFunction(() => document.querySelectorAll("#thumbnails canvas").length === 6 &&
            !document.querySelector("orbitwalk-player").paused);
        await page.locator("#thumbnails canvas").nth(5).click();
        await page.waitForFunction(() => {
            const {currentFrame, frameCount, paused} = document.querySelector("orbitwalk-player");
            return paused && currentFrame === frameCount - 1;
        });
        await page.finish();
        // A player that is taken away while it makes thumbnails.
        const gone = await harness.openPage({before: () =>
            addEventListener("ready", ({target}) => queueMicrotask(() => target.remove()), true)}, "example/index.html");
        await gone.waitForFunction(() => document.getElementById("caption").textContent.includes("let go of"));
        await gone.finish();
    });

    await t.test("the report's plots and its player show the same frame", async () => {
        const report = join(harness.work, "report.html");
        await tool("report", directory, "-q", "-o", report);
        const page = await harness.browser.newPage();
        await page.goto(`file://${report}`);
        const cursors = await page.evaluate(async () => {
            const player = document.getElementById("player");
            await player.seekToFrame(6);
            return globalThis.reportPlots.map(({plot}) => plot.cursor.idx);
        });
        assert.deepEqual(new Set(cursors), new Set([6]));
        const place = await page.evaluate(() => {
            const {plot} = globalThis.reportPlots[1];
            plot.over.scrollIntoView({block: "center"});
            const {left, top} = plot.over.getBoundingClientRect();
            return {x: left + plot.valToPos(3, "x"), y: top + 40};
        });
        await page.mouse.move(place.x - 2, place.y);
        await page.mouse.move(place.x, place.y);
        await page.evaluate(() => new Promise(resolve => {
            const player = document.getElementById("player");
            const look = () => player.currentFrame === 3 && resolve(null);
            player.addEventListener("framechange", look);
            look();
        }));
        await page.close();
    });
}
