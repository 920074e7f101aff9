#pragma once

#include <opencv2/core/mat.hpp>
#include <optional>

#include "sweep/Affine.h"

namespace orbitwalk::tool {

/// Finds in each frame of a stabilised video the part of the source frame that it shows. Begins
/// from where the last frame was found, so frames come in order.
class Registration {
  public:
    /// @param picture, source  full-size luma; the sizes may differ.
    /// @return source point that the picture shows at a point, a similarity; nothing when the two
    /// cannot be matched.
    std::optional<Affine> find(const cv::Mat1b& picture, const cv::Mat1b& source);

  private:
    std::optional<Affine> mLast;  ///< Of the reduced pictures.
};

/// What a stabilised frame shows of its source frame.
struct View {
    double kept = 0;    ///< Share of the source frame's area that is to be seen.
    double beyond = 0;  ///< Share of the picture's area that lies more than two pixels outside the
                        ///< source frame: black there, or filled with something else.
};

View viewOf(const Affine& sourceFromPicture, cv::Size picture, cv::Size source);

}  // namespace orbitwalk::tool
