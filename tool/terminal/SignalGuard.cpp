#include "terminal/SignalGuard.h"

#include <atomic>
#include <cstring>

#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

std::atomic<int> caughtSignal = 0;
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler writes it");

extern "C" void noteSignal(int signal) {
    caughtSignal = signal;
}

}  // namespace

SignalGuard::SignalGuard() {
    caughtSignal = 0;
    for (const int signal : {SIGHUP, SIGINT, SIGTERM})
        replace(signal, &noteSignal);
    for (const int signal : {SIGPIPE, SIGXFSZ})
        replace(signal, SIG_IGN);
}

SignalGuard::~SignalGuard() {
    for (const auto& [signal, action] : mFormer)
        sigaction(signal, &action, nullptr);
    caughtSignal = 0;
}

void SignalGuard::replace(int signal, void (*handler)(int)) {
    struct sigaction former {};
    sigaction(signal, nullptr, &former);
    if (former.sa_handler == SIG_IGN)
        return;
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
    mFormer.emplace_back(signal, former);
}

int SignalGuard::received() {
    return caughtSignal;
}

void SignalGuard::check() {
    if (const int signal = received(); signal != 0)
        throw ToolError("interrupted (" + std::string(strsignal(signal)) + "), nothing was kept",
                        128 + signal);
}

}  // namespace orbitwalk::tool
