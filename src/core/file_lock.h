// Locks on the files that a run writes, so that a second run does not cut them.
#pragma once

namespace zurt {

/// Takes the lock of an open file until it is closed or the process ends. False when another process holds it; a file system
/// without locks gives the lock to every process, and so do devices, /dev/null above all, which any number of runs may name.
bool LockFile(int descriptor);

} // namespace zurt
