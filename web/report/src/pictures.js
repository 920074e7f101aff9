// Frames of the sweep: where the crop lies, and before and after.
import {byId, data, element} from "./page.js";

export function fillCrop() {
    const {crop, summary: {width, height}} = data;
    const figure = byId("crop");
    figure.classList.toggle("tall", height > width);
    figure.querySelector("img").src = data.pictures.crop;
    const set = (selector, attributes) => {
        for (const [name, value] of Object.entries(attributes))
            figure.querySelector(selector).setAttribute(name, value);
    };
    set("svg", {viewBox: `0 0 ${width} ${height}`, preserveAspectRatio: "none"});
    set(".rectangle", {x: crop.x, y: crop.y, width: crop.width, height: crop.height});
    set(".outside", {d: `M0 0H${width}V${height}H0Z M${crop.x} ${crop.y}h${crop.width}v${crop.height}h${-crop.width}Z`});
    set(".shown", {points: crop.shown.join(" ")});
    figure.querySelector("figcaption").textContent =
        `Frame ${crop.frame} as the sensor saw it. Yellow: the crop rectangle, ${crop.width} × ${crop.height} at ` +
        `(${crop.x}, ${crop.y}). Dashed: what of this frame is shown there once it is corrected.`;
}

function picture(source, alt) {
    const made = element("img");
    made.src = source;
    made.alt = alt;
    return made;
}

export function fillStrip() {
    const labelled = (label, source, frame) => {
        const half = element("div", undefined, "half");
        half.append(picture(source, `Frame ${frame} ${label}`), element("span", label));
        return half;
    };
    for (const {frame, recorded, steady} of data.pictures.strip) {
        const figure = element("figure");
        figure.append(labelled("as recorded", recorded, frame), labelled("as shown", steady, frame),
            element("figcaption", `frame ${frame}`));
        byId("strip").append(figure);
    }
}
