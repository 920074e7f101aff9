#include "engine/ListenerSlot.h"

#include <exception>

#include "common/Log.h"

namespace orbitwalk {

namespace {

constexpr char kLogTag[] = "ORBITWALK_ENGINE";
constexpr std::chrono::milliseconds kPatience{200};

void notify(OBWEngineListener& listener, int status, int percent) {
    try {
        listener.onProgress(status, percent);
    } catch (const std::exception& error) {
        logError("kelOBWEngine::onOBWEngineDoPostProcess : listener failed at %d", percent);
        logError("kelOBWEngine::onOBWEngineDoPostProcess : cause: %s", error.what());
    } catch (...) {
        logError("kelOBWEngine::onOBWEngineDoPostProcess : listener failed at %d", percent);
    }
}

}  // namespace

void ListenerSlot::replace(OBWEngineListener* listener) {
    std::unique_lock hold(mCalls->lock);
    if (listener == mCalls->listener)
        return;
    mCalls->listener = listener;
    if (mCalls->thread != std::this_thread::get_id())
        mCalls->ended.wait_for(hold, kPatience, [&] { return !mCalls->underWay; });
}

void ListenerSlot::call(int status, int percent) noexcept {
    const std::shared_ptr<Calls> calls = mCalls;
    OBWEngineListener* listener = nullptr;
    {
        const std::lock_guard hold(calls->lock);
        listener = calls->listener;
        if (listener == nullptr)
            return;
        calls->underWay = true;
        calls->thread = std::this_thread::get_id();
    }
    notify(*listener, status, percent);
    const std::lock_guard hold(calls->lock);
    calls->underWay = false;
    calls->thread = {};
    calls->ended.notify_all();
}

}  // namespace orbitwalk
