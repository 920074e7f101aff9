#include "LogChannel.h"

#include <cstdio>
#include <cstdlib>

#include "LogConfig.h"

namespace orbitwalk::platform {

namespace {

int levelOfEnvironment() {
    const char* word = std::getenv("ORBITWALK_LOG_LEVEL");
    const int priority = priorityOfLevel(word ? word : "");
    if (priority != 0)
        return priority;
    std::fprintf(stderr,
                 "orbitwalk: ORBITWALK_LOG_LEVEL is \"%s\", not one of verbose, debug, info, warn, "
                 "error, off\n",
                 word);
    return kNothing;
}

}  // namespace

LogChannel& LogChannel::instance() {
    static LogChannel& channel = *new LogChannel;
    return channel;
}

LogChannel::LogChannel() : mLevel(levelOfEnvironment()) {}

bool LogChannel::isWritten(int priority) const {
    return clampPriority(priority) >= mLevel;
}

bool LogChannel::isOpenFor(int priority) const {
    return isWritten(priority) || mHeard;
}

bool LogChannel::say(int priority, const char* tag, const char* text) {
    const bool heard = tellListener(priority, tag, text);
    const bool written = isWritten(priority) && file().write(priority, tag, text);
    return heard || written;
}

bool LogChannel::tellListener(int priority, const char* tag, const char* text) {
    if (!mHeard)
        return false;
    const std::lock_guard guard(mListenerLock);
    if (!mListener)
        return false;
    mListener(priority, tag, text, mContext);
    return true;
}

void LogChannel::setListener(OrbitwalkLogListener listener, void* context) {
    const std::lock_guard guard(mListenerLock);
    mListener = listener;
    mContext = context;
    mHeard = listener != nullptr;
}

LogFile& LogChannel::file() {
    std::call_once(
        mOpened, [this] { mFile = std::make_unique<LogFile>(std::getenv("ORBITWALK_LOG_FILE")); });
    return *mFile;
}

}  // namespace orbitwalk::platform
