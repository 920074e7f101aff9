#include "Listener.h"

#include <utility>

namespace orbitwalk::capi {

class Listener::Registered {
  public:
    explicit Registered(const OrbitwalkListener& listener) : mListener(listener) {}
    ~Registered() {
        if (mListener.release != nullptr)
            mListener.release(mListener.user);
    }
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;

    void notify(int percent) const { mListener.onProgress(mListener.user, percent); }

  private:
    OrbitwalkListener mListener;
};

// The one that goes is released without the lock: release may call back into this library.

void Listener::set(const OrbitwalkListener& listener) {
    std::shared_ptr<const Registered> other = std::make_shared<Registered>(listener);
    const std::lock_guard hold(mLock);
    mRegistered.swap(other);
}

void Listener::clear() noexcept {
    std::shared_ptr<const Registered> none;
    const std::lock_guard hold(mLock);
    mRegistered.swap(none);
}

void Listener::onProgress(int, int percent) {
    std::shared_ptr<const Registered> called;
    {
        const std::lock_guard hold(mLock);
        called = mRegistered;
    }
    if (called != nullptr)
        called->notify(percent);
}

}  // namespace orbitwalk::capi
