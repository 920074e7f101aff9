#include "terminal/SignalGuard.h"

#include <cstring>

#include "terminal/ToolError.h"

namespace orbitwalk::tool {
namespace {

volatile std::sig_atomic_t caughtSignal = 0;

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
}

void SignalGuard::replace(int signal, void (*handler)(int)) {
    struct sigaction former {};
    sigaction(signal, nullptr, &former);
    if (former.sa_handler == SIG_IGN)
        return;
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
    mFormer.emplace_back(signal, former);
}

void SignalGuard::check() const {
    if (const int signal = caughtSignal; signal != 0)
        throw ToolError("interrupted (" + std::string(strsignal(signal)) + "), nothing was kept",
                        128 + signal);
}

}  // namespace orbitwalk::tool
