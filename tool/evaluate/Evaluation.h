#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "evaluate/PathError.h"
#include "evaluate/SweepFacts.h"
#include "evaluate/VideoQuality.h"

namespace orbitwalk::tool {

/// What was asked for, in figures.
struct Evaluation {
    std::optional<SweepFacts> sweep;
    std::optional<PathError> path;
    std::optional<VideoQuality> video;
};

/// @return paragraphs for people, one a part.
std::string toText(const Evaluation& evaluation);

/// One object a part: sweep, path, video. Keys name their unit. What could not be measured is null.
nlohmann::ordered_json toJson(const Evaluation& evaluation);

}  // namespace orbitwalk::tool
