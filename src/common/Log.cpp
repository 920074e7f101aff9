#include "common/Log.h"

#include <exception>

namespace orbitwalk {

constinit ErrorWatcher errorWatcher = nullptr;

void tellErrorWatcher(const char* format, ...) noexcept {
    if (errorWatcher == nullptr)
        return;
    std::va_list values;
    va_start(values, format);
    errorWatcher(format, values);
    va_end(values);
}

void logCause(const char* tag, const char* where) noexcept {
    try {
        throw;
    } catch (const std::exception& failure) {
        const char* const kLogTag = tag;
        logError("%s : cause: %s", where, failure.what());
    } catch (...) {
        // Not one of ours or of a library's: it has no text.
    }
}

}  // namespace orbitwalk
