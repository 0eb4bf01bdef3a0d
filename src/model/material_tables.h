// Where the material data of a problem lie in `A`, as views for the element passes.
//
// With NDS 0 (K stands for conduction or diffusion, C for specific heat; D is ConductionDimension):
//   LMAT1  function numbers of the three directions, integers, (material, direction), material fastest
//   LMAT2  multipliers of the three directions, likewise
//   LMAT3  density           LMAT4  highest, LMAT5 lowest concentration of the analytic forms, by material
//   LMAT6  points of each K function, 1..D
//   LMAT7  K functions: pairs, 2*D x MAXTK
//   LMAT8  points of each C curve, by material; 0: no curve, the analytic form holds
//   LMAT9  C curves: pairs, 2*NMATT x MAXTC, already multiplied by the density of the material
// LMAT8 and LMAT9 have room when NSTAC is positive only. With NDS not 0 none of the nine has any.
//
// With NDS not 0, or NANOCH positive, the diffusion curves: LNPMAT points of each curve, LDCT the curves,
// NMATT x 2*MAXPMAT, concentration of point p in column 2p-1, coefficient in column 2p; a curve number is a material
// number, and the table may be rewritten in place by a fit.
#pragma once

#include "run/run.h"

#include <algorithm>

namespace zurt {

/// K functions for which there is room: one even when none is given.
inline std::int32_t ConductionDimension(const Run& run) {
    return std::max(run.control.counts.NTABK, 1);
}

/// Function numbers (material, direction). The first of a material is 0 or a K function; the other two may also be
/// negative. 0 is no function: look before it becomes an index.
inline IntTable MaterialFunctions(const Run& run) {
    return IntTableSection(run.A, run.control.at.LMAT[1], run.control.header.NMATT, 3);
}

/// Proportionality coefficients (material, direction).
inline RealTable MaterialMultipliers(const Run& run) {
    return RealTableSection(run.A, run.control.at.LMAT[2], run.control.header.NMATT, 3);
}

inline RealArray MaterialDensities(const Run& run) {
    return RealSection(run.A, run.control.at.LMAT[3], run.control.header.NMATT);
}
inline RealArray MaterialMaxima(const Run& run) {
    return RealSection(run.A, run.control.at.LMAT[4], run.control.header.NMATT);
}
inline RealArray MaterialMinima(const Run& run) {
    return RealSection(run.A, run.control.at.LMAT[5], run.control.header.NMATT);
}

/// Points of each K function, and the functions for CurveLookup.
inline IntArray ConductionPoints(const Run& run) {
    return IntSection(run.A, run.control.at.LMAT[6], ConductionDimension(run));
}
inline RealTable ConductionPairs(const Run& run) {
    return RealTableSection(run.A, run.control.at.LMAT[7], 2 * Word{ConductionDimension(run)},
                            run.control.counts.MAXTK);
}

/// True when C curves have room at all and a material may have one; look before SpecificHeatPairs is used.
inline bool HasSpecificHeatTable(const Run& run) {
    return run.control.header.NDS == 0 && run.control.header.NSTAC > 0 && run.control.counts.MAXTC > 0;
}

/// Points of each C curve, and the curves for CurveLookup; empty when NSTAC is not positive.
inline IntArray SpecificHeatPoints(const Run& run) {
    const HeaderFields& header = run.control.header;
    return IntSection(run.A, run.control.at.LMAT[8], header.NSTAC > 0 ? header.NMATT : 0);
}
inline RealTable SpecificHeatPairs(const Run& run) {
    const HeaderFields& header = run.control.header;
    return RealTableSection(run.A, run.control.at.LMAT[9], 2 * Word{header.NMATT},
                            header.NSTAC > 0 ? run.control.counts.MAXTC : 0);
}

/// Points of each diffusion curve, and the curves for DiffusionLookup.
inline IntArray DiffusionPoints(const Run& run) {
    return IntSection(run.A, run.control.at.LNPMAT, run.control.header.NMATT);
}
inline RealTable DiffusionTable(const Run& run) {
    return RealTableSection(run.A, run.control.at.LDCT, run.control.header.NMATT,
                            2 * Word{run.control.counts.MAXPMAT});
}

} // namespace zurt
