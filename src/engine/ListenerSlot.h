#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "orbitwalk/Engine.h"

namespace orbitwalk {

/// The listener that is registered, and the calls to it. The call at 100 comes without the engine's
/// lock, so a replacement can meet it at any moment: a call takes whoever is registered when it
/// begins, and a replacement waits for a call that has begun. Synchronises itself; any thread.
class ListenerSlot {
  public:
    /// Afterwards no other listener is called any more. Calls of others that are under way are
    /// waited for, but not from within a call, and only for a moment: one may itself be waiting for
    /// this replacement on another thread, and then it has long begun.
    void replace(OBWEngineListener* listener);

    /// Calls who is registered, if anybody is. What the listener throws is logged and dropped. The
    /// slot may be gone when it returns: the listener may delete the engine.
    void call(int status, int percent) noexcept;

  private:
    /// Lives on the stack of the thread that calls.
    struct Call {
        OBWEngineListener* listener;
        std::thread::id thread;
        Call* next;
    };
    struct Calls {
        /// Who is called from now on, and the call enters the list.
        OBWEngineListener* enter(Call& call);
        void leave(Call& call);
        bool anyBy(std::thread::id thread) const;
        bool anyOfOthers(const OBWEngineListener* than) const;

        std::mutex lock;
        std::condition_variable ended;
        OBWEngineListener* listener = nullptr;  ///< Guarded by lock, as what follows.
        Call* underWay = nullptr;
    };

    std::shared_ptr<Calls> mCalls = std::make_shared<Calls>();
};

}  // namespace orbitwalk
