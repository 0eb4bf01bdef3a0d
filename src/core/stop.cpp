#include "core/stop.h"

#include "core/array_view.h"
#include "core/interrupt.h"
#include "core/terminal_line.h"

#include <cstdio>
#include <cstdlib>

namespace zurt {

void StopRun(const TextUnit& unit, Word equation) {
    throw RunStop{StopKind::Message, unit.words, unit.name, unit.message, false, 0, equation};
}

void StopAtCard(const std::string& text) {
    RunStop stop{StopKind::LibraryError, text, ""};
    stop.ofCard = true;
    throw stop;
}

void StopWithLibraryError(const std::string& text) {
    throw RunStop{StopKind::LibraryError, text, ""};
}

void StopIfInterrupted() {
    if (interruptRequested != 0)
        throw RunStop{StopKind::Interrupt, "", ""};
}

void WriteNote(const std::string& text) {
    EraseTerminalLine();
    std::fprintf(stderr, "zurt: note: %s\n", text.c_str());
}

void ReportIndexOutsideArray(Word index, Word length) {
    std::fprintf(stderr, "zurt: index %lld outside an array of %lld\n", static_cast<long long>(index),
                 static_cast<long long>(length));
    std::abort();
}

} // namespace zurt
