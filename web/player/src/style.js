/** The element's own style. Pages set the custom properties and the parts. */
export const style = `
:host {
    --orbitwalk-accent: #1d62b5; --orbitwalk-ground: #f4f5f7; --orbitwalk-ink: #1b1f26; --orbitwalk-line: #8a93a0;
    display: flex; flex-direction: column; position: relative; min-width: 0; overflow: hidden;
    background: var(--orbitwalk-ground); color: var(--orbitwalk-ink); border-radius: 8px;
    font: 14px/1.3 system-ui, sans-serif; container-type: inline-size;
}
@media (prefers-color-scheme: dark) {
    :host { --orbitwalk-accent: #7db4f5; --orbitwalk-ground: #1c2027; --orbitwalk-ink: #e8eaee; --orbitwalk-line: #7a8492; }
}
:host([hidden]) { display: none; }
.stage {
    position: relative; flex: 1 1 auto; min-height: 0; width: 100%; aspect-ratio: var(--aspect, 16 / 9);
    background: #000; overflow: hidden;
}
canvas { position: absolute; inset: 0; margin: auto; display: block; cursor: grab; outline: none; }
canvas:active { cursor: grabbing; }
.split {
    position: absolute; top: 0; bottom: 0; width: 44px; margin-left: -22px; cursor: ew-resize; touch-action: none;
    background: linear-gradient(90deg, #0009 1px, #fff 1px 3px, #0009 3px) center / 4px 100% no-repeat;
}
.split::after {
    content: "\\2194"; position: absolute; top: 50%; left: 50%; width: 30px; height: 30px; margin: -15px; border-radius: 50%;
    background: #fff; color: #111; text-align: center; line-height: 30px; font-size: 18px; box-shadow: 0 0 4px #0008;
}
.tag {
    position: absolute; top: 8px; padding: 2px 8px; border-radius: 4px; background: #000a; color: #fff; font-size: 12px;
    pointer-events: none;
}
.tag.left { left: 8px; }
.tag.right { right: 8px; }
.message {
    position: absolute; inset: 0; display: flex; align-items: center; justify-content: center; padding: 16px;
    background: #14171c; color: #f1f2f4; text-align: center; overflow-wrap: anywhere;
}
.controls { display: flex; flex-wrap: wrap; align-items: center; gap: 4px 6px; padding: 6px 8px; }
button, select {
    box-sizing: border-box; height: 36px; min-width: 36px; padding: 0 6px; border: 1px solid transparent; border-radius: 6px;
    background: transparent; color: inherit; font: inherit; cursor: pointer;
}
button { display: inline-flex; align-items: center; justify-content: center; gap: 6px; }
button:hover, select:hover { border-color: var(--orbitwalk-line); }
button[aria-pressed="true"] { background: var(--orbitwalk-accent); color: var(--orbitwalk-ground); }
select option { background: Canvas; color: CanvasText; }
:disabled { opacity: 0.5; cursor: default; }
:focus-visible { outline: 2px solid var(--orbitwalk-accent); outline-offset: 1px; }
.stage :focus-visible { outline: 3px solid #fff; outline-offset: -3px; }
svg { width: 20px; height: 20px; fill: none; stroke: currentColor; stroke-width: 2; stroke-linecap: round; stroke-linejoin: round; }
svg .solid { fill: currentColor; }
.scrubber { flex: 1 1 160px; min-width: 100px; height: 36px; margin: 0; accent-color: var(--orbitwalk-accent); cursor: pointer; }
output { min-width: 5.5em; text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
[hidden] { display: none !important; }
@container (max-width: 560px) {
    .scrubber { order: -2; flex-basis: calc(100% - 7em); }
    output { order: -1; }
    .controls { gap: 2px; padding: 4px; }
    button { flex: 1 1 0; padding: 0; }
    select { width: 64px; padding: 0 2px; }
}
@media (pointer: coarse) { button, select, .scrubber { height: 44px; } }
:host(:fullscreen) { border-radius: 0; width: 100%; height: 100%; }
:host(:fullscreen) .stage { aspect-ratio: auto; }
`;
