/**
 * For pages that hold their sweep: plays what stands in base64 in two elements, and takes them off the page.
 * @param {import("./element.js").OrbitwalkPlayer} player
 * @param {string} videoId
 * @param {string} recordId
 */
export function openEmbedded(player, videoId, recordId) {
    player.open(takeBytes(videoId), takeBytes(recordId));
}

/** @param {string} id @returns {Uint8Array<ArrayBuffer>} */
function takeBytes(id) {
    const holder = /** @type {HTMLElement} */ (document.getElementById(id));
    const text = holder.textContent ?? "";
    holder.remove();
    const {fromBase64} = /** @type {{fromBase64?: (text: string) => Uint8Array<ArrayBuffer>}} */ (
        /** @type {unknown} */ (Uint8Array));
    return fromBase64 ? fromBase64.call(Uint8Array, text) : Uint8Array.from(atob(text), c => c.charCodeAt(0));
}
