import {OrbitwalkPlayer} from "./element.js";

export {OrbitwalkPlayer};
export {openEmbedded} from "./embedded.js";

if (!customElements.get("orbitwalk-player"))
    customElements.define("orbitwalk-player", OrbitwalkPlayer);
