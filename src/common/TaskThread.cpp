#include "common/TaskThread.h"

#include <sched.h>

#include <utility>

namespace orbitwalk {

bool TaskThread::pays() {
    cpu_set_t cores;
    // Refused where there are more cores than the set holds.
    return sched_getaffinity(0, sizeof cores, &cores) != 0 || CPU_COUNT(&cores) > 1;
}

TaskThread::TaskThread(std::function<void()> task)
    : mTask(std::move(task)), mThread([this] { run(); }) {}

TaskThread::~TaskThread() {
    settle();
    give(kNobody);
    mThread.join();
}

void TaskThread::begin() {
    give(kOffered);
}

void TaskThread::settle() {
    if (!pass(kOffered, kOwner))
        mTurn.wait(kTask);
}

void TaskThread::run() {
    while (mTurn != kNobody) {
        if (pass(kOffered, kTask)) {
            mTask();
            give(kOwner);
        }
        mTurn.wait(kOwner);
    }
}

void TaskThread::give(Turn turn) {
    mTurn = turn;
    mTurn.notify_all();
}

}  // namespace orbitwalk
