#include "core/file_lock.h"

#include <cerrno>
#include <sys/file.h>

namespace zurt {

bool LockFile(int descriptor) {
    int result = 0;
    do
        result = flock(descriptor, LOCK_EX | LOCK_NB);
    while (result != 0 && errno == EINTR);
    return result == 0 || errno != EWOULDBLOCK;
}

} // namespace zurt
