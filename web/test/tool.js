// The tool, which makes what the tests read: ORBITWALK_TOOL names it, or else it is where scripts/sweep.sh builds it.
import {execFile} from "node:child_process";
import {access} from "node:fs/promises";
import {fileURLToPath} from "node:url";
import {promisify} from "node:util";

const path = process.env.ORBITWALK_TOOL || fileURLToPath(new URL("../../build/release/orbitwalk", import.meta.url));
await access(path).catch(() => { throw new Error(`ORBITWALK_TOOL has to name the tool: ${path} is not there`); });

/** @param {string} program @param {string[]} options */
export const run = (program, ...options) => promisify(execFile)(program, options, {maxBuffer: 1 << 24});

/** @param {string[]} options */
export const tool = (...options) => run(path, ...options);
