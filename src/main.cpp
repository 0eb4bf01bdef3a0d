// zurt: started without arguments, asks for its file names on the console.
#include "core/stop.h"
#include "job/driver.h"

#include <new>

int main() {
    try {
        zurt::JobDriver(stdin, stdout, zurt::kWorkingVectorSize);
    } catch (const std::bad_alloc&) { // an enormous deck on a small machine
        zurt::StopWithLibraryError("no memory left");
    }
}
