// The process around a job: what it takes over from its parent, and the stack that it runs on.
#pragma once

namespace zurt {

/// A write to a closed pipe or beyond a limit of file size fails as a write, instead of killing the process; a standard stream
/// that the parent has closed is there and fails likewise, so that no file of the run takes its place.
void PrepareProcess();

/// Runs `job` with the arguments of the program on a stack of its own, whatever limit the parent has set, and returns its result.
int RunOnOwnStack(int (*job)(int count, char** values), int count, char** values);

} // namespace zurt
