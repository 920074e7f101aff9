#include <cstdarg>
#include <cstdio>

#include "evaluate/Evaluation.h"

namespace orbitwalk::tool {

namespace {

[[gnu::format(printf, 2, 3)]] void addLine(std::string& text, const char* format, ...) {
    char line[256];
    va_list values;
    va_start(values, format);
    std::vsnprintf(line, sizeof line, format, values);
    va_end(values);
    text.append(line).append(1, '\n');
}

void addRecord(std::string& text, const char* name, const RecordEvaluation& record) {
    const SweepFacts& sweep = record.facts;
    addLine(text, "%s: %d of %d frames rendered, %.1f %% of the view kept", name,
            sweep.renderedFrames, sweep.frames, sweep.keptView * 100);
    addLine(text, "  missing pixels inside the crop: %lld; of the border frames: %lld",
            static_cast<long long>(sweep.missingPixels),
            static_cast<long long>(sweep.missingBorderPixels));
    addLine(text, "  correction of the centre: mean (%+.1f, %+.1f), largest %.1f pixels, %.2f deg",
            sweep.meanCorrectionX, sweep.meanCorrectionY, sweep.largestCorrection,
            sweep.largestTurn);
    if (record.verdict)
        text += "  " + record.verdict->text + "\n";
}

void addAxis(std::string& text, const char* name, const AxisError& position,
             const AxisError& step) {
    addLine(text, "  %-14s %8.3f %8.3f %8.3f %8.3f", name, position.rms, position.max, step.rms,
            step.max);
}

void addPath(std::string& text, const PathError& path) {
    addLine(text, "path against the truth, %.0f pixels travelled", path.travelled);
    addLine(text, "  %-14s %8s %8s %8s %8s", "error", "rms", "max", "step rms", "step max");
    addAxis(text, "x, pixels", path.x, path.stepX);
    addAxis(text, "y, pixels", path.y, path.stepY);
    addAxis(text, "angle, deg", path.angle, path.stepAngle);
    addLine(text, "  drift per 100 pixels: %+.3f along the sweep, %+.3f across", path.driftAlong,
            path.driftAcross);
    addLine(text, "  motion repeated in %.1f %% of the frames", path.repeatedShare * 100);
}

void addResidual(std::string& text, const char* name,
                 const std::optional<ResidualMotion>& residual) {
    if (!residual)
        return addLine(text, "  residual motion%s: not measured", name);
    addLine(text, "  residual motion%s: x %.3f, y %.3f pixels, angle %.4f deg%s", name, residual->x,
            residual->y, residual->angle,
            residual->unmeasured > 0
                ? (" (" + std::to_string(residual->unmeasured) + " motions not measured)").c_str()
                : "");
}

void addSource(std::string& text, const SourceComparison& source) {
    addResidual(text, " of the source", source.residual);
    addLine(text, "  view kept: mean %.1f %%, least %.1f %%", source.kept * 100,
            source.leastKept * 100);
    addLine(text, "  shown from beyond the source: mean %.3f %%, most %.3f %%", source.beyond * 100,
            source.mostBeyond * 100);
    addLine(text, "  black where the source is not: %lld pixels",
            static_cast<long long>(source.missingPixels));
    if (source.sharpness)
        addLine(text, "  sharpness: %.3f of the source's", *source.sharpness);
    else
        addLine(text, "  sharpness: not measured");
    if (source.unregistered > 0)
        addLine(text, "  %d frames were not found in the source", source.unregistered);
}

void addVideo(std::string& text, const VideoQuality& video) {
    addLine(text, "video: %d frames of %dx%d", video.frames, video.size.width, video.size.height);
    addResidual(text, "", video.residual);
    addLine(text, "  black border: %lld pixels in %d frames",
            static_cast<long long>(video.blackPixels), video.framesWithBlack);
    if (video.source)
        addSource(text, *video.source);
}

}  // namespace

std::string toText(const Evaluation& evaluation) {
    std::string text;
    if (evaluation.sweep)
        addRecord(text, "sweep", *evaluation.sweep);
    if (evaluation.refined)
        addRecord(text, "refined", *evaluation.refined);
    if (evaluation.vertical.value_or(false))
        text += "the camera went up or down: a vertical sweep is not supported\n";
    if (evaluation.path)
        addPath(text, *evaluation.path);
    if (evaluation.video)
        addVideo(text, *evaluation.video);
    if (evaluation.verdict)
        return text + "verdict " + evaluation.judgedBy + ": " + evaluation.verdict->text + "\n";
    return text + "verdict: none; " +
           (evaluation.sweep ? "the measured path, sweep.csv, is not there\n"
                             : "--against says what to compare with\n");
}

}  // namespace orbitwalk::tool
