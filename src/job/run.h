// Everything that one run of the program holds; passed by reference from the driver down.
#pragma once

#include "elements/element_group.h"
#include "homogenization/fit_state.h"
#include "homogenization/mass_tables.h"
#include "job/control.h"
#include "job/deck.h"
#include "job/run_options.h"
#include "job/units.h"
#include "job/working_vector.h"
#include "microscale/fibre_set.h"

#include <vector>

namespace zurt {

/// Gauss point fluxes and coefficients on their way to the nodes: how many contributions each node has had.
struct NodalAveraging {
    std::vector<std::int32_t> contributions; // 1..NP at 0..NP-1
    std::vector<std::int32_t> layer;         // elements of an outlet layer (elements/outlet_layer.h)
    std::vector<double> layerResiduals;      // their residuals, 1..NP at 0..NP-1
};

struct Run {
    RunOptions options;
    Control control;
    Deck deck;
    Units units;
    WorkingVector A;
    ElementGroup groups[kMaxGroups + 1]; // 1..NGET
    FitState fit;
    FibreModel fibres; // empty without fibre sets
    NodalAveraging averaging;
    MassTables mass; // empty but in a fit and in the direct calculation
};

/// The text of the run's language.
inline const char* Say(const Run& run, const char* serbian, const char* english) {
    return Say(run.control.state.Language, serbian, english);
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
    return RealSection(run.A, run.control.at.LTT1, run.control.state.JEDN);
}
inline RealArray StepIncrement(const Run& run) {
    return RealSection(run.A, run.control.at.LTT2, run.control.state.JEDN);
}
inline RealArray StepStart(const Run& run) {
    return RealSection(run.A, run.control.at.LTT3, run.control.state.JEDN);
}
inline RealArray RightHandSide(const Run& run) {
    return RealSection(run.A, run.control.at.LRHS, run.control.state.JEDN);
}
inline RealArray SkylineStore(const Run& run) {
    return RealSection(run.A, run.control.at.LSK, run.control.state.NWK);
}
inline IntArray DiagonalPositions(const Run& run) {
    return IntSection(run.A, run.control.at.LMAXA, Word{run.control.state.JEDN} + 1);
}
inline RealArray NodalValues(const Run& run) {
    return RealSection(run.A, run.control.at.LNODAL, run.control.header.NP);
}

// Arrays of a group's data block.
inline IntTable Connectivity(const Run& run, const ElementGroup& group) {
    return IntTableSection(run.A, group.LNEL, group.NET, group.NDMAX);
}

} // namespace zurt
