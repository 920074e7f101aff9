// Pictures of the pages as people see them, to be looked at after a change of their looks:
//     npm run pictures -w player -- DIR OUT     DIR as `capture` leaves a sweep; OUT gets PNGs
import {mkdir} from "node:fs/promises";
import {join, resolve} from "node:path";
import {tool} from "../../test/tool.js";
import {startHarness} from "./browser.js";

const widths = {wide: {width: 1280, height: 860}, narrow: {width: 360, height: 640, hasTouch: true, isMobile: true}};

/** @type {Record<string, (player: any) => unknown>} What is done to the page's player before its picture is taken. */
const states = {
    player: player => player.seekToFrame(player.frameCount >> 1),
    comparison: player => {
        Object.assign(player, {compare: true, speed: 0.3, loop: false});
        return player.seekToFrame(player.frameCount >> 2);
    },
    failure: player => {
        player.open(new Uint8Array(8), new Uint8Array(8));
        return new Promise(resolve => player.addEventListener("error", resolve));
    },
};

const [sweep, out] = process.argv.slice(2).map(path => resolve(process.env.INIT_CWD ?? ".", path));
if (!out)
    throw new Error("npm run pictures -w player -- DIR OUT");
const harness = await startHarness();
try {
    await mkdir(out, {recursive: true});
    const files = {player: join(harness.work, "player.html"), report: join(harness.work, "report.html")};
    for (const [command, file] of Object.entries(files))
        await tool(command, sweep, "-q", "-o", file);
    for (const colorScheme of /** @type {const} */ (["light", "dark"]))
        for (const [name, {width, height, ...device}] of Object.entries(widths)) {
            const context = await harness.browser.newContext({colorScheme, viewport: {width, height}, ...device});
            const page = await context.newPage();
            const take = (what, options) => page.screenshot({path: join(out, `${what}-${colorScheme}-${name}.png`), ...options});
            await page.goto(`file://${files.player}`);
            await page.evaluate(async () => {
                const player = document.querySelector("orbitwalk-player");
                await player.play();
                player.pause();
            });
            for (const [what, act] of Object.entries(states)) {
                await page.evaluate(`(${act})(document.querySelector("orbitwalk-player"))`);
                await take(what);
            }
            await page.goto(`file://${files.report}`);
            await page.evaluate(() => document.querySelector("orbitwalk-player").seekToFrame(3));
            await take("report", {fullPage: true});
            await context.close();
        }
} finally {
    await harness.close();
}
