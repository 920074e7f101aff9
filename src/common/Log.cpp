#include "common/Log.h"

#include <exception>

namespace orbitwalk {

void logCause(const char* tag, const char* where) noexcept {
    try {
        throw;
    } catch (const std::exception& failure) {
        __android_log_print(ANDROID_LOG_ERROR, tag, "%s : cause: %s", where, failure.what());
    } catch (...) {
        // Not one of ours or of a library's: it has no text.
    }
}

}  // namespace orbitwalk
