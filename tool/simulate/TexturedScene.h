#pragma once

#include <opencv2/core.hpp>

namespace orbitwalk::tool {

/// A picture of its own for sweeps without a photograph: coloured ellipses and boxes that cover one
/// another, with sizes of every order (the dead-leaves model, whose edges and statistics are those
/// of natural scenes), and a fine grain on every surface. Depends on size and generator alone.
cv::Mat3b texturedScene(cv::Size size, cv::RNG random);

}  // namespace orbitwalk::tool
