#pragma once

#include <cstddef>

/// Failures of the system below, set by the test. The program that links this replaces operator
/// new[], operator delete[] and sem_init.
namespace injected_faults {

/// Array allocations of exactly this many bytes throw std::bad_alloc; 0 for none.
void failArrayAllocationsOf(std::size_t bytes);
/// Arrays that were allocated and not yet freed.
int liveArrays();
void failSemaphoreInit(bool fails);

/// While it lives, no thread can be created: its stack would not fit the address space.
class NoThreads {
  public:
    NoThreads();
    ~NoThreads();

  private:
    std::size_t mStackSize;
};

}  // namespace injected_faults
