#include "sweep/Tables.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "files/OwnFiles.h"
#include "files/TextFile.h"
#include "orbitwalk/MetaData.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

/// Cuts the next line off the text, without its end of line.
std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

/// Cuts the next field off the line. @return whether it is a finite number of the wanted kind.
template <typename Number>
bool takeField(std::string_view& line, Number& value) {
    const std::size_t comma = std::min(line.find(','), line.size());
    const char* end = line.data() + comma;
    const auto [stop, error] = std::from_chars(line.data(), end, value);
    line.remove_prefix(std::min(comma + 1, line.size()));
    return error == std::errc{} && stop == end && std::isfinite(static_cast<double>(value));
}

bool takeBit(std::string_view& line, int& value) {
    return takeField(line, value) && (value == 0 || value == 1);
}

template <typename Number>
void appendField(std::string& line, Number value) {
    char digits[64];
    line += ',';
    line.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

/// @param takeRow  fills a row from a line without its frame; returns whether it could.
template <typename Row, typename TakeRow>
std::vector<Row> parsed(std::string_view text, std::string_view header, const Row& empty,
                        TakeRow takeRow) {
    if (takeLine(text) != header)
        throw ToolError("its first line is not " + std::string(header));
    std::vector<Row> rows;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        Row row = empty;
        int number = 0;
        if (!takeField(line, number) || number != std::ssize(rows) || !takeRow(line, row) ||
            !line.empty())
            throw ToolError("line " + std::to_string(rows.size() + 2) + " is no row of frame " +
                            std::to_string(rows.size()));
        rows.push_back(row);
    }
    return rows;
}

/// @param says  who says how many frames there are. @param parse  gives the rows of a text.
template <typename Parse>
auto rowsOf(const std::filesystem::path& file, const char* what, const char* says, int frames,
            Parse parse) {
    const std::string text = readTextFile(file);
    try {
        auto rows = parse(text);
        if (std::ssize(rows) != frames)
            throw ToolError("it has " + std::to_string(rows.size()) + " frames, the " + says + " " +
                            std::to_string(frames));
        return rows;
    } catch (const ToolError& error) {
        throw ToolError(file.string() + ": no " + what + " of this sweep: " + error.what());
    }
}

}  // namespace

PicturePoint measuringOrigin(FrameSize size) {
    constexpr int reduction = 4, border = 5;
    return {static_cast<double>(reduction * (size.width / reduction / border)),
            static_cast<double>(reduction * (size.height / reduction / border))};
}

std::string sweepCsv(std::span<const SweepRow> path) {
    std::string csv = std::string(kSweepTableHeader) + '\n';
    for (std::size_t i = 0; i < path.size(); ++i) {
        csv += std::to_string(i);
        const Trajectory& p = path[i].position;
        for (const double value : {p.x, p.y, p.a})
            appendField(csv, static_cast<float>(value));
        for (const int value : {path[i].flag, int{path[i].repeated}})
            appendField(csv, value);
        csv += '\n';
    }
    return csv;
}

std::vector<SweepRow> parseSweepCsv(std::string_view text) {
    return parsed(text, kSweepTableHeader, SweepRow{}, [](std::string_view& line, SweepRow& row) {
        float x = 0, y = 0, a = 0;
        int repeated = 0;
        const bool complete = takeField(line, x) && takeField(line, y) && takeField(line, a) &&
                              takeBit(line, row.flag) && takeBit(line, repeated);
        row.position = {x, y, a};
        row.repeated = repeated == 1;
        return complete;
    });
}

std::vector<SweepRow> readSweepCsv(const std::filesystem::path& file, int frames) {
    return rowsOf(file, "path", "record says", frames, parseSweepCsv);
}

std::string truthCsv(std::span<const TrueMotion> truth) {
    std::string csv = std::string(kTruthTableHeader) + '\n';
    for (std::size_t k = 0; k < truth.size(); ++k) {
        const auto& [step, sum] = truth[k];
        csv += std::to_string(k);
        for (const double value : {step.x, step.y, step.a, sum.x, sum.y, sum.a})
            appendField(csv, value);
        csv += '\n';
    }
    return csv;
}

std::vector<Trajectory> parseTruthCsv(std::string_view text) {
    return parsed(
        text, kTruthTableHeader, Trajectory{}, [](std::string_view& line, Trajectory& sum) {
            Trajectory step;
            return std::ranges::all_of(
                std::initializer_list<double*>{&step.x, &step.y, &step.a, &sum.x, &sum.y, &sum.a},
                [&](double* value) { return takeField(line, *value); });
        });
}

std::vector<Trajectory> readTruthCsv(const std::filesystem::path& file, int frames) {
    return rowsOf(file, "truth", "sweep has", frames, [&](std::string_view text) {
        std::vector<Trajectory> rows = parseTruthCsv(text);
        if (frames == OBW_MAX_FRAMES && std::ssize(rows) > frames)
            rows.resize(frames);
        return rows;
    });
}

std::string motionCsv(std::span<const refine::FrameMotion> motions) {
    std::string csv = std::string(kMotionTableHeader) + '\n';
    for (std::size_t i = 0; i < motions.size(); ++i) {
        const SimilarityTransform motion =
            motions[i].measured ? motions[i].motion : SimilarityTransform{};
        csv += std::to_string(i);
        for (const double value : {motion.x, motion.y, motion.angle, motion.logScale})
            appendField(csv, value);
        csv += motions[i].measured ? ",1\n" : ",0\n";
    }
    return csv;
}

std::vector<refine::FrameMotion> parseMotionCsv(std::string_view text, FrameSize size) {
    refine::FrameMotion empty;
    empty.motion.about = frameCentre(size);
    return parsed(
        text, kMotionTableHeader, empty, [](std::string_view& line, refine::FrameMotion& row) {
            auto& motion = row.motion;
            int measured = 0;
            const bool complete = takeField(line, motion.x) && takeField(line, motion.y) &&
                                  takeField(line, motion.angle) &&
                                  takeField(line, motion.logScale) && takeBit(line, measured);
            row.measured = measured == 1;
            return complete;
        });
}

std::vector<refine::FrameMotion> readMotionCsv(const std::filesystem::path& file, FrameSize size,
                                               int frames) {
    return rowsOf(file, "motions", "record says", frames,
                  [&](std::string_view text) { return parseMotionCsv(text, size); });
}

}  // namespace orbitwalk::tool
