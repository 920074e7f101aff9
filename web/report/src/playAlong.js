/**
 * The plots' cursors and the player show the same frame, whichever of them is moved.
 * @param {any} player  an <orbitwalk-player>
 */
export function playAlong(player, plots) {
    let pictures = new Map();
    let pointed = null;
    player.addEventListener("ready", () => {
        pictures = new Map(Array.from({length: player.frameCount}, (none, i) => [player.videoFrame(i), i]));
    });
    player.addEventListener("framechange", ({detail}) => {
        for (const {plot} of pointed ? [] : plots)
            plot.setCursor({left: plot.valToPos(detail.videoFrame, "x"), top: 0}, false);
    });
    const show = frame => {
        const picture = pictures.get(frame);
        if (picture === undefined || picture === player.currentFrame)
            return;
        player.pause();
        player.seekToFrame(picture).catch(() => {});
    };
    for (const {plot} of plots) {
        plot.over.addEventListener("mouseenter", () => { pointed = plot; });
        plot.over.addEventListener("mouseleave", () => { pointed = null; });
        plot.hooks.setCursor = [() => plot === pointed && show(plot.cursor.idx)];
    }
}
