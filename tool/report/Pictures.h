#pragma once

#include <functional>
#include <string>
#include <vector>

#include "sweep/ShotReader.h"

namespace orbitwalk::tool {

/// A frame as recorded and as a player shows it, both upright: JPEG files, small.
struct BeforeAfter {
    int frame = 0;
    std::string recorded;
    std::string steady;
};

struct ReportPictures {
    std::vector<BeforeAfter> strip;
    std::string crop;  ///< The frame that the crop is drawn on, as the sensor saw it. JPEG.
};

/// Decodes the sweep to its end.
/// @param cropFrame  a rendered frame.
/// @param progress   told the number of rendered frames read so far.
/// @throws ToolError, MediaError: see ShotReader.
ReportPictures reportPictures(const Sweep& sweep, int cropFrame,
                              const std::function<void(int)>& progress);

}  // namespace orbitwalk::tool
