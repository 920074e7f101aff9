import {execFile} from "node:child_process";
import {promisify} from "node:util";

/** @param {string} program @param {string[]} options */
export const run = (program, ...options) => promisify(execFile)(program, options, {maxBuffer: 1 << 24});
