import {OrbitwalkPlayer} from "./element.js";

export {OrbitwalkPlayer};

if (!customElements.get("orbitwalk-player"))
    customElements.define("orbitwalk-player", OrbitwalkPlayer);
