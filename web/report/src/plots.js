// All plots of the page, at its width and in its colours.
import {allPlots} from "./lines.js";
import {addPlot, plotWidth} from "./plot.js";

export function addPlots() {
    const plots = allPlots().map(addPlot);
    const fit = width => plots.forEach(({host, plot}) => {
        const size = {width: width || plotWidth(host), height: plot.height};
        if (size.width !== plot.width)
            plot.setSize(size);
    });
    const repaint = () => plots.forEach(({plot}) => plot.redraw(false));
    addEventListener("resize", () => fit());
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", repaint);
    // On paper: in the light colours, at a width that fits the page.
    addEventListener("beforeprint", () => {
        document.documentElement.dataset.print = "";
        fit(640);
        repaint();
    });
    addEventListener("afterprint", () => {
        delete document.documentElement.dataset.print;
        fit();
        repaint();
    });
    return plots;
}
