// The page and what it tells: the JSON that the tool writes into it.
/** @type {(id: string) => any} */
export const byId = id => document.getElementById(id);
export const data = JSON.parse(byId("data").textContent);

/**
 * @template {keyof HTMLElementTagNameMap} Name
 * @param {Name} name
 * @param {string} [text]
 * @param {string} [className]
 */
export function element(name, text, className) {
    const made = document.createElement(name);
    if (text !== undefined)
        made.textContent = text;
    if (className)
        made.className = className;
    return made;
}

export const percent = (part, whole) => (100 * part / whole).toFixed(1) + " %";
