// zurt: runs the deck of its command line; started without arguments, asks for its file names on the console.
#include "job/command_line.h"
#include "job/driver.h"
#include "run/process.h"

#include <cstdio>
#include <new>

namespace {

int RunMain(int count, char** values) {
    int status = 0;
    try {
        if (const auto settings = zurt::ReadCommandLine(count, values, status))
            status = zurt::JobDriver(*settings, stdin, stdout);
    } catch (const std::bad_alloc&) {
        std::fputs("zurt: error: no memory left\n", stderr);
        status = zurt::kFailed;
    }
    return status;
}

} // namespace

int main(int argc, char** argv) {
    zurt::PrepareProcess();
    return zurt::RunOnOwnStack(RunMain, argc, argv);
}
