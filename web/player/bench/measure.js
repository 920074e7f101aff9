// Measures the player on a sweep, in the page that `orbitwalk player` writes, opened from the disk:
//     npm run measure -w player [-- DIR]     as `capture` leaves it; or else a sweep of 20 MB is made
import {stat} from "node:fs/promises";
import {cpus, loadavg} from "node:os";
import {join, resolve} from "node:path";
import {tool} from "../../test/tool.js";
import {startHarness} from "./browser.js";
import {costInWords, costOfPlaying} from "./cost.js";

/** Milliseconds from when the sweep was ready to when its first picture was drawn, and to when that was on the screen. */
const noteTimes = () => {
    globalThis.delays = new Promise(resolve => addEventListener("ready", ({timeStamp: ready}) => {
        addEventListener("framechange", ({timeStamp: drawn}) => requestAnimationFrame(() => requestAnimationFrame(seen =>
            resolve([drawn - ready, seen - ready]))), {capture: true, once: true});
    }, true));
};

async function measure(page, file) {
    const delays = [];
    for (let k = 0; k < 3; ++k) {
        await page.goto(`file://${file}`);
        const [drawn, seen] = await page.evaluate(() => globalThis.delays);
        delays.push(`${Math.round(drawn)} (${Math.round(seen)})`);
    }
    console.log(`first picture ${delays.join(", ")} ms after ready: drawn (and on the screen)`);
    for (let k = 0; k < 3; ++k) {
        await page.evaluate(() => {
            const player = document.querySelector("orbitwalk-player");
            player.pause();
            player.loop = false;
            player.style.width = "100%";
            return player.seekToFrame(0);
        });
        console.log(costInWords(await costOfPlaying(page)));
    }
}

const given = process.argv[2] && resolve(process.env.INIT_CWD ?? ".", process.argv[2]);
const harness = await startHarness();
try {
    if (!given)
        await harness.sweeps.large(290);
    const directory = given ?? join(harness.work, "large");
    const file = join(harness.work, "page.html");
    await tool("player", directory, "-q", "-o", file);
    const {size} = await stat(join(directory, "sweep.mp4"));
    console.log(`sweep.mp4 has ${(size / 1e6).toFixed(1)} MB; ${cpus().length} processors, load ${loadavg()[0].toFixed(1)}`);
    const page = await harness.browser.newPage({viewport: {width: 1920, height: 1200}});
    await page.addInitScript(noteTimes);
    await measure(page, file);
} finally {
    await harness.close();
}
