// Fibres, their correction tables, and what is known of a mesh that is laid over them: plain records.
//
// All lengths are in the mesh's unit, which is a thousand nanometres; a deck gives the distances of correction tables
// in nanometres. Fibres are not meshed. The records are filled by ReadFibreData (microscale/fibre_data.h) and by the
// fibre step (microscale/fibre_step.h), read by the factors at Gauss points (microscale/gauss_factors.h), and live on
// the heap to the end of the problem.
#pragma once

#include "core/array_view.h"

#include <cstdint>
#include <vector>

namespace zurt {

/// Factor on the diffusion coefficient near a wall, by distance (rows) and concentration (columns).
struct CorrectionTable {
    std::int32_t NDIST = 0;       // rows; 0: there is no table
    std::int32_t NCONC = 0;       // columns
    bool rising = false;          // distances and concentrations rise: lookups may count instead of search
    std::vector<double> distance; // 1..NDIST, from the wall, in the mesh's unit
    std::vector<double> concentration; // 1..NCONC, molar
    std::vector<double> factor;        // NDIST x NCONC, column by column
};

inline RealArray Distances(CorrectionTable& table) {
    return {table.distance.data(), table.NDIST};
}
inline RealArray Concentrations(CorrectionTable& table) {
    return {table.concentration.data(), table.NCONC};
}
inline RealTable Factors(CorrectionTable& table) {
    return {table.factor.data(), table.NDIST, table.NCONC};
}
inline ConstRealArray Distances(const CorrectionTable& table) {
    return {table.distance.data(), table.NDIST};
}
inline ConstRealArray Concentrations(const CorrectionTable& table) {
    return {table.concentration.data(), table.NCONC};
}
inline ConstRealTable Factors(const CorrectionTable& table) {
    return {table.factor.data(), table.NDIST, table.NCONC};
}

/// A straight line between its first two points, or a sphere around its first point.
struct Fibre {
    std::int32_t NFIBID = 0;
    std::int32_t NPOINTS = 0;   // at least 2 for a line, 1 for a sphere
    double DIAMFIB = 0.0;       // echoed; distances use the set's DIAM
    std::vector<double> points; // 3 x NPOINTS in card order; the clipped ones once the fibre step has begun
};

constexpr std::int32_t kLineFibres = 0;
constexpr std::int32_t kSphereFibres = 1;

struct FibreSet {
    std::int32_t NSETID = 0;
    std::int32_t NUMFIB = 0; // at least 1
    std::int32_t IANISY = 0; // 1: tableY was read
    std::int32_t NTYPE = 0;  // kLineFibres or kSphereFibres
    double DIAM = 0.0;       // diameter of all fibres of the set, above 0
    double DLENGTH = 0.0;    // echoed only
    double WALLCUT = 0.0;    // wall distances above it stay out of HEQ0
    double low[3] = {};      // search box; a point outside it (grown by DIAM/2) does not see the set
    double high[3] = {};
    double totalLength = 0.0; // of its lines, clipped
    std::vector<Fibre> fibres;
    CorrectionTable table;  // along the fibres and around them
    CorrectionTable tableY; // from the fibre to the point; empty unless IANISY is 1
    double volume = 0.0;
    double meanDistance = 0.0; // mean wall distance over nodes
};

/// What a Gauss point knows of the nearest fibre. Of the local axes (along the fibre, around it, from the fibre to the
/// point) the factors need the squared components of the third one as a unit vector: the first two share one factor.
struct GaussFibreRecord {
    double towards[3]; // squares of the components of the unit vector from the fibre to the point
    double wall;       // distance to the fibre's wall; kInFibre marks a point in a fibre
    std::int32_t set;  // of the nearest fibre, from 1; 0: no set's box holds the point, the factors are 1
    std::int32_t none; // padding
};

constexpr double kInFibre = -1.0;

/// One element group under the fibres.
struct FibreGroup {
    std::vector<std::int32_t> elementMark; // 1..NET at 0..NET-1: 1 when some Gauss point lies in fluid
    Word points = 0;                       // Gauss points of an element
    std::vector<GaussFibreRecord> records; // of element n, point p (both from 1) at (n-1)*points + p-1
    std::vector<GaussFibreRecord>
        fluxRecords; // the same at the points of the fluxes, where their rule is another one

    // Elements that a wall cuts, with sub-cells alone (microscale/wall_cells.h).
    std::vector<std::int32_t> cutNumber; // 1..NET at 0..NET-1: number k of the cut element, 0 for another
    Word cutPoints = 0;                  // points of the rule for cut elements
    std::vector<GaussFibreRecord> cutRecords; // of cut element k, point p at (k-1)*cutPoints + p-1
    std::vector<double> cutShares;            // likewise: what of the point is fluid
};

struct FibreModel {
    std::vector<FibreSet> sets;     // 1..NSETS at 0..NSETS-1
    std::vector<FibreGroup> groups; // at 1..NGET; empty for families without Gauss points in fibres
    int dimension = 0;              // 2 or 3, of the first plane or space group
    double VOLFLUID = 0.0;          // volume of the Gauss points in fluid
    double totalVolume = 0.0;       // volume of all Gauss points
    double fibreVolume = 0.0;       // sum over the sets
    double POROSITY = 1.0;          // of the domain; 1 without fibres
    double HEQ = 0.0;        // mean wall distance over the sets, with which an equivalent medium starts
    bool keptLayout = false; // the layout in force is that of the elements outside fibres alone
};

inline bool ElementMarked(const FibreGroup& group, Word element) {
    return ConstIntArray(group.elementMark.data(), static_cast<Word>(group.elementMark.size()))(element) != 0;
}

/// End of the problem: gives the heap back.
inline void FreeFibreModel(FibreModel& model) {
    model = FibreModel{};
}

} // namespace zurt
