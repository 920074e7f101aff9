// The player in a real browser, which ORBITWALK_CHROMIUM names. ORBITWALK_PLAYER_TESTS may name the only part to run.
import test, {after} from "node:test";
import {testErrors} from "./browser/errors.js";
import {testHands} from "./browser/hands.js";
import {startHarness} from "../bench/browser.js";
import {testPages} from "./browser/pages.js";
import {testPictures} from "./browser/pictures.js";
import {testPlaying} from "./browser/playing.js";

const parts = {hands: testHands, errors: testErrors, pages: testPages, pictures: testPictures, playing: testPlaying};
const only = process.env.ORBITWALK_PLAYER_TESTS;

const harness = await startHarness();
if (!only)
    harness.sweeps.prepare();
after(() => harness.close());

for (const [name, part] of Object.entries(parts))
    if (!only || only === name)
        test(`the player in a browser: ${name}`, t => part(harness, t));
