import {byId} from "./page.js";
import {fillCrop, fillStrip} from "./pictures.js";
import {playAlong} from "./playAlong.js";
import {addPlots} from "./plots.js";
import {fillRefined, fillTime} from "./tables.js";
import {fillWords} from "./words.js";

fillWords();
fillCrop();
fillStrip();
fillRefined();
fillTime();
/** For whoever examines the page. */
globalThis.reportPlots = addPlots();
const player = byId("player");
playAlong(player, globalThis.reportPlots.filter(({byFrame}) => byFrame));
globalThis.orbitwalk.openEmbedded(player, "video", "record");
