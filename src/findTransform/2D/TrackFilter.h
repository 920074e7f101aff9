#pragma once

#include <opencv2/core.hpp>
#include <optional>
#include <span>
#include <vector>

/// Rules by which tracks of corners are kept. Index i of each parallel array is one track; a
/// dropped track leaves all of them, and the order of the others stays. Points are in pixels of the
/// reduced picture's central view.
namespace orbitwalk {

using Points = std::vector<cv::Point2f>;

/// Fewer tracks than this do not carry an estimate.
constexpr int kFewestTracks = 20;

/// Euclidean distance in single precision.
float distance(cv::Point2f p, cv::Point2f q);

/// Marks the tracks as lost (status 0) that end outside of the picture and the tracker's window
/// about it. The tracker itself looks for these only when it is asked for errors too, which nobody
/// here reads and which take a tenth of its time.
void loseTracksOutside(cv::Size picture, int window, std::span<const cv::Point2f> ends,
                       std::span<unsigned char> status);

/// Drops the tracks that the tracker lost (status other than 1) and those of 50 pixels or more.
/// @param status  the tracker's, one per track
void dropLostTracks(std::span<const unsigned char> status, Points& from, Points& to);
/// The same for tracks back to the previous picture: drops them from `origins`, the points that the
/// tracks once came from, too.
void dropLostTracks(std::span<const unsigned char> status, Points& from, Points& to,
                    Points& origins);

/// Forward-backward check: drops the tracks that return 3 pixels or more from their start.
/// @param displacements  receives that of each kept track, in tenths of a pixel, truncated to whole
///                       numbers.
void keepConsistentTracks(Points& prev, Points& cur, Points& back,
                          std::vector<float>& displacements);

/// Drops the tracks whose displacement is above the threshold: foreground or mismatches.
/// @param displacements  one per track
void keepSmallerMotions(std::span<const float> displacements, float threshold, Points& prev,
                        Points& cur, Points& back);

/// Value that best splits the values into a small and a large group: the largest variance between
/// the groups (Otsu, "A threshold selection method from gray-level histograms", 1979), over a
/// histogram of one bin per whole number. On a plateau of equal maxima: the middle between its
/// first and its last bin.
/// @param values  ascending, non-negative whole numbers; may be empty (threshold 0).
/// @return nothing when the histogram cannot be allocated.
std::optional<float> otsuThreshold(std::span<const float> values);

}  // namespace orbitwalk
