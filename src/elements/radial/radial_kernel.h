// The radial fibre's numbers: a cylinder of given length, cut into rings of equal thickness with a node at each radius.
//
// Concentrations c vary linearly between the nodes; the integrals over a ring are exact. With k and C of a ring
// (conduction, capacity over the time step) the discrete equation is (K + C) dc = -(K c + C (c - c0)), Euler backward.
// Arrays and scalars alone. Called by the forming visit of the radial family.
#pragma once

#include "core/array_view.h"
#include "core/text_unit.h"

namespace zurt {

/// What the rings of one fibre share.
struct RadialScales {
    int count = 0;   // rings
    double dr = 0.0; // thickness of a ring
    double cK = 0.0; // 2 pi L D / dr
    double cC = 0.0; // 2 pi L dr / dt; 0 in a steady problem
};

/// One ring: K = [[k, -k], [-k, k]] and the capacity over the time step, inner node first.
struct RadialRing {
    double k, C11, C12, C22;
};

/// `D` in length squared over time, `length` and `radius` of the fibre; dt is not used when `transient` is false.
RadialScales ScalesOfFibre(double D, double length, double radius, int count, bool transient, double dt);

/// The ring whose inner radius is r.
RadialRing RingAt(const RadialScales& scales, double r);

/// F(j) = -(sum over i of K(j,i) c(i) + C(j,i) (c(i) - c0(i))) for the inner (0) and the outer node (1).
void RingLoad(const RadialRing& ring, const double c[2], const double c0[2], double F[2]);

/// Packed upper triangle of K + C.
void RingMatrix(const RadialRing& ring, double S[3]);

/// One step of a fibre whose surface is held: takes the values of the inner nodes to equilibrium with the surface value
/// and returns what the fibre gives off at its surface per unit time, negative when it takes in.
///   c   1..count+1, in and out: values from the axis outward; the last is the surface's and stays
///   c0  1..count+1, in: values at the start of the step
/// A pivot that is not above zero ends the run with the solver's message on `listing`.
double SolveFibre(const RadialScales& scales, RealArray c, ConstRealArray c0, TextUnit& listing);

} // namespace zurt
