#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

#include "support/TestDirectory.h"
#include "sweep/Summary.h"
#include "tool/AnalyticSweep.h"
#include "tool/Browser.h"
#include "tool/RunTool.h"

namespace test_support {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

/// As text it is harmless; as markup it would swallow the rest of the page.
constexpr char kHostileName[] = R"(<!--<script>&lt;"'<b>.mp4)";

/// Counts the pixels that each line of each plot changes when it is drawn, with the plots as they
/// stand and once more with one of them emptied; tells the lines' values of frame 1.
constexpr char kProbe[] = R"(<script>(async () => {
const drawn = async ({plot, title}) => {
    const {canvas} = plot.ctx, lines = {};
    const pixels = () => new Uint32Array(plot.ctx.getImageData(0, 0, canvas.width, canvas.height).data.buffer);
    let before;
    plot.hooks.drawAxes = [() => before = pixels()];
    plot.hooks.drawSeries = [(u, i) => {
        const after = pixels();
        lines[plot.series[i].label] = after.reduce((sum, pixel, k) => sum + (pixel !== before[k]), 0);
        before = after;
    }];
    plot.redraw(false);
    await new Promise(done => setTimeout(done, 0));
    const atOne = Object.fromEntries(plot.series.slice(1).map(({label}, i) => [label, plot.data[i + 1][1]]));
    return {title, lines, atOne};
};
const colours = picture => {
    const canvas = document.createElement("canvas"), all = [];
    [canvas.width, canvas.height] = [picture.naturalWidth, picture.naturalHeight];
    const context = canvas.getContext("2d");
    context.drawImage(picture, 0, 0);
    for (let y = 20; y < canvas.height; y += 40)
        for (let x = 20; x < canvas.width; x += 40)
            all.push([x, y, ...context.getImageData(x, y, 1, 1).data]);
    return all;
};
await new Promise(loaded => addEventListener("load", loaded));
const found = {plots: []};
for (const one of reportPlots)
    found.plots.push(await drawn(one));
const [first] = reportPlots;
first.plot.setData(first.plot.data.map((values, i) => i === 0 ? values : values.map(() => null)));
found.emptied = (await drawn(first)).lines;
found.pictures = [...document.images].map(picture => [picture.naturalWidth, picture.naturalHeight]);
found.colours = [...document.images].map(colours);
found.title = document.getElementById("title").textContent;
found.texts = [...document.querySelectorAll("dd, .warning, #verdict, section:not([hidden]) td")].map(one => one.textContent);
found.dashes = [...document.querySelectorAll(".u-marker path")].map(one => one.getAttribute("stroke-dasharray"));
found.rectangle = ["x", "y", "width", "height"].map(name => Number(document.querySelector("svg rect").getAttribute(name)));
const result = document.createElement("pre");
result.textContent = "PROBE" + JSON.stringify(found).replace(/[<>&]/g, c => "\\u00" + c.charCodeAt(0).toString(16)) + "EBORP";
document.body.append(result);
})();</script>)";

class ReportInBrowser : public testing::Test {
  protected:
    ReportInBrowser() {
        sweep.write(directory / "sweep");
        writeSummary();
    }

    void writeSummary() const {
        orbitwalk::tool::Summary summary;
        summary.video = std::string("folder/") + kHostileName;
        fillFigures(summary, sweep.record(),
                    orbitwalk::tool::readSweepCsv(directory / "sweep" / "sweep.csv",
                                                  AnalyticSweep::frames));
        summary.seconds.decode = 0.25;
        summary.seconds.total = 0.5;
        summary.checksums = checksumsOf(orbitwalk::tool::SweepFiles(directory / "sweep"));
        writeFile(directory / "sweep" / "sweep.json", orbitwalk::tool::toJsonText(summary));
    }

    static void run(const std::vector<std::string>& arguments) {
        const ToolRun done = runTool(arguments);
        EXPECT_EQ(done.exitCode, 0) << done.err;
    }

    std::string report(std::vector<std::string> more = {}) const {
        more.insert(more.begin(), {"report", directory / "sweep", "-o", directory / "r.html"});
        run(more);
        return contentOf(directory / "r.html");
    }

    /// Opens the page with more at the end of its body.
    BrowserRun open(std::string page, const std::string& more) const {
        page.insert(page.rfind("</body>"), more);
        writeFile(directory / "opened.html", page);
        return openInBrowser(directory / "opened.html");
    }

    const AnalyticSweep sweep{};
    const TestDirectory directory;
};

json probed(const BrowserRun& run) {
    const std::size_t begin = run.dom.rfind("PROBE{") + 5;
    const std::size_t end = run.dom.rfind("}EBORP") + 1;
    if (begin > end || end > run.dom.size())
        throw std::runtime_error("the page's scripts did not run to their end");
    return json::parse(run.dom.substr(begin, end - begin));
}

json dataOf(const std::string& page) {
    const std::string opening = R"(id="data">)";
    const std::size_t begin = page.find(opening) + opening.size();
    return json::parse(page.substr(begin, page.find("</script>", begin) - begin));
}

const json& plotOf(const json& found, const std::string& title) {
    for (const json& plot : found.at("plots"))
        if (plot.at("title") == title)
            return plot;
    throw std::runtime_error("no plot " + title);
}

/// Mean difference of a picture's luma from a window of the scene.
/// @param scale  scene pixels a pixel of the picture.
double lumaError(const json& colours, double left, double top, double scale) {
    double sum = 0;
    for (const auto& [x, y, red, green, blue, alpha] :
         colours.get<std::vector<std::array<double, 6>>>()) {
        const double luma = 16 + 219 * (0.299 * red + 0.587 * green + 0.114 * blue) / 255;
        const double sceneX = left + (x + 0.5) * scale - 0.5;
        const double sceneY = top + (y + 0.5) * scale - 0.5;
        sum += std::abs(luma - sceneAt(sceneX, sceneY).y);
    }
    return sum / static_cast<double>(colours.size());
}

/// The places in a frame of 320x240 that stand upright once it is turned clockwise by 270 degrees.
json turnedBack(json colours) {
    for (json& colour : colours) {
        const int x = colour[0], y = colour[1];
        colour[0] = 319 - y;
        colour[1] = x;
    }
    return colours;
}

void expectPlots(const json& found, std::size_t count) {
    const auto& plots = found.at("plots");
    EXPECT_EQ(plots.size(), count);
    for (const json& plot : plots)
        for (const auto& [line, pixels] : plot.at("lines").items())
            EXPECT_GT(pixels, 20) << plot.at("title") << ": " << line;
}

void expectLines(const json& found) {
    expectPlots(found, 11);
    EXPECT_THAT(found.at("dashes"), testing::Contains("10 5"));
    const std::pair<const char*, std::size_t> lines[] = {
        {"Path, x, to the right", 4},
        {"Shake along the sweep, x, to the right", 3},
        {"Correction, x, to the right", 3},
        {"Correction, angle", 1},
        {"Room between the crop and the frame's edge", 4},
        {"Motion, x, to the right", 2}};
    for (const auto& [title, count] : lines)
        EXPECT_EQ(plotOf(found, title).at("lines").size(), count) << title;
    EXPECT_EQ(plotOf(found, "Correction, x, to the right").at("atOne"),
              json({{"correction", 3}, {"left margin", 32}, {"right margin", -32}}));
    EXPECT_EQ(plotOf(found, "Correction, y, down").at("atOne"),
              json({{"correction", -2}, {"top margin", 24}, {"bottom margin", -24}}));
    EXPECT_EQ(found.at("emptied").size(), 4u);
    for (const auto& [line, pixels] : found.at("emptied").items())
        EXPECT_EQ(pixels, 0) << "what no line draws counts as " << line;
}

void expectPictures(const json& found) {
    EXPECT_EQ(found.at("rectangle"), json({32, 24, 256, 192}));
    std::vector pictures(12, std::pair(240, 320));
    pictures.emplace_back(320, 240);  // The crop's, as the sensor saw it.
    EXPECT_EQ(found.at("pictures"), json(pictures));
    // The strip shows the frames 0, 1, 3, 5, 7 and 9, the crop is drawn on frame 5.
    const json& colours = found.at("colours");
    constexpr double kNear = 8;
    EXPECT_LT(lumaError(turnedBack(colours[2]), AnalyticSweep::left(1), AnalyticSweep::top(1), 1),
              kNear)
        << "recorded";
    EXPECT_LT(lumaError(turnedBack(colours[3]), 8 + 32, 1 + 24, 0.8), kNear) << "steady";
    EXPECT_LT(lumaError(colours[12], AnalyticSweep::left(5), AnalyticSweep::top(5), 1), kNear)
        << "crop";
    EXPECT_GT(lumaError(colours[12], AnalyticSweep::left(5) + 8, AnalyticSweep::top(5), 1), kNear)
        << "off";
}

void expectWords(const json& found) {
    EXPECT_EQ(found.at("title"), kHostileName);
    for (const char* text : {kHostileName, "320 × 240 px", "reverse landscape", "right to left",
                             "9 in the range 0 to 9", "80.0 % of the width, 80.0 % of the height",
                             "2 of 10 frames (20.0 %)", "decode the video", "250 ms", "500 ms"})
        EXPECT_THAT(found.at("texts"), testing::Contains(text));
    EXPECT_THAT(found.at("texts"),
                testing::Contains(testing::ResultOf(
                    [](const json& text) { return text.get<std::string>(); },
                    HasSubstr("Warning: the motion of 2 of 10 frames could not be measured"))));
}

TEST_F(ReportInBrowser, DrawsEveryLineAndShowsPicturesAndWords) {
    const BrowserRun run = open(report(), kProbe);
    EXPECT_THAT(run.requests, IsEmpty());
    const json found = probed(run);
    expectLines(found);
    expectPictures(found);
    expectWords(found);
}

TEST_F(ReportInBrowser, ShowsBothRecordsOfARefinementAndWhatOthersWouldLeave) {
    run({"refine", directory / "sweep", "--keep", "0.9"});
    const std::string page = report({"--refined"});
    const json found = probed(open(page, kProbe));
    expectPlots(found, 16);
    EXPECT_EQ(plotOf(found, "Change of motion, x, to the right").at("lines").size(), 3u);
    for (const char* text : {"planned over the whole sweep", "engine's record", "90.0 %", "80.0 %",
                             "90.0 % of the width, 90.0 % of the height"})
        EXPECT_THAT(found.at("texts"), testing::Contains(text));
    // What the planner left, what the record leaves by its matrices, and the plan of the same crop.
    const json planned = json::parse(contentOf(directory / "sweep" / "refined.json"));
    const json& left = planned.at("residualAfter");
    const double shift =
        std::hypot(left.at("xPixels").get<double>(), left.at("yPixels").get<double>());
    const json refined = dataOf(page).at("refined");
    EXPECT_NEAR(refined.at("tracks").at(2).at("residual").at("shift"), shift, 1e-3);
    EXPECT_NEAR(refined.at("plans").at(10).at("residual").at("shift"), shift, 1e-3);
}

TEST_F(ReportInBrowser, MayNotUseTheNetwork) {
    const char picture[] = R"(<img src="http://127.0.0.1:9/picture.png">)";
    EXPECT_THAT(open(report(), picture).requests, IsEmpty());
    EXPECT_THAT(open("<!DOCTYPE html><body></body>", picture).requests,
                testing::Contains("http://127.0.0.1:9/picture.png"))
        << "the network log does not show what a page asks for";
}

}  // namespace
}  // namespace test_support
