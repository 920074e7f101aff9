#include "orbitwalk/orbitwalk.h"

#include <cstddef>
#include <cstring>
#include <exception>
#include <new>
#include <string_view>

#include "ErrorText.h"
#include "Listener.h"
#include "orbitwalk/Engine.h"

// The engine's entry points with C types: each call passes on what it is given and keeps what the
// log says of it.

using orbitwalk::capi::CallText;

namespace {

// The two are one layout, so that a thousand frames need no copy.
static_assert(sizeof(OrbitwalkFrame) == sizeof(_ENCODING_FRAME_INFORMATION));
static_assert(offsetof(OrbitwalkFrame, angle) == offsetof(_ENCODING_FRAME_INFORMATION, a));
static_assert(offsetof(OrbitwalkFrame, isRendered) ==
              offsetof(_ENCODING_FRAME_INFORMATION, render));
static_assert(offsetof(OrbitwalkFrame, info) == offsetof(_ENCODING_FRAME_INFORMATION, otherInfo1));

/// Lives as long as the library: the engine may call it until the process ends.
orbitwalk::capi::Listener& listenerOfTheEngine() noexcept {
    using orbitwalk::capi::Listener;
    alignas(Listener) static std::byte room[sizeof(Listener)];
    static auto* const listener = new (room) Listener;
    return *listener;
}

}  // namespace

int orbitwalkSetTemporaryDirectory(const char* path) {
    const CallText call;
    const std::string_view name = path == nullptr ? "" : path;
    if (name.empty() || name.size() >= sizeof localTmpDir || name.back() != '/')
        return call.finish(false,
                           "a temporary directory has 1 to 199 characters and ends in a slash");
    std::memcpy(localTmpDir, path, name.size() + 1);
    return call.finish(true, "");
}

int orbitwalkInit(const OrbitwalkListener* listener) {
    const CallText call;
    if (listener == nullptr || listener->onProgress == nullptr)
        return call.finish(false, "a listener needs onProgress");
    try {
        // First the engine, which waits for a post-processing that runs: it reports to the former
        // one.
        const bool isSet = initOrbitwalkEngine(&listenerOfTheEngine()) == 1;
        if (isSet)
            listenerOfTheEngine().set(*listener);
        return call.finish(isSet, "the engine cannot be set up");
    } catch (const std::exception&) {
        return call.finish(false, "no memory for a listener");
    }
}

int orbitwalkRecordSize(void) {
    const CallText call;
    const int size = getSizeOrbitwalkInformation();
    call.finish(true, "");
    return size;
}

int orbitwalkStart(const OrbitwalkParameters* parameters) {
    const CallText call;
    if (parameters == nullptr)
        return call.finish(startOrbitwalkEngine(nullptr) == 1, "no parameters");
    _OBW_ENGINE_INIT_PARAM given{};
    given.imageWidth = parameters->width;
    given.imageHeight = parameters->height;
    given.imageFormat = parameters->format;
    given.fpMP4 = parameters->mp4;
    given.pWideReelInfo = parameters->record;
    given.frontCamFlipped = parameters->mirrored;
    given.orientation = parameters->orientation;
    return call.finish(startOrbitwalkEngine(&given) == 1, "the capture cannot begin");
}

int orbitwalkGetTrajectory(const uint8_t* frame, float* x, float* y, float* angle) {
    const CallText call;
    getTrajectory(frame, x, y, angle);
    return call.finish(*orbitwalk::capi::lastError() == '\0', "");
}

int orbitwalkProvideFrame(const uint8_t* frame, float x, float y, float angle) {
    const CallText call;
    return call.finish(provideFrameandTrajectory(frame, x, y, angle) == 1,
                       "the frame was not taken");
}

int orbitwalkStop(int first, int last, const OrbitwalkFrame* frames, int count, int direction) {
    const CallText call;
    // Copied by the engine, never written to.
    auto* const given =
        reinterpret_cast<_ENCODING_FRAME_INFORMATION*>(const_cast<OrbitwalkFrame*>(frames));
    return call.finish(
        stopOrbitwalkEngine(first, last, given, count, static_cast<OBWDirection>(direction)) == 1,
        "the capture cannot be ended");
}

int orbitwalkReset(void) {
    const CallText call;
    return call.finish(resetOrbitwalkEngine() == 1, "the engine cannot be reset");
}

int orbitwalkCancel(void) {
    const CallText call;
    return call.finish(cancelOrbitwalkEngine() == 1, "no capture could be cancelled");
}

int orbitwalkDeinit(void) {
    const CallText call;
    const bool isDone = deinitOrbitwalkEngine() == 1;
    listenerOfTheEngine().clear();
    return call.finish(isDone, "the engine cannot be freed");
}

const char* orbitwalkLastError(void) {
    return orbitwalk::capi::lastError();
}
