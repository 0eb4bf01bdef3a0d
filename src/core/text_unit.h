// Sequential text units: the listing, the console, MESSAGES.LST, the graphics and the mass files.
//
// A unit is a buffered file to which whole records are appended. A record written to a unit that was never opened is
// dropped: a run without a listing makes the same calls as one with it. A record that can't be stored (a full
// disk) ends the run through StopWithLibraryError. Where processes share a run (core/ranks.h) the first one has the files:
// in the others a unit opens nothing. A unit that is not open drops its records, but for those of a message, which it keeps.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace zurt {

struct Workers; // core/workers.h

struct TextUnit {
    std::FILE* file = nullptr; // null while the unit is not open
    char* buffer = nullptr;    // of a file that the unit has opened
    std::string name;          // the file's name, for error reports
    bool keepsOlder = false;   // a file that an earlier run left is not replaced
    // Of a run that goes on from a checkpoint: records are dropped until it is there.
    bool awaitsPlace = false;
    bool underLine = false;   // a terminal's line that is written over stands where the next record goes
    bool awaitsWords = false; // a message has begun and its first line of words is still to come
    std::string words;        // that line, without blanks around it
    // Of a unit that takes messages: none begins while these are side by side.
    const Workers* workers = nullptr;
    bool elsewhere = false;    // open, in the first process
    bool keepsMessage = false; // no file is open here, and a message has begun
    std::string message;       // its records
};

inline bool IsOpen(const TextUnit& unit) {
    return unit.file != nullptr || unit.elsewhere;
}

/// False when a record would be dropped: the unit isn't open here, and no message has begun on it.
inline bool TakesRecords(const TextUnit& unit) {
    return unit.file != nullptr || unit.awaitsWords || unit.keepsMessage;
}

/// Opens `name` for writing from its start, dropping what it held; stops with a library error when it can't, and when the
/// unit keeps older files and this is one. While the unit awaits its place its records go nowhere.
void OpenTextUnit(TextUnit& unit, const std::string& name);

/// Opens a unit that was closed again, to go on behind what it holds; stops with a library error when it can't.
void ReopenTextUnit(TextUnit& unit);

/// Opens a unit that was closed again, to go on behind the first `length` bytes of its file, the rest of which is cut off; below
/// 0: behind all. Stops with a library error when it can't, and when there is no such file.
void OpenTextUnitBehind(TextUnit& unit, std::int64_t length);

/// Makes a unit of a stream that is open already (the console).
void AttachTextUnit(TextUnit& unit, std::FILE* stream, const std::string& name);

/// Closes the unit and keeps the file.
void CloseTextUnit(TextUnit& unit);

/// Hands what was written to the system, so that it survives whatever comes.
void FlushTextUnit(TextUnit& unit);

/// A message that ends the run follows on this unit; its first line that holds letters is kept in `words`. Returns the
/// unit. Throws OutOfTurn instead while its workers are side by side (core/workers.h).
TextUnit& BeginMessage(TextUnit& unit);

/// Appends one record and its line end.
void PutRecord(TextUnit& unit, std::string_view record);

/// Appends bytes as they are: records that bring their own line ends.
void PutBytes(TextUnit& unit, std::string_view bytes);

} // namespace zurt
