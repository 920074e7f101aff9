#pragma once

#include <memory>
#include <mutex>

#include "orbitwalk/Engine.h"
#include "orbitwalk/orbitwalk.h"

namespace orbitwalk::capi {

/// The one listener that the engine knows; passes progress on to the C listener of the moment. That
/// one is released when it is neither registered nor being called. Synchronises itself.
class Listener : public OBWEngineListener {
  public:
    /// @throws std::bad_alloc, and then the former one stays.
    void set(const OrbitwalkListener& listener);
    void clear() noexcept;

    void onProgress(int status, int percent) override;

  private:
    class Registered;

    std::mutex mLock;
    std::shared_ptr<const Registered> mRegistered;  ///< Guarded by mLock.
};

}  // namespace orbitwalk::capi
