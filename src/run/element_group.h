// One element group: its row of NETV, its family's group card and where its data block lies in `A`; and what visits of
// the groups leave to later ones.
#pragma once

#include "core/array_view.h"

#include <cstdint>
#include <vector>

namespace zurt {

/// Most groups of a problem.
constexpr int kMaxGroups = 10;

/// Most sub-elements of one radial element.
constexpr std::int32_t kMaxSubElements = 10;

/// What a group of radial fibre elements has of its own. Lengths are in the mesh's unit, concentrations in the deck's.
struct RadialGroup {
    // Radial group card, defaults applied.
    std::int32_t NSUBEL4MX = 0; // most sub-elements of an element, 1 to kMaxSubElements
    std::int32_t NP4DMX = 0;    // 2; more reserves room and nothing else
    double CFIBER0 = 0.0;       // initial concentration in the fibres
    std::int32_t IPARTIT = 0;   // positive: partition values, 1: read from the cards

    std::int32_t ND = 2;              // nodes of a sub-element in the reserved room: 2 or 3
    std::int32_t NODEL4MX = 0;        // rows of the tables of nodes and values
    std::int32_t CommonNodeCount = 1; // continuum nodes that share a fibre's flux: 1, 4 or 8
    Word subElements = 0;             // of all cards; under ISUB4 1 also the inner nodes

    // Data block in `A`; an absent array starts where the next one does.
    Word LFLUX = 0;             // NET, ISUB4 1: FibreFlux, of the iteration in work
    Word LNODES = 0;            // NODEL4MX x NET, else: RadialNodes
    Word LCOUNT = 0;            // NET: RadialCount, sub-elements
    Word LD = 0;                // NET: RadialD
    Word LLENGTH = 0;           // NET: RadialLength
    Word LRADIUS = 0;           // NET: RadialRadius
    Word LVALUE = 0;            // NODEL4MX x NET, ISUB4 1: FibreValue, from the axis outward
    Word LVALUE0 = 0;           // the same at the start of the step: FibreValue0
    Word LCONTINUUM = 0;        // NET, ISUB4 1: ContinuumNode
    Word LCOMMON = 0;           // NET x CommonNodeCount, ISUB4 1 with IND4N 1 or 2: CommonNodes
    Word LPARTITION = 0;        // NET, IPARTIT positive: PartitionValue
    bool substructured = false; // ISUB4 is 1: the inner nodes exist in the elements alone

    std::vector<double> centres; // 3 x NET under ISUB4 1: where results show the fibres
};

/// Surface block in `A`, read behind the function tables; of use only while the problem has any of them.
struct SurfaceBlock {
    Word LNSURF = 0;          // NET: number of the element's surface record, 0 none
    Word LISURF = 0;          // records of five integers a side
    std::int32_t records = 0; // in use
};

/// What the cards gave; constant once the group has been read.
struct ElementGroup {
    std::int32_t NGE = 0; // number of the group, from 1
    Word cardLine = 0;    // of the deck, with the group card

    // Group card; NETIP to ISUB4 are the row of NETV.
    std::int32_t NETIP = 0; // 1, 2, 3: dimension of the isoparametric family; else the radial family
    std::int32_t NET = 0;   // elements
    std::int32_t INDAX = 0;
    std::int32_t IZIP = 0; // 1: sources by time, 2: by concentration
    std::int32_t ISUB4 = 0;
    std::int32_t IND4N = 0;

    // The family's group card, defaults applied (NMAT1D, NMAT2D, NMAT3D and so on).
    std::int32_t NMAT = 0;      // number of materials of the family
    std::int32_t MAT = 0;       // one material number
    std::int32_t MATDD = 0;     // group material under NDS
    std::int32_t NPDMX = 0;     // largest node count of an element
    std::int32_t IPRDC = 0;     // Gauss coordinate print flag
    std::int32_t IPRTG = 0;     // Gauss value print flag
    std::int32_t NGAUS[3] = {}; // Gauss orders by direction
    std::int32_t NTHIC = 0;     // 2D: 0 one thickness, else by element
    double THIC = 0.0;          // 2D: thickness; 1D: the area before any card has given one

    std::int32_t NDMAX = 0; // columns of the connectivity

    // Data block in `A`. An absent array starts where the next one does.
    Word LNEL = 0;  // NDMAX*NET: connectivity, (element, column), element index fastest
    Word LMATE = 0; // NET: material numbers
    Word LISRC = 0; // NET: source curve numbers
    Word LIPT = 0;  // NET: Gauss value print flags
    Word LIPC = 0;  // NET: Gauss coordinate print flags
    Word LTHIC = 0; // NET: thickness (2D), area (1D)
    bool hasMaterials = false, hasSources = false, hasValueFlags = false, hasCoordinateFlags = false;
    bool hasThickness = false;

    SurfaceBlock surfaces;
    RadialGroup radial; // of use in groups of that family alone
};

/// A lookup at the exact end of a curve gives no value: the variable keeps what the group's lookup before gave it.
struct HeldCurveValues {
    double K[3] = {};  // conductivity curves of the three directions
    double CP = 0.0;   // capacity curve
    double QV = 0.0;   // volume source
    double rate = 0.0; // the source function of a mean rate, at the end of the step
    double QS = 0.0;   // surface flux
    double TE = 0.0;   // environment
    double HC = 0.0;   // convection coefficient
    double EM = 0.0;   // emissivity
    double FR = 0.0;   // radiation coefficient of the surface point before
};

/// What the visits of the groups 1..NGET leave to those that follow.
struct GroupVisits {
    HeldCurveValues held[kMaxGroups + 1];
    bool checked[kMaxGroups + 1] = {}; // numbers that could not be checked at reading have been checked since
};

/// Packed upper triangle of an element matrix.
inline Word PackedLength(std::int32_t NDMAX) {
    return Word{NDMAX} * (NDMAX + 1) / 2;
}

} // namespace zurt
