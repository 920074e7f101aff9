#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The list of clips that a batch works through.
namespace orbitwalk::tool {

/// Options of a command, as on its command line.
using Arguments = std::vector<std::string>;

/// One line of a manifest.
struct Clip {
    std::string id;     ///< Name of the clip's folder.
    std::string video;  ///< As the manifest has it; relative to the manifest's folder.
    Arguments capture;
    /// Of the commands that run after capture; those without are left out.
    std::optional<Arguments> refine;
    std::optional<Arguments> render;
    std::optional<Arguments> evaluate;
};

/// Reads a manifest: CSV with a header line of the columns id, video and, where wanted, capture,
/// refine, render and evaluate, in any order; or one JSON object a line with these keys. A cell
/// holds options as a shell would take them, "yes" for a command without options, nothing where it
/// is not wanted. JSON has an array of options, or true.
/// @throws UsageError that names the line: an id that is no file's name or stands twice, no video,
/// another column, an option that would write elsewhere than into the clip's folder.
std::vector<Clip> readManifest(const std::filesystem::path& file);
/// @param name  of the manifest, for errors.
std::vector<Clip> parseManifest(const std::string& name, const std::string& text);

}  // namespace orbitwalk::tool
