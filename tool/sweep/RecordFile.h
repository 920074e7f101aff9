#pragma once

#include <string>

#include "orbitwalk/RecordReader.h"

namespace orbitwalk::tool {

/// Reads and opens a motion record. Throws ToolError with the reason when the file cannot be read
/// or is no record; of a file that is too long it reads no more than shows that.
RecordReader readRecordFile(const std::string& path);

}  // namespace orbitwalk::tool
