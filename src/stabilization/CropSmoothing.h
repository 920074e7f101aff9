#pragma once

namespace orbitwalk {

/// What a path does across the capture direction, and the room that the frame leaves for it.
struct CropSmoothingSide {
    double min = 0;      ///< Smallest path value, pixels.
    double max = 0;      ///< Largest path value.
    int marginLow = 0;   ///< Top or left crop margin.
    int marginHigh = 0;  ///< Bottom or right crop margin, as a coordinate.
    int length = 0;      ///< Height or width of the frame.
};

struct CropSmoothingPin {
    int value = 0;     ///< Path value to pin the axis to.
    double ratio = 0;  ///< Share of the side that a picture pinned there keeps.
};

/// Path value that keeps the crop inside the margins with the least correction.
CropSmoothingPin pinToMargins(const CropSmoothingSide& side);

}  // namespace orbitwalk
