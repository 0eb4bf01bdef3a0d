// How far a text unit has come: what a run that goes on later must find in the file, and behind what it writes. The same of files
// that are whole.
//
// Called by the checkpoints (timeint/checkpoint.h).
#pragma once

#include "core/text_unit.h"

#include <cstdint>

namespace zurt {

constexpr std::int64_t kUnitNotOpened = -1;
constexpr std::int64_t kUnitNoPlainFile = -2; // a device or a pipe, which keeps nothing

struct UnitPlace {
    std::int64_t length = kUnitNotOpened; // bytes, or one of the above
    std::uint64_t lastSum = 0;            // checksum of the last bytes ahead of it (core/word_sum.h)
};

/// The place of a unit whose records are flushed; brings them to the disk. False, with the reason in errno, when the system
/// refuses.
bool TakePlace(const TextUnit& unit, UnitPlace& place);

/// The same for a whole file that no unit writes.
bool TakePlace(const std::string& name, UnitPlace& place);

/// What is wrong with a file that is to be gone on with at this place; empty when nothing is.
std::string FaultOfPlace(const std::string& name, const UnitPlace& place);

/// Ends the wait of a unit (TextUnit::awaitsPlace): what its file holds behind the place is cut off, and a unit that is open goes
/// on there. Nothing for a unit that does not wait. Stops with a library error when the file can't be opened, is locked or has another text.
void GoOnAtPlace(TextUnit& unit, const UnitPlace& place);

} // namespace zurt
