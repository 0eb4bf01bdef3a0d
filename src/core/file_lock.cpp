#include "core/file_lock.h"

#include <cerrno>
#include <sys/file.h>
#include <sys/stat.h>

namespace zurt {

bool LockFile(int descriptor) {
    struct stat about = {};
    if (fstat(descriptor, &about) == 0 && !S_ISREG(about.st_mode))
        return true;
    int result = 0;
    do
        result = flock(descriptor, LOCK_EX | LOCK_NB);
    while (result != 0 && errno == EINTR);
    return result == 0 || errno != EWOULDBLOCK;
}

} // namespace zurt
