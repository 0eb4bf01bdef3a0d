// zurt: runs the deck of its command line; started without arguments, asks for its file names on the console.
#include "job/command_line.h"
#include "job/driver.h"

int main(int argc, char** argv) {
    int status = 0;
    if (const auto settings = zurt::ReadCommandLine(argc, argv, status))
        status = zurt::JobDriver(*settings, stdin, stdout);
    return status;
}
