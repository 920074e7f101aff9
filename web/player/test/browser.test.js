// The player in a real browser. ORBITWALK_TOOL names the tool that makes the sweeps, ORBITWALK_CHROMIUM the browser;
// ORBITWALK_PLAYER_TESTS may name the only part to run.
import test from "node:test";
import {testErrors} from "./browser/errors.js";
import {testHands} from "./browser/hands.js";
import {startHarness} from "./browser/harness.js";
import {testPages} from "./browser/pages.js";
import {testPictures} from "./browser/pictures.js";
import {testPlaying} from "./browser/playing.js";

const parts = {pictures: testPictures, playing: testPlaying, hands: testHands, errors: testErrors, pages: testPages};
const only = process.env.ORBITWALK_PLAYER_TESTS;

for (const [name, part] of Object.entries(parts))
    if (!only || only === name)
        test(`the player in a browser: ${name}`, async t => {
            const harness = await startHarness();
            try {
                await part(harness, t);
            } finally {
                await harness.close();
            }
        });
