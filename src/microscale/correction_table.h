// Cards of a correction factor table, of a fibre set or of the nanochannel model.
//
// Distances stand in nanometres on the deck and are stored in the mesh's unit, a thousand times larger. Called by
// ReadFibreData and by the reader of the diffusion curves.
#pragma once

#include "input/card.h"
#include "run/fibre_set.h"
#include "run/run.h"

namespace zurt {

extern const CardLayout kCorrectionTableSizesCard;

enum class CorrectionTableOwner { FibreSet, FibreSetY, Nanochannel };

struct CorrectionTableSizes {
    std::int32_t NDIST = 0; // distances: rows
    std::int32_t NCONC = 0; // concentrations: columns
};

/// Reads the card of the sizes. A size below 1, and a table that needs more cards than the deck has left, are deck
/// errors, so nothing is ever allocated for a table that can't be there.
CorrectionTableSizes ReadCorrectionTableSizes(Run& run);

/// Reads the table behind its sizes, with its echo: distances, concentrations, then the factors row by row, always
/// eight to a card.
///   distance       1..NDIST (output, mesh's unit)
///   concentration  1..NCONC (output)
///   factor         NDIST x NCONC (output)
/// Rows whose distances do not rise are taken as they are; a note says so.
void ReadCorrectionTable(Run& run, CorrectionTableOwner owner, RealArray distance, RealArray concentration,
                         RealTable factor);

/// Both of them, into a record on the heap.
void ReadCorrectionTable(Run& run, CorrectionTableOwner owner, CorrectionTable& table);

/// The table of the nanochannel model, which stands behind the diffusion curves when NANOCH is positive: takes its
/// storage in `A` (LNANO1 distances, LNANO2 concentrations, LNANO3 factors), tests `A` for overflow, and reads.
void ReadNanochannelTable(Run& run);

} // namespace zurt
