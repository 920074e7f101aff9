#pragma once

#include <algorithm>
#include <opencv2/core/utility.hpp>
#include <thread>

namespace orbitwalk::tool {

/// Keeps OpenCV from spreading each call over threads of its own while this object lives: where
/// several frames are worked on side by side, those would only be in each other's way.
class OneThreadEach {
  public:
    OneThreadEach() { cv::setNumThreads(1); }
    ~OneThreadEach() { cv::setNumThreads(mFormer); }
    OneThreadEach(const OneThreadEach&) = delete;
    OneThreadEach& operator=(const OneThreadEach&) = delete;

  private:
    const int mFormer = cv::getNumThreads();
};

/// @param wanted  0: as many as the machine has cores.
inline int workerCount(int wanted) {
    return wanted > 0 ? wanted : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

}  // namespace orbitwalk::tool
