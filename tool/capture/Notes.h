#pragma once

#include <string>
#include <vector>

#include "sweep/Summary.h"

namespace orbitwalk::tool {

/// A line for each thing in which the sweep is not what its video suggests.
std::vector<std::string> notesOn(const Summary& summary);

/// A line for each thing that makes the sweep of little use.
std::vector<std::string> warningsOf(const Summary& summary);

}  // namespace orbitwalk::tool
