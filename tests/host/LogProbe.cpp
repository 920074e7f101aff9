// Logs as its argument says; what comes out is for PlatformTest to read.
//   log_probe priorities | threads | raised

#include <OrbitwalkPlatform.h>
#include <android/log.h>

#include <string>
#include <thread>
#include <vector>

namespace {

void sayAtEveryPriority() {
    for (int priority = ANDROID_LOG_VERBOSE; priority <= ANDROID_LOG_FATAL; ++priority)
        __android_log_print(priority, "A_TAG", "line %d\n", priority);
}

void sayFromFourThreads() {
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < 100; ++i)
                __android_log_print(ANDROID_LOG_INFO, "A_TAG", "thread %d line %d", t, i);
        });
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace

int main(int, char** arguments) {
    const std::string task = arguments[1];
    if (task == "threads")
        sayFromFourThreads();
    else if (task == "raised")
        OrbitwalkSetLogLevel(ANDROID_LOG_ERROR);
    if (task != "threads")
        sayAtEveryPriority();
    return 0;
}
