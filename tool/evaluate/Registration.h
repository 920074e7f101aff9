#pragma once

#include <opencv2/core/mat.hpp>
#include <optional>

#include "evaluate/PictureMatch.h"
#include "sweep/Affine.h"

namespace orbitwalk::tool {

/// A frame of a stabilised video and the one of its source, made ready for it to be found there.
class RegisteredPair {
  public:
    /// @param picture, source  full-size luma; the sizes may differ. Of a small source, a view is
    /// kept.
    RegisteredPair(const cv::Mat1b& picture, const cv::Mat1b& source);

    int factor() const { return mFactor; }  ///< By which the pictures are reduced.
    /// Looks for the picture where a guess, as all maps here of the reduced pictures, would show
    /// it.
    /// @return the better guess.
    std::optional<PictureMatch> refined(const Affine& guess) const;
    /// The same without a guess.
    std::optional<Affine> search() const;

  private:
    RegisteredPair(int factor, const cv::Mat1b& picture, const cv::Mat1b& source);

    int mFactor;
    cv::Size mSize;  ///< Of the reduced picture.
    PictureCorners mPicture;
    cv::Mat1b mSource;
};

/// Finds in each frame of a stabilised video the part of the source frame that it shows. Begins
/// from where the last frame was found, so frames come in order.
class Registration {
  public:
    /// @return source point that the picture shows at a point, a similarity; nothing when the two
    /// cannot be matched.
    std::optional<Affine> find(const RegisteredPair& pair);

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
