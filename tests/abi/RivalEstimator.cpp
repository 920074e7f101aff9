#include <opencv2/core.hpp>

/// Calls that reached this library's estimator instead of the engine's own.
__attribute__((visibility("default"))) int rivalEstimatorCalls = 0;

namespace cv {

__attribute__((visibility("default"))) Mat estimateRigidTransform(InputArray, InputArray, bool);

Mat estimateRigidTransform(InputArray, InputArray, bool) {
    ++rivalEstimatorCalls;
    return Mat();
}

}  // namespace cv
