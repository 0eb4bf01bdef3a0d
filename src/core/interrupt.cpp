#include "core/interrupt.h"

namespace zurt {

volatile std::sig_atomic_t interruptRequested = 0;

namespace {

extern "C" void RememberInterrupt(int /*signal*/) {
    interruptRequested = 1;
}

} // namespace

void WatchForInterrupts() {
    struct sigaction action = {};
    action.sa_handler = RememberInterrupt;
    // SA_RESTART: a record that is being written is finished. SA_RESETHAND: a second signal ends the process.
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

} // namespace zurt
