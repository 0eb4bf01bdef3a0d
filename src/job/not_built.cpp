#include "job/not_built.h"

#include "core/format.h"
#include "core/stop.h"

#include <string>

namespace zurt {

void StopNotBuilt(Run& run, const char* what) {
    const std::string line = std::string(what) + " not built yet";
    Write(run.units.listing, "(' zurt: ',A)", line);
    StopWithLibraryError(line);
}

} // namespace zurt
