export {RecordError} from "./check.js";
export {RenderMatrix} from "./matrix.js";
export {RecordReader, openRecord} from "./reader.js";

/** @typedef {import("./check.js").RecordFault} RecordFault */
/** @typedef {import("./layout.js").RecordFields} RecordFields */
/** @typedef {import("./matrix.js").Point} Point */
/** @typedef {import("./reader.js").Crop} Crop */
/** @typedef {import("./reader.js").FrameRange} FrameRange */
