// The tool, which makes what the tests read: ORBITWALK_TOOL names it, or else it is where scripts/sweep.sh builds it.
import {access} from "node:fs/promises";
import {fileURLToPath} from "node:url";
import {run} from "./run.js";

const path = process.env.ORBITWALK_TOOL || fileURLToPath(new URL("../../build/release/orbitwalk", import.meta.url));
await access(path).catch(() => { throw new Error(`ORBITWALK_TOOL has to name the tool: ${path} is not there`); });

/** @param {string[]} options */
export const tool = (...options) => run(path, ...options);
