#include "common/Log.h"

#include <dlfcn.h>

#include <exception>

namespace orbitwalk {

namespace {

using Answer = int (*)(int priority, const char* tag, int defaultPriority);

const void* libraryOf(const void* function) {
    Dl_info library{};
    return function != nullptr && dladdr(function, &library) != 0 ? library.dli_fbase : nullptr;
}

/// Looked for here and not linked: older devices lack it, and nobody has to bring it.
Answer answerOfThePrintingLibrary() {
    void* const found = dlsym(RTLD_DEFAULT, "__android_log_is_loggable");
    const void* const answering = libraryOf(found);
    const void* const printing = libraryOf(reinterpret_cast<const void*>(__android_log_print));
    return answering != nullptr && answering == printing ? reinterpret_cast<Answer>(found)
                                                         : nullptr;
}

}  // namespace

bool isHeard(int priority, const char* tag) noexcept {
    static const Answer answer = answerOfThePrintingLibrary();
    return answer == nullptr || answer(priority, tag, ANDROID_LOG_VERBOSE) != 0;
}

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
