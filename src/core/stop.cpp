#include "core/stop.h"

#include "core/array_view.h"

#include <cstdio>
#include <cstdlib>

namespace zurt {

namespace {

// Every stream is flushed here, so that a failure to store what was written shows in the status.
[[noreturn]] void EndProcess(int status) {
    if (std::fflush(nullptr) != 0 && status == 0) {
        std::fputs("zurt: error: what was written could not be stored completely; is the disk full?\n",
                   stderr);
        status = kLibraryErrorStatus;
    }
    std::exit(status);
}

} // namespace

void StopRun() {
    EndProcess(0);
}

void StopWithLibraryError(const std::string& text) {
    std::fflush(nullptr);
    std::fprintf(stderr, "zurt: error: %s\n", text.c_str());
    EndProcess(kLibraryErrorStatus);
}

void WriteNote(const std::string& text) {
    std::fprintf(stderr, "zurt: note: %s\n", text.c_str());
}

void ReportIndexOutsideArray(Word index, Word length) {
    std::fprintf(stderr, "zurt: index %lld outside an array of %lld\n", static_cast<long long>(index),
                 static_cast<long long>(length));
    std::abort();
}

} // namespace zurt
