// OpenCV's video module declares a deprecated function of the same name: its header stays out.
#include "findTransform/2D/RigidTransform.h"
#include "orbitwalk/MotionKernels.h"

cv::Mat cv::estimateRigidTransform(InputArray src, InputArray dst, bool fullAffine) {
    return orbitwalk::rigidTransform(src, dst, fullAffine);
}
