// Builds dist/player.js, an ES module, and dist/player.iife.js, a classic script for pages without a server; both hold
// the record reader and the demuxer, and say their licences.
import {readFile} from "node:fs/promises";
import {build} from "esbuild";

const {devDependencies} = JSON.parse(await readFile("package.json", "utf8"));
const common = {
    entryPoints: ["src/index.js"],
    bundle: true,
    minify: true,
    target: "es2022",
    legalComments: "none",
    banner: {js: `/* Orbitwalk player. Contains Mediabunny ${devDependencies.mediabunny}, copyright 2026-present Vanilagy and ` +
        "contributors, under the Mozilla Public License 2.0, https://mozilla.org/MPL/2.0/; its source is the npm package " +
        "mediabunny of that version. */"},
    logLevel: "warning",
};
await build({...common, format: "esm", outfile: "dist/player.js", sourcemap: true});
await build({...common, format: "iife", globalName: "orbitwalk", outfile: "dist/player.iife.js"});
