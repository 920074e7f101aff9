#include <opencv2/core/utility.hpp>

// Linked into every program of a thread-sanitizer build. OpenCV's thread pool is not instrumented,
// so the sanitizer takes its hand-over of each parallel loop for a race; with one thread OpenCV
// never uses the pool.
namespace {
[[maybe_unused]] const bool kOneThread = (cv::setNumThreads(1), true);
}
