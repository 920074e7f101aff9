/**
 * What the keyboard does to a player.
 * @typedef {{toggle: () => void, step: (by: number) => void}} KeyRequests
 */

/** @param {KeyboardEvent} event @param {KeyRequests} requests */
export function useKey(event, {toggle, step}) {
    const target = /** @type {Element} */ (event.target);
    const isOwn = target.matches("select") || event.key === " " && target.matches("button");
    if (isOwn || event.altKey || event.ctrlKey || event.metaKey)
        return;
    const far = event.shiftKey ? 10 : 1;
    /** @type {Record<string, () => void>} */
    const actions = {
        " ": toggle,
        ArrowLeft: () => step(-far),
        ArrowRight: () => step(far),
        Home: () => step(-Infinity),
        End: () => step(Infinity),
    };
    const action = actions[event.key];
    if (!action)
        return;
    event.preventDefault();
    action();
}
