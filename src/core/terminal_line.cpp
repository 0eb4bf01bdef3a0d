#include "core/terminal_line.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace zurt {

bool StandardErrorIsTerminal() {
    const char* const kind = std::getenv("TERM");
    return isatty(STDERR_FILENO) == 1 && kind != nullptr && std::strcmp(kind, "dumb") != 0;
}

void EraseTerminalLine() {
    if (StandardErrorIsTerminal())
        std::fputs("\r\033[K", stderr);
}

} // namespace zurt
