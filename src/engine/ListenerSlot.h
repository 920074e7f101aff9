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
    /// Afterwards the former listener is not called any more. A call of it that is under way is
    /// waited for, but not on its own thread, and only for a moment: it may itself be waiting for
    /// this replacement on another thread, and then it has long begun.
    void replace(OBWEngineListener* listener);

    /// Calls who is registered, if anybody is. What the listener throws is logged and dropped. The
    /// slot may be gone when it returns: the listener may delete the engine.
    void call(int status, int percent) noexcept;

  private:
    struct Calls {
        std::mutex lock;
        std::condition_variable ended;
        OBWEngineListener* listener = nullptr;  ///< Guarded by lock, as the rest.
        bool underWay = false;
        std::thread::id thread{};
    };

    std::shared_ptr<Calls> mCalls = std::make_shared<Calls>();
};

}  // namespace orbitwalk
