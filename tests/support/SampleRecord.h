#pragma once

#include <cstddef>
#include <vector>

#include "orbitwalk/RecordReader.h"

/// A record as the engine writes it: 1280x720, 12 frames of which 2 to 9 are in the range and 5 is
/// skipped, small corrections, six border frames a side.
__kelOBWKDXMetaData sampleRecord();

/// The bytes of the file, least significant first on every host.
std::vector<std::byte> recordBytes(const __kelOBWKDXMetaData& record);

/// A reader of a record that can be read.
inline orbitwalk::RecordReader opened(const __kelOBWKDXMetaData& record) {
    return std::get<orbitwalk::RecordReader>(orbitwalk::RecordReader::open(recordBytes(record)));
}
