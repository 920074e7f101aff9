#pragma once

/// @file
/// The image kernels that the library exports under its own names. All are pure functions of their
/// arguments: no state, no locks, callable from any thread.

#include <opencv2/core.hpp>

#include "orbitwalk/Export.h"

namespace cv {

/// Similarity (rotation, uniform scale, translation) or affine transform that maps src onto dst.
///
/// RANSAC (Fischler and Bolles, 1981) over samples of three points, at most 500, until half of the
/// points are inliers, then a least-squares fit to all inliers. The random generator starts from
/// the same state at every call: equal inputs give identical results.
///
/// The library always runs this implementation, also when the loading program links another one of
/// the same name.
///
/// @param src, dst    two equally long sets of 2-channel points, or two 8-bit images of equal size
/// and type
///                    (1, 3 or 4 channels), between which a grid of points is tracked first.
///                    Images larger than 160x120 are reduced by max(width / 160, height / 120)
///                    for it; the translation found between the reduced ones is returned divided
///                    by that factor, not multiplied back to full-size pixels.
/// @param fullAffine  false: [c -s tx; s c ty]; true: all six entries are free.
/// @return 2x3 CV_64F, or an empty matrix: fewer than 3 points, or no sample reached half of them.
/// @throws cv::Exception for mismatched or unsupported inputs.
OBW_API Mat estimateRigidTransform(InputArray src, InputArray dst, bool fullAffine);

}  // namespace cv

/// OpenCV's tracker and corner selector under the library's own names, with OpenCV's parameters,
/// results and exceptions.
namespace NURV {

/// Image pyramid for calcOpticalFlowPyrLK. @return number of levels built.
OBW_API int buildOpticalFlowPyramid(cv::InputArray img, cv::OutputArrayOfArrays pyramid,
                                    cv::Size winSize, int maxLevel, bool withDerivatives = true,
                                    int pyrBorder = cv::BORDER_REFLECT_101,
                                    int derivBorder = cv::BORDER_CONSTANT,
                                    bool tryReuseInputImage = true);

/// Pyramidal Lucas-Kanade tracker (Bouguet, "Pyramidal implementation of the affine Lucas Kanade
/// feature tracker", 2001).
OBW_API void calcOpticalFlowPyrLK(cv::InputArray prevImg, cv::InputArray nextImg,
                                  cv::InputArray prevPts, cv::InputOutputArray nextPts,
                                  cv::OutputArray status, cv::OutputArray err,
                                  cv::Size winSize = cv::Size(21, 21), int maxLevel = 3,
                                  cv::TermCriteria criteria = cv::TermCriteria(
                                      cv::TermCriteria::COUNT + cv::TermCriteria::EPS, 30, 0.01),
                                  int flags = 0, double minEigThreshold = 1e-4);

/// Corners by the smaller eigenvalue (Shi and Tomasi, "Good features to track", 1994).
OBW_API void goodFeaturesToTrack(cv::InputArray image, cv::OutputArray corners, int maxCorners,
                                 double qualityLevel, double minDistance,
                                 cv::InputArray mask = cv::noArray(), int blockSize = 3,
                                 bool useHarrisDetector = false, double k = 0.04);

}  // namespace NURV
