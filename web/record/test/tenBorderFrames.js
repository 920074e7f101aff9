/**
 * A record with all the border frames that there is room for. The engine writes six a side; the further ones stand
 * between the first of these and the frame's own place.
 * @param {Uint8Array} bytes  of a captured record
 */
export function withTenBorderFrames(bytes) {
    const record = Uint8Array.from(bytes);
    const view = new DataView(record.buffer);
    for (const [count, first] of [[52076, 52080], [52440, 52444]]) {
        for (let k = view.getInt32(count, true); k < 10; ++k) {
            const matrix = first + 36 * k;
            record.copyWithin(matrix, first, first + 36);
            for (const translation of [matrix + 24, matrix + 28])
                view.setInt32(translation, Math.trunc(view.getInt32(translation, true) * (10 - k) / 10), true);
        }
        view.setInt32(count, 10, true);
    }
    return record;
}
