#pragma once

#include <string>
#include <vector>

#include "batch/BatchSummary.h"

namespace orbitwalk::tool {

/// A page to stand in a batch's folder: every clip with its strip, its verdict and links to its
/// report and its player, those that failed first. It needs no network and runs no script.
std::string indexPage(const std::vector<ClipReport>& reports);

}  // namespace orbitwalk::tool
