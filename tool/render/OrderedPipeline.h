#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace orbitwalk::tool {

/// Three stages at work side by side: a source on a thread of its own, a transform on several, and
/// a sink on the caller's thread, which gets the results in the source's order. When a stage
/// throws, the others stop after what they have in hand and run passes the exception on.
template <typename Item, typename Result>
class OrderedPipeline {
  public:
    struct Stages {
        std::function<std::optional<Item>()> source;  ///< Nothing at the end.
        std::function<Result(Item)> transform;        ///< Called from several threads at a time.
        std::function<void(Result)> sink;
    };

    /// @param workers   threads for the transform, at least 1.
    /// @param inFlight  items between source and sink at a time, at least 1; bounds the memory.
    OrderedPipeline(Stages stages, int workers, std::size_t inFlight)
        : mStages(std::move(stages)), mWorkers(workers), mInFlight(inFlight) {}

    /// Once. All threads have ended when it returns or throws.
    void run() {
        {
            std::vector<std::jthread> threads;
            const StopAtExit stop{*this};
            threads.emplace_back([this] { guarded(&OrderedPipeline::runSource); });
            for (int i = 0; i < mWorkers; ++i)
                threads.emplace_back([this] { guarded(&OrderedPipeline::runWorker); });
            guarded(&OrderedPipeline::runSink);
        }
        if (mFailure)
            std::rethrow_exception(mFailure);
    }

  private:
    using Lock = std::unique_lock<std::mutex>;

    /// Lets the threads end however run is left: they are joined right after.
    struct StopAtExit {
        OrderedPipeline& pipeline;
        ~StopAtExit() {
            const Lock lock(pipeline.mMutex);
            pipeline.mStopped = true;
            pipeline.mChanged.notify_all();
        }
    };

    void guarded(void (OrderedPipeline::*stage)()) {
        try {
            (this->*stage)();
        } catch (...) {
            const Lock lock(mMutex);
            if (!mFailure)
                mFailure = std::current_exception();
            mStopped = true;
            mChanged.notify_all();
        }
    }

    /// @return whether the pipeline goes on.
    template <typename Condition>
    bool waitFor(Lock& lock, Condition condition) {
        mChanged.wait(lock, [&] { return mStopped || condition(); });
        return !mStopped;
    }

    void runSource() {
        for (;;) {
            Lock lock(mMutex);
            if (!waitFor(lock, [&] { return mGiven - mTaken < mInFlight; }))
                return;
            lock.unlock();
            std::optional<Item> item = mStages.source();
            lock.lock();
            mEnded = !item;
            if (item)
                mWaiting.emplace_back(mGiven++, *std::move(item));
            mChanged.notify_all();
            if (mEnded)
                return;
        }
    }

    void runWorker() {
        Lock lock(mMutex);
        while (waitFor(lock, [&] { return !mWaiting.empty() || mEnded; }) && !mWaiting.empty()) {
            auto [number, item] = std::move(mWaiting.front());
            mWaiting.pop_front();
            lock.unlock();
            Result result = mStages.transform(std::move(item));
            lock.lock();
            mDone.emplace(number, std::move(result));
            mChanged.notify_all();
        }
    }

    void runSink() {
        Lock lock(mMutex);
        const auto ready = [&] { return mDone.contains(mTaken); };
        while (waitFor(lock, [&] { return ready() || (mEnded && mTaken == mGiven); }) && ready()) {
            Result result = std::move(mDone.extract(mTaken).mapped());
            lock.unlock();
            mStages.sink(std::move(result));
            lock.lock();
            ++mTaken;
            mChanged.notify_all();
        }
    }

    const Stages mStages;
    const int mWorkers;
    const std::size_t mInFlight;

    std::mutex mMutex;
    std::condition_variable mChanged;
    // Guarded by mMutex.
    std::deque<std::pair<std::size_t, Item>> mWaiting;  ///< For a worker.
    std::map<std::size_t, Result> mDone;                ///< For the sink, by number.
    std::size_t mGiven = 0;                             ///< Items that the source gave.
    std::size_t mTaken = 0;                             ///< Results that the sink is done with.
    bool mEnded = false;                                ///< The source has no more.
    bool mStopped = false;
    std::exception_ptr mFailure;
};

}  // namespace orbitwalk::tool
