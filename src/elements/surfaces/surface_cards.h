// Surface records of the isoparametric families: which sides of which elements carry a flux, convection or radiation,
// and the numbers of their curves.
//
// A side is an end of a line, an edge of a quadrilateral, a face of a brick. Two sides belong to each natural direction,
// the one where it is +1 ahead of the one where it is -1. Cards name a side by its corner nodes, in any order; five
// integers a side are stored. Called once a problem by the driver; the terms are in elements/surfaces/surface_terms.h.
#pragma once

#include "geometry/shape_functions.h"
#include "input/card.h"
#include "run/run.h"

namespace zurt {

constexpr int kSurfaceFields = 5;

/// Words of `A` that the records of one element take.
template <int Family> constexpr Word kSurfaceRecordWords = Word{kSides<Family>} * kSurfaceFields;

/// Places of the five integers of a side.
enum SurfaceField {
    kFluxCurve = 1,        // by time
    kConvectionCurve = 2,  // by concentration
    kEnvironmentCurve = 3, // by time
    kEmissivityCurve = 4,  // by concentration; also the number of the shape factor
    kShapeFactorField = 5  // stored and printed, no term reads it
};

struct SurfaceCard {
    std::int32_t NE = 0; // element, 0 ends the cards of the group
    std::int32_t nodes[kMostSideCorners] = {};
    std::int32_t curves[kSurfaceFields] = {};
};

extern const CardLayout kSurfaceCard1D;
extern const CardLayout kSurfaceCard2D;
extern const CardLayout kSurfaceCard3D;

/// The surface block of a group: record numbers 1..NET, and the records, (field of side, record), where field f of side
/// s stands in row 5*(s - 1) + f.
inline IntArray SurfaceRecordNumbers(const Run& run, const ElementGroup& group) {
    return IntSection(run.A, group.surfaces.LNSURF, group.NET);
}
template <int Family> IntTable SurfaceRecords(const Run& run, const ElementGroup& group) {
    return IntTableSection(run.A, group.surfaces.LISURF, kSurfaceRecordWords<Family>, group.NET);
}

/// Takes the surface block of every group and reads its cards up to the one with element 0, with echo: NETIP 1 by the
/// cards of the line, 2 by those of the quadrilateral, any other by those of the brick. Corners that are no side of
/// their element stop the run; element and curve numbers outside their tables are deck errors. Groups whose records
/// have no effect get a note.
void ReadSurfaceData(Run& run);

} // namespace zurt
