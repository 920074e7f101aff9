// A browser, and a server on this machine for the built player and the sweeps of a directory: for tests and measurements.
import assert from "node:assert/strict";
import {createReadStream} from "node:fs";
import {mkdtemp, rm, stat} from "node:fs/promises";
import {createServer} from "node:http";
import {tmpdir} from "node:os";
import {extname, join, normalize} from "node:path";
import {fileURLToPath} from "node:url";
import {chromium} from "playwright-core";
import {sweepsIn} from "../test/browser/sweeps.js";

const dist = fileURLToPath(new URL("../dist/", import.meta.url));
const types = {".js": "text/javascript", ".html": "text/html", ".mp4": "video/mp4"};

const page = `<!DOCTYPE html><html lang="en"><head><meta charset="utf-8"><title>Test</title>
<meta name="viewport" content="width=device-width"><meta name="color-scheme" content="light dark"><style>body { margin: 0; } orbitwalk-player { width: 100%; }</style>
</head><body></body></html>`;

/** @param {string} work */
async function serve(work) {
    const server = createServer(async (request, response) => {
        const path = normalize(decodeURIComponent(new URL(request.url, "http://localhost").pathname));
        if (path === "/")
            return response.setHeader("content-type", "text/html").end(page);
        const file = path.startsWith("/dist/") ? join(dist, path.slice(6)) : join(work, path);
        const facts = await stat(file).catch(() => null);
        if (!facts?.isFile())
            return response.writeHead(404).end();
        response.setHeader("content-type", types[extname(file)] ?? "application/octet-stream");
        response.setHeader("accept-ranges", "bytes");
        const range = /^bytes=(\d+)-(\d*)$/.exec(request.headers.range ?? "");
        const begin = range ? Number(range[1]) : 0;
        const end = range?.[2] ? Math.min(Number(range[2]), facts.size - 1) : facts.size - 1;
        if (begin >= facts.size)
            return response.writeHead(416, {"content-range": `bytes */${facts.size}`}).end();
        response.setHeader("content-length", end - begin + 1);
        if (range)
            response.writeHead(206, {"content-range": `bytes ${begin}-${end}/${facts.size}`});
        createReadStream(file, {start: begin, end}).pipe(response);
    });
    await new Promise(resolve => server.listen(0, "127.0.0.1", resolve));
    return server;
}

/** One for a run of tests; close ends it. */
export async function startHarness() {
    const work = await mkdtemp(join(tmpdir(), "player-"));
    const server = await serve(work);
    const browser = await chromium.launch({
        executablePath: process.env.ORBITWALK_CHROMIUM || "/usr/bin/chromium",
        args: ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
            "--disable-background-networking", "--disable-component-update", "--disable-sync", "--enable-precise-memory-info",
            "--js-flags=--expose-gc"],
    });
    const address = `http://127.0.0.1:${server.address().port}/`;

    /**
     * A page with the player's script in it, and what it left unhandled.
     * @param {import("playwright-core").BrowserContextOptions & {before?: () => void}} [options]
     * @param {string} [path]  of a page that has the script itself
     */
    async function openPage({before, ...options} = {}, path = "") {
        const context = await browser.newContext({viewport: {width: 960, height: 640}, ...options});
        const opened = await context.newPage();
        const unhandled = [];
        opened.on("pageerror", error => unhandled.push(String(error)));
        opened.on("console", message => {
            if (message.type() === "error" && !message.text().startsWith("Failed to load resource"))
                unhandled.push(message.text());
        });
        if (before)
            await opened.addInitScript(before);
        await opened.goto(address + path);
        if (!path)
            await opened.addScriptTag({url: "/dist/player.js", type: "module"});
        return Object.assign(opened, {
            unhandled,
            async finish() {
                await context.close();
                assert.deepEqual(unhandled, []);
            },
        });
    }

    return {
        work, address, browser, openPage, sweeps: sweepsIn(work),
        async close() {
            await browser.close();
            server.closeAllConnections?.();
            server.close();
            await rm(work, {recursive: true, force: true});
        },
    };
}

/**
 * Puts a player on a page and waits until it is ready or says why not.
 * @param {import("playwright-core").Page} page
 * @param {Record<string, string>} attributes
 * @returns {Promise<{count: number, error: string | null}>}
 */
export const addPlayer = (page, attributes) => page.evaluate(wanted => new Promise(resolve => {
    const player = document.createElement("orbitwalk-player");
    for (const [name, value] of Object.entries(wanted))
        player.setAttribute(name, value);
    player.addEventListener("ready", () => resolve({count: player.frameCount, error: null}), {once: true});
    player.addEventListener("error", event => resolve({count: 0, error: event.message}), {once: true});
    document.body.append(player);
    globalThis.player = player;
}), attributes);

/** @param {string} name  of a sweep */
export const sourceOf = name => ({src: `/${name}/sweep.mp4`, record: `/${name}/sweep.obw`});
