// The five families of functions behind the general boundary card, the radiation card and the shape factors.
//
// Sources (NQE), surface fluxes (NQP) and environment values (NTOK) are functions of time, convection (NHP) and
// radiation (NHR) coefficients functions of concentration; sources under IZIP 2 of concentration too. Called once a
// problem by the driver. Element code takes the tables through the views below and looks them up with CurveLookup.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

constexpr int kShapeFactorsPerCard = 8;

struct ShapeFactorCard {
    double FO[kShapeFactorsPerCard];
};

extern const CardLayout kRadiationCard;
extern const CardLayout kShapeFactorCards;

/// Reads the families whose number is not 0, in the order NQE, NQP, NTOK, NHP, NHR, each into a table of its own; with
/// NHR also the radiation card and, with NFO, the shape factors. Sources, fluxes and environment values must reach
/// TIME, which holds the end of the run at this stage. Too many points and a function that ends early stop the run.
void ReadFunctionTables(Run& run);

/// One family as CurveLookup takes it; numbers of its functions lie in 1..points.length, which is 0 for an absent one.
struct FunctionTable {
    IntArray points;
    RealTable pairs;
};

inline FunctionTable FunctionTableAt(const Run& run, std::int32_t functions, std::int32_t largest,
                                     Word countsAt, Word tableAt) {
    return {IntSection(run.A, countsAt, functions),
            RealTableSection(run.A, tableAt, 2 * Word{functions}, largest)};
}
inline FunctionTable SourceFunctions(const Run& run) {
    const CurveCounts& counts = run.control.counts;
    return FunctionTableAt(run, counts.NQE, counts.MAXTQE, run.control.at.LQE1, run.control.at.LQE2);
}
inline FunctionTable FluxFunctions(const Run& run) {
    const CurveCounts& counts = run.control.counts;
    return FunctionTableAt(run, counts.NQP, counts.MAXTQP, run.control.at.LQP1, run.control.at.LQP2);
}
inline FunctionTable EnvironmentFunctions(const Run& run) {
    const CurveCounts& counts = run.control.counts;
    return FunctionTableAt(run, counts.NTOK, counts.MAXTOK, run.control.at.LTOK1, run.control.at.LTOK2);
}
inline FunctionTable ConvectionFunctions(const Run& run) {
    const CurveCounts& counts = run.control.counts;
    return FunctionTableAt(run, counts.NHP, counts.MAXTHP, run.control.at.LHP1, run.control.at.LHP2);
}
inline FunctionTable RadiationFunctions(const Run& run) {
    const CurveCounts& counts = run.control.counts;
    return FunctionTableAt(run, counts.NHR, counts.MAXTHR, run.control.at.LHR1, run.control.at.LHR2);
}
inline RealArray ShapeFactors(const Run& run) {
    return RealSection(run.A, run.control.at.LFO, run.control.counts.NFO);
}

} // namespace zurt
