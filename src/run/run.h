// Everything that one run of the program holds; passed by reference from the driver down.
#pragma once

#include "core/workers.h"
#include "input/deck.h"
#include "run/check_state.h"
#include "run/control.h"
#include "run/element_group.h"
#include "run/fibre_set.h"
#include "run/fit_state.h"
#include "run/history_state.h"
#include "run/job_settings.h"
#include "run/run_state.h"
#include "run/units.h"
#include "run/viewer_state.h"
#include "run/watch_state.h"
#include "run/working_vector.h"

#include <any>
#include <vector>

namespace zurt {

/// Gauss point fluxes and coefficients on their way to the nodes: how many contributions each node has had.
struct NodalAveraging {
    std::vector<std::int32_t> contributions; // 1..NP at 0..NP-1
    std::vector<std::int32_t> layer;         // elements of an outlet layer (elements/forming/outlet_layer.h)
    std::vector<double> layerResiduals;      // their residuals, 1..NP at 0..NP-1
};

struct Run {
    RunOptions options;
    Workers workers; // one thread unless the command line asks for more
    Control control;
    JobState job;
    SystemSizes sizes;
    Pass pass;
    Clock clock;
    OutputCounters outputs;
    Deck deck;
    Deck prescribedFile; // of --prescribed; without a name when there is none
    Units units;
    WorkingVector A;
    ElementGroup groups[kMaxGroups + 1]; // 1..NGET
    GroupVisits visits;
    FitState fit;
    FibreModel fibres; // empty without fibre sets
    NodalAveraging averaging;
    std::vector<std::int32_t>
        prescribedEntry; // 1..NP at 0..NP-1: the node's entry, 0 none; empty: none at all
    HistoryState history;
    ViewerState viewer;
    MassTables mass;  // empty but in a fit and in the direct calculation
    CheckState check; // of --check
    CheckpointState checkpoint;
    ProgressState progress;
    std::any solverStorage; // what the linear solver keeps beside `A` (solver/solver_storage.h)
    std::any vtuStorage;    // the mesh of the files for ParaView (results/vtu_results.cpp)
};

/// The text of the run's language.
inline const char* Say(const Run& run, const char* serbian, const char* english) {
    return Say(run.job.Language, serbian, english);
}

/// Cards of the deck, in its format.
inline CardSource CardsOfDeck(Run& run) {
    return {run.deck, run.control.header.INDFOR};
}

/// True when input data read and generated are echoed.
inline bool EchoInput(const Run& run) {
    const std::int32_t NULAZ = run.control.header.NULAZ;
    return NULAZ == 1 || NULAZ == 3;
}

/// Where a fatal message goes: the listing, or the console when no listing was opened.
inline TextUnit& MessageUnit(Run& run) {
    return IsOpen(run.units.listing) ? run.units.listing : run.units.console;
}

/// The same, for a message that follows now and ends the run.
inline TextUnit& BeginMessage(Run& run) {
    return BeginMessage(MessageUnit(run));
}

// Views of the arrays that most steps need.
inline RealArray CoordinateColumn(const Run& run, int axis) {
    const Word NP = run.control.header.NP;
    return RealSection(run.A, run.control.at.LCORD + (axis - 1) * NP, NP);
}
inline IntArray EquationNumbers(const Run& run) {
    return IntSection(run.A, run.control.at.LID, run.control.header.NP);
}
inline RealArray NodeCardValues(const Run& run) {
    return RealSection(run.A, run.control.at.LNODEV, run.control.header.NP);
}
inline RealArray StepSolution(const Run& run) {
    return RealSection(run.A, run.control.at.LTT1, run.sizes.JEDN);
}
inline RealArray StepIncrement(const Run& run) {
    return RealSection(run.A, run.control.at.LTT2, run.sizes.JEDN);
}
inline RealArray StepStart(const Run& run) {
    return RealSection(run.A, run.control.at.LTT3, run.sizes.JEDN);
}
inline RealArray RightHandSide(const Run& run) {
    return RealSection(run.A, run.control.at.LRHS, run.sizes.JEDN);
}
inline IntArray DiagonalPositions(const Run& run) {
    return IntSection(run.A, run.control.at.LMAXA, Word{run.sizes.JEDN} + 1);
}
inline RealArray NodalValues(const Run& run) {
    return RealSection(run.A, run.control.at.LNODAL, run.control.header.NP);
}

// Arrays of a group's data block.
inline IntTable Connectivity(const Run& run, const ElementGroup& group) {
    return IntTableSection(run.A, group.LNEL, group.NET, group.NDMAX);
}

} // namespace zurt
