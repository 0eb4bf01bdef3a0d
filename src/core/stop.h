// How a run ends before its time.
//
// A stop is thrown and caught in one place, the driver, which holds the run: it flushes every file,
// says what stopped the run, and chooses the status. Nothing in between catches it.
//
// A message of the program's own goes to its unit first (BeginMessage, then records) and then StopRun ends the run.
// What the input library has to report (a field that does not convert, the end of the deck, a file that can't be
// opened) has no record on any unit; its text goes to standard error.
#pragma once

#include "core/array_view.h"
#include "core/text_unit.h"

#include <cstdint>
#include <string>

namespace zurt {

enum class StopKind {
    Message,      // one of the program's own, on a unit
    LibraryError, // deck, files, memory
    Interrupt,    // a signal asked for the end
};

constexpr Word kNoSystem = -1;

/// What is thrown: the first words of the message and the unit that holds it, or the text of a library error.
struct RunStop {
    StopKind kind = StopKind::Message;
    std::string text;
    std::string place;        // name of the unit that holds the message
    std::string records = {}; // the message, where this process does not write that unit
    // Where processes share the run (core/ranks.h): all know already that it ends, for what this one has to say.
    bool isKnown = false;
    std::int32_t rank = 0;
    Word equation = kNoSystem;
    bool ofCard = false; // a card of the deck is at fault
};

/// Ends the run behind a message that was begun on this unit (BeginMessage).
///   equation  of the linear system at which its solution failed, 0 when the solver can't tell; kNoSystem for other messages
[[noreturn]] void StopRun(const TextUnit& unit, Word equation = kNoSystem);

/// The same as StopWithLibraryError for a card of the deck.
[[noreturn]] void StopAtCard(const std::string& text);

/// Ends the run for what the input and output library or the system reports.
[[noreturn]] void StopWithLibraryError(const std::string& text);

/// Ends the run if a signal has asked for it (core/interrupt.h). Called where files are whole.
void StopIfInterrupted();

/// Writes "zurt: note: " and `text` to standard error: behaviour that is meant and likely to surprise.
void WriteNote(const std::string& text);

} // namespace zurt
