#include <opencv2/core/utility.hpp>

// Linked into every program of a thread-sanitizer build. OpenCV's thread pool is not instrumented,
// so the sanitizer takes its hand-over of each parallel loop for a race; with one thread OpenCV
// never uses the pool.
namespace {
[[maybe_unused]] const bool kOneThread = (cv::setNumThreads(1), true);
}

// OpenCV's picture codecs load GDAL, which takes two locks of its own in either order. Inversions
// that none of its calls takes part in are still reported.
// oneTBB's library is not instrumented, what stands in its headers is, and the closures that it
// copies are read before StepOrder can speak. What runs within them is still checked.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions() {
    return "deadlock:libgdal\nrace_top:tbb::detail\nrace_top:oneapi/tbb\nrace_top:render/"
           "ShotPipeline.h";
}
