#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace orbitwalk {

/// Does one task for its owner on a thread of its own, each time that it is told to, while the
/// owner goes on. They take turns: what the task touches is the owner's but from begin to settle,
/// and then the task's alone. One owner at a time; the hand-over between owners is theirs to guard.
class TaskThread {
  public:
    /// Whether a thread beside the owner's gets anything done earlier: not where the process may
    /// use a single core.
    static bool pays();

    /// @param task  must not throw. @throws std::system_error without a thread.
    explicit TaskThread(std::function<void()> task);
    /// Settles first.
    ~TaskThread();
    TaskThread(const TaskThread&) = delete;
    TaskThread& operator=(const TaskThread&) = delete;

    /// Offers the task to the thread, once; only when settled.
    void begin();
    /// Waits for a task that the thread has begun. One that it has not got to is taken back undone:
    /// on a busy machine the owner is sooner than a thread that has yet to be woken.
    void settle();

  private:
    enum Turn : int { kOwner, kOffered, kTask, kNobody };

    void run();
    void give(Turn turn);
    /// @return whether the turn was `from`, and now is `to`.
    bool pass(int from, Turn to) { return mTurn.compare_exchange_strong(from, to); }

    std::atomic<int> mTurn = kOwner;
    std::function<void()> mTask;
    std::thread mThread;  ///< Last: it uses the others from its start.
};

}  // namespace orbitwalk
