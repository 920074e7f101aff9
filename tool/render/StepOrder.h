#pragma once

#ifdef ORBITWALK_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

namespace orbitwalk::tool {

/// Tells the thread sanitizer, which does not see into oneTBB's library, what that guarantees: that
/// a step comes after those that it goes on from, and the caller after all. Steps at work side by
/// side stay unordered, so that what they share is checked. Nothing in other builds.
class StepOrder {
  public:
    StepOrder() { end(); }
    ~StepOrder() { begin(); }

    /// Lives as long as a step is at work.
    class Step {
      public:
        explicit Step(StepOrder& order) : mOrder(order) { mOrder.begin(); }
        ~Step() { mOrder.end(); }
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

      private:
        StepOrder& mOrder;
    };

  private:
#ifdef ORBITWALK_THREAD_SANITIZER
    void begin() {
        __tsan_acquire(this);
    }
    void end() {
        __tsan_release(this);
    }
#else
    void begin() {}
    void end() {}
#endif
};

}  // namespace orbitwalk::tool
