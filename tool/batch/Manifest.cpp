#include "batch/Manifest.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "files/TextFile.h"
#include "terminal/ToolError.h"

// The text is in memory: there is nothing to read ahead.
#define CSV_IO_NO_THREAD
#pragma GCC diagnostic push
// It ends a name that it cuts off itself; GCC warns of that where it inlines the call.
#pragma GCC diagnostic ignored "-Wpragmas"
#pragma GCC diagnostic ignored "-Wunknown-warning-option"
#pragma GCC diagnostic ignored "-Wstringop-truncation"
#include <libfccp/csv.h>
#pragma GCC diagnostic pop

namespace orbitwalk::tool {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kLongestId = 100;
/// Some two million clips; more are better parted.
constexpr std::size_t kLongestManifest = std::size_t{512} << 20;

/// A column of a command's options, and where they go.
struct Column {
    const char* name;
    std::optional<Arguments> Clip::*options;
};
constexpr Column kCommands[] = {
    {"refine", &Clip::refine}, {"render", &Clip::render}, {"evaluate", &Clip::evaluate}};

bool isId(const std::string& id) {
    const auto allowed = [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '-' || c == '_' || c == '.';
    };
    return !id.empty() && id.size() <= kLongestId && id.front() != '.' && id.front() != '-' &&
           std::ranges::all_of(id, allowed) && !id.ends_with(".error.txt") &&
           !id.starts_with("summary.") && id != "index.html";
}

/// Those that say what the batch says itself: where results go, and how they are printed.
bool isBatchsOwn(const std::string& option) {
    const std::string name = option.substr(0, option.find('='));
    return name.starts_with("-o") || name.starts_with("-h") || name.starts_with("-q") ||
           std::set<std::string>{"--output", "--strip", "--panorama", "--json",
                                 "--quiet",  "--force", "--help",     "--replan"}
               .contains(name);
}

/// @throws UsageError without the line's place.
void require(const Clip& clip) {
    if (!isId(clip.id))
        throw UsageError("the id \"" + clip.id +
                         "\" is no name for a folder: letters, digits, '-', '_' and '.', at most " +
                         std::to_string(kLongestId));
    if (clip.video.empty())
        throw UsageError(clip.id + " has no video");
    const auto requireAllowed = [](const Arguments& options) {
        const auto taken = std::ranges::find_if(options, isBatchsOwn);
        if (taken != options.end())
            throw UsageError("the option " + *taken + " is the batch's own");
    };
    requireAllowed(clip.capture);
    for (const Column& column : kCommands)
        if (clip.*column.options)
            requireAllowed(*(clip.*column.options));
}

std::optional<Arguments> optionsOfCell(const std::string& cell) {
    if (cell.empty())
        return std::nullopt;
    return cell == "yes" ? Arguments{} : CLI::detail::split_up(cell);
}

std::optional<Arguments> optionsOfJson(const Json& value) {
    if (value.is_null() || value == Json(false))
        return std::nullopt;
    return value == Json(true) ? Arguments{} : value.get<Arguments>();
}

Clip clipOfJson(const std::string& line) {
    const Json json = Json::parse(line);
    Clip clip;
    for (const auto& [key, value] : json.items()) {
        const auto column = std::ranges::find(kCommands, key, &Column::name);
        if (column != std::end(kCommands))
            clip.*column->options = optionsOfJson(value);
        else if (key == "id")
            clip.id = value.get<std::string>();
        else if (key == "video")
            clip.video = value.get<std::string>();
        else if (key == "capture")
            clip.capture = optionsOfJson(value).value_or(Arguments{});
        else
            throw UsageError("there is no key \"" + key + "\"");
    }
    return clip;
}

/// What a sidecar and a page can hold.
void requireUtf8(const std::string& name, const std::string& text) {
    try {
        Json(text).dump();
    } catch (const Json::exception&) {
        throw UsageError(name + " is no text in UTF-8");
    }
}

/// Collects clips, and names the line where one cannot be taken.
class Clips {
  public:
    explicit Clips(std::string name) : mName(std::move(name)) {}

    template <typename Make>
    void add(int line, Make make) {
        try {
            const Clip& clip = mClips.emplace_back(make());
            require(clip);
            if (!mIds.insert(clip.id).second)
                throw UsageError("the id \"" + clip.id + "\" stands twice");
        } catch (const ToolError& error) {
            throw UsageError(mName + ", line " + std::to_string(line) + ": " + error.what());
        } catch (const Json::exception&) {
            throw UsageError(mName + ", line " + std::to_string(line) +
                             ": no JSON object with id, video and lists of options");
        }
    }
    std::vector<Clip> all() && { return std::move(mClips); }

  private:
    std::string mName;
    std::vector<Clip> mClips;
    std::set<std::string> mIds;
};

std::vector<Clip> clipsOfJsonLines(const std::string& name, const std::string& text) {
    Clips clips(name);
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number)
        if (line.find_first_not_of(" \t\r") != std::string::npos)
            clips.add(number, [&] { return clipOfJson(line); });
    return std::move(clips).all();
}

std::vector<Clip> clipsOfCsv(const std::string& name, const std::string& text) {
    io::CSVReader<6, io::trim_chars<' ', '\t'>, io::double_quote_escape<',', '"'>,
                  io::throw_on_overflow, io::empty_line_comment>
        reader(name, text.data(), text.data() + text.size());
    reader.read_header(io::ignore_missing_column, "id", "video", "capture", "refine", "render",
                       "evaluate");
    if (!reader.has_column("id") || !reader.has_column("video"))
        throw UsageError(name + ": its first line names no columns id and video");
    Clips clips(name);
    std::string id, video, capture, refine, render, evaluate;
    while (reader.read_row(id, video, capture, refine, render, evaluate))
        clips.add(static_cast<int>(reader.get_file_line()), [&] {
            return Clip{id,
                        video,
                        optionsOfCell(capture).value_or(Arguments{}),
                        optionsOfCell(refine),
                        optionsOfCell(render),
                        optionsOfCell(evaluate)};
        });
    return std::move(clips).all();
}

}  // namespace

std::vector<Clip> parseManifest(const std::string& name, const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos)
        throw UsageError(name + " names no clips");
    requireUtf8(name, text);
    try {
        return text[first] == '{' ? clipsOfJsonLines(name, text) : clipsOfCsv(name, text);
    } catch (const io::error::base& error) {
        throw UsageError(error.what());
    }
}

std::vector<Clip> readManifest(const std::filesystem::path& file) {
    return parseManifest(file.string(), readTextFile(file, kLongestManifest));
}

}  // namespace orbitwalk::tool
