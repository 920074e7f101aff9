// What playing costs the thread that a page's scripts run on, by the browser's own trace.

/** Plays from where the player stands to the end; the pictures in the order shown. */
export const playThrough = page => page.evaluate(async () => {
    const player = document.querySelector("orbitwalk-player");
    const before = player.droppedFrames;
    const frames = [player.currentFrame];
    player.addEventListener("framechange", ({detail}) => frames.push(detail.frame));
    const ended = new Promise(resolve => player.addEventListener("ended", resolve, {once: true}));
    performance.mark("playing begins");
    await player.play();
    await ended;
    performance.mark("playing ends");
    return {frames, dropped: player.droppedFrames - before, paused: player.paused};
});

/** Milliseconds of the main thread in what began between the marks: by the processor's clock and by the wall's. */
function busy(events, name) {
    const mark = wanted => events.find(event => event.name === wanted);
    const begin = mark("playing begins"), end = mark("playing ends");
    const isMain = event => event.pid === begin.pid && event.tid === begin.tid;
    const tasks = events.filter(event => event.ph === "X" && event.name === name && isMain(event) &&
        event.ts >= begin.ts && event.ts <= end.ts);
    const sum = key => tasks.reduce((total, event) => total + (event[key] ?? 0), 0) / 1000;
    return {cpu: sum("tdur"), wall: sum("dur")};
}

/**
 * Plays a player once, while the browser writes down what its threads do: all tasks of the page's main thread, and
 * among them the commits, which in a browser without a graphics processor wait for the raster and copy the canvas.
 * @param {import("playwright-core").Page} page  with a player that stands at its first picture
 */
export async function costOfPlaying(page) {
    const browser = page.context().browser();
    await browser.startTracing(page, {categories: ["blink.user_timing", "disabled-by-default-devtools.timeline"]});
    const played = await playThrough(page);
    const {traceEvents} = JSON.parse((await browser.stopTracing()).toString());
    const each = ({cpu, wall}) => ({cpu: cpu / played.frames.length, wall: wall / played.frames.length});
    return {...played, tasks: each(busy(traceEvents, "RunTask")), commits: each(busy(traceEvents, "Commit"))};
}

/** @param {Awaited<ReturnType<typeof costOfPlaying>>} cost */
export function costInWords({frames, dropped, tasks, commits}) {
    const ms = (/** @type {number} */ value) => value.toFixed(2);
    return `${frames.length} pictures shown, ${dropped} dropped; main thread ${ms(tasks.cpu)} ms a picture, ${ms(commits.cpu)} ` +
        `of them to commit the canvas; by the clock ${ms(tasks.wall - commits.wall)} ms and ${ms(commits.wall)} ms`;
}
