#include "engine/PostProcessingInFlight.h"

#include <atomic>

namespace orbitwalk {

namespace {

// No destructor runs at exit, when a detached thread may still come by.
constinit std::atomic<int> threads = 0;
thread_local int ownThreads = 0;

}  // namespace

PostProcessingInFlight::PostProcessingInFlight() {
    ownThreads = 1;
    threads.fetch_add(1);
}

PostProcessingInFlight::~PostProcessingInFlight() {
    threads.fetch_sub(1);
    threads.notify_all();
}

void PostProcessingInFlight::waitForOthers() {
    for (int running = threads.load(); running > ownThreads; running = threads.load())
        threads.wait(running);
}

}  // namespace orbitwalk
