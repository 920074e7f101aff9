// What `npm pack` makes: installed into an empty folder, without a registry, it runs in Node, bundles and has types.
import assert from "node:assert/strict";
import {access, cp, mkdir, mkdtemp, readdir, rm, symlink, writeFile} from "node:fs/promises";
import {tmpdir} from "node:os";
import {basename, join} from "node:path";
import test, {after, before} from "node:test";
import {fileURLToPath} from "node:url";
import {run} from "./run.js";

const web = fileURLToPath(new URL("..", import.meta.url));
const tools = join(web, "node_modules", ".bin");
let work = "";
let folder = "";

before(async () => {
    work = await mkdtemp(join(tmpdir(), "packages-"));
    folder = join(work, "consumer");
    const sources = join(work, "sources");
    // Without what was built before, which other tests use meanwhile.
    await cp(web, sources, {recursive: true, filter: path => !["node_modules", "dist"].includes(basename(path))});
    await symlink(join(web, "node_modules"), join(sources, "node_modules"));
    const npm = (directory, ...options) => run("npm", "--prefix", directory, "--no-audit", "--no-fund", ...options);
    await npm(sources, "pack", "-w", "record", "-w", "player", "--pack-destination", work, "--silent");
    await mkdir(folder);
    await writeFile(join(folder, "package.json"), '{"type": "module"}');
    const archives = (await readdir(work)).filter(name => name.endsWith(".tgz"));
    await npm(folder, "install", "--offline", ...archives.map(name => join(work, name)));
});
after(() => rm(work, {recursive: true, force: true}));

async function write(name, text) {
    const file = join(folder, name);
    await writeFile(file, text);
    return file;
}

test("they are imported in Node, where nothing is drawn", async () => {
    const file = await write("read.js", `
        import {openRecord} from "@orbitwalk/record";
        import {OrbitwalkPlayer} from "@orbitwalk/player";
        try {
            openRecord(new ArrayBuffer(10));
        } catch ({name, fault}) {
            console.log(name, fault, typeof OrbitwalkPlayer);
        }`);
    assert.equal((await run("node", file)).stdout.trim(), "RecordError Size function");
    for (const name of ["record", "player"])
        await access(join(folder, "node_modules", "@orbitwalk", name, "README.md"));
});

test("they are bundled, and types are checked", async () => {
    const use = (name, value) => write(`${name}.ts`, `
        import {openRecord} from "@orbitwalk/record";
        import {OrbitwalkPlayer} from "@orbitwalk/player";
        const player = document.querySelector("orbitwalk-player") as OrbitwalkPlayer;
        player.addEventListener("ready", () => player.seekToFrame(openRecord(new ArrayBuffer(8)).renderedFrames[0]));
        player.speed = ${value};`);
    const right = await use("right", "2"), wrong = await use("wrong", '"fast"');
    await run(join(tools, "esbuild"), right, "--bundle", "--format=esm", `--outfile=${join(folder, "out.js")}`);
    const compilerOptions = {strict: true, noEmit: true, target: "es2022", module: "esnext", moduleResolution: "bundler", types: []};
    const check = async file => run(join(tools, "tsc"), "-p", await write(`${basename(file)}.json`,
        JSON.stringify({compilerOptions, files: [file]})));
    await check(right);
    await assert.rejects(check(wrong), ({stdout}) => stdout.includes("'string' is not assignable to type 'number'"));
});
