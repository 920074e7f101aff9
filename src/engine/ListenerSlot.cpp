#include "engine/ListenerSlot.h"

#include "common/Log.h"

namespace orbitwalk {

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";
constexpr std::chrono::milliseconds kPatience{200};

void notify(OBWEngineListener& listener, int status, int percent) {
    try {
        listener.onProgress(status, percent);
    } catch (...) {
        logError("kelOBWEngine::onOBWEngineDoPostProcess : listener failed at %d", percent);
        logCause(kLogTag, "kelOBWEngine::onOBWEngineDoPostProcess");
    }
}

}  // namespace

OBWEngineListener* ListenerSlot::Calls::enter(Call& call) {
    const std::lock_guard hold(lock);
    call = {listener, std::this_thread::get_id(), underWay};
    underWay = &call;
    return listener;
}

void ListenerSlot::Calls::leave(Call& call) {
    const std::lock_guard hold(lock);
    Call** link = &underWay;
    while (*link != &call)
        link = &(*link)->next;
    *link = call.next;
    ended.notify_all();
}

bool ListenerSlot::Calls::anyBy(std::thread::id thread) const {
    for (const Call* call = underWay; call != nullptr; call = call->next)
        if (call->thread == thread)
            return true;
    return false;
}

bool ListenerSlot::Calls::anyOfOthers(const OBWEngineListener* than) const {
    for (const Call* call = underWay; call != nullptr; call = call->next)
        if (call->listener != than)
            return true;
    return false;
}

void ListenerSlot::replace(OBWEngineListener* listener) {
    std::unique_lock hold(mCalls->lock);
    mCalls->listener = listener;
    if (!mCalls->anyBy(std::this_thread::get_id()))
        mCalls->ended.wait_for(hold, kPatience, [&] { return !mCalls->anyOfOthers(listener); });
}

void ListenerSlot::call(int status, int percent) noexcept {
    const std::shared_ptr<Calls> calls = mCalls;
    Call call{};
    if (OBWEngineListener* const listener = calls->enter(call))
        notify(*listener, status, percent);
    calls->leave(call);
}

}  // namespace orbitwalk
