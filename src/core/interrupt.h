// Ctrl-C and the signal with which batch systems end a job.
//
// The handler sets a flag; the loops of the run ask for it where files are whole (StopIfInterrupted in core/stop.h). A
// second signal of the kind ends the process at once.
#pragma once

#include <csignal>

namespace zurt {

/// Not 0 once a signal has come. Written by the handler alone.
extern volatile std::sig_atomic_t interruptRequested;

/// Takes SIGINT and SIGTERM from now on.
void WatchForInterrupts();

} // namespace zurt
