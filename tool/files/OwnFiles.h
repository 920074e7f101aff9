#pragma once

#include <filesystem>
#include <initializer_list>
#include <string_view>
#include <vector>

/// How the tool knows its own files again: by what they hold.
namespace orbitwalk::tool {

/// First lines of the tables that the tool writes.
inline constexpr std::string_view kSweepTableHeader = "frame,x,y,a,flag,repeated";
inline constexpr std::string_view kTruthTableHeader = "frame,dx,dy,da,x,y,a";
inline constexpr std::string_view kMotionTableHeader = "frame,dx,dy,da,ds,measured";
inline constexpr std::string_view kBatchTableHeader =
    "id,state,frames,steadier,residual_share,view_kept,refined_steadier,refined_residual_share,"
    "refined_view_kept,error";

/// Stands as a comment in the videos, pictures and pages that the tool writes; see
/// media::kMadeWith, which is the same text.
extern const std::string_view kMark;

/// Whether the file's content says that this tool wrote it: a motion record, a table with one of
/// the headers, a JSON object with the keys "schema" and "toolVersion" near its beginning, or
/// anything with the mark in its first or last 64 KiB. An empty file holds nothing to lose and
/// counts as well.
bool isOwnFile(const std::filesystem::path& file);

/// Puts the mark as a comment into an encoded PNG or JPEG picture.
void markPicture(std::vector<unsigned char>& picture);

/// Requires one of the endings, each as in ".mp4", in capitals or not.
/// @param option  as the user writes it, such as --strip.
/// @throws UsageError.
void requireExtension(std::string_view option, const std::filesystem::path& file,
                      std::initializer_list<std::string_view> extensions);

}  // namespace orbitwalk::tool
