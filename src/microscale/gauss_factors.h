// Factors on the diffusion coefficients of the three axes at a Gauss point under fibres.
//
// With fibres (IEHM 0) a point takes them from the table of its nearest fibre's set, by its wall distance, turned into
// the axes of the mesh; in the equivalent medium (IEHM 1) every point takes them from the merged tables at the one
// distance HEQ. Distances are in the mesh's unit, concentrations molar. Callers (the element loops, in every equilibrium
// iteration) set the factors to 1 first; nothing is allocated.
#pragma once

#include "microscale/fibre_search.h"
#include "run/fibre_set.h"
#include "run/fit_state.h"

namespace zurt {

/// Whether correction factors count in this run of a fit. In fibres they do in any case.
inline bool FactorsOn(const FitState& fit) {
    return fit.ISFOFF != 1 || (fit.card.IDCSF != 0 && fit.ITERFIT < 1);
}

/// Factors from a point's record at concentration c: along the fibre and around it by the first table of its set, from
/// the fibre to the point by the second one (the first, if the set has no second). With `factorsOn` false a point in fluid
/// is left alone.
void GaussFactorCached(const FibreModel& model, const GaussFibreRecord& record, bool factorsOn, double c,
                       double (&factor)[3]);

/// Dormant: the same from coordinates, by a visit of all fibres with endless lines (SearchOfAllSets with LineEnds::Endless): the
/// reference of the records.
void GaussFactorDirect(const FibreModel& model, const FibreSearch& endless, const double (&X)[3],
                       bool factorsOn, double c, double (&factor)[3]);

/// Factors of the equivalent medium at the distance HEQ: x and y by the merged table, z by the merged second one.
void GaussFactorEhm(const FibreModel& model, double HEQ, bool factorsOn, double c, double (&factor)[3]);

/// What the element loops ask for at a point: its record in a run with fibres and in both passes of the direct
/// calculation, else the equivalent medium.
void GaussFactors(const FibreModel& model, const FitState& fit, bool direct, const GaussFibreRecord& record,
                  double c, double (&factor)[3]);

/// The factors of a point of which `share` lies in fluid with these, the rest in a fibre.
void MixWithFibre(double share, double (&factor)[3]);

} // namespace zurt
