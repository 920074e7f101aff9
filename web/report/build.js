// Builds dist/report.js, a classic script, and dist/report.css; both hold uPlot, whose licence the page says.
import {build} from "esbuild";

await build({
    entryPoints: ["src/report.js", "src/report.css"],
    outdir: "dist",
    bundle: true,
    minify: true,
    target: "es2022",
    format: "iife",
    legalComments: "none",
    logLevel: "warning",
});
