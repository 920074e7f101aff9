import {OrbitwalkPlayer} from "./element.js";

export {OrbitwalkPlayer};
export {openEmbedded} from "./embedded.js";

if (globalThis.customElements && !customElements.get("orbitwalk-player"))
    customElements.define("orbitwalk-player", OrbitwalkPlayer);
