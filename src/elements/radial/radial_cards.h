// Cards of the radial fibre family: each element is a fibre, solved along its radius.
//
// Lengths are in the mesh's unit, concentrations in the deck's. The group card is taken by columns unless all cards
// are free (ReadImageFields), so such decks are mostly fixed format decks. Called through ReadElementGroup.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

constexpr std::int32_t kNodesPerRadialCard = 12;

struct RadialElementCard {
    std::int32_t NN = 0;
    double D = 0.0;
    double LENGTH = 0.0;
    double RADIUS = 0.0;
    std::int32_t COUNT = 0; // ISUB4 1: nodes along the radius; else sub-elements
    std::int32_t ContinuumNode = 0;
    double CENTRE[3] = {};
    double PARTITION = 0.0;
};

struct RadialNodeCard {
    std::int32_t NODE[kNodesPerRadialCard] = {};
};

extern const CardLayout kRadialGroupCard;
extern const CardLayout kRadialElementCard;
extern const CardLayout kRadialNodeCard;

/// Reads a radial group: group card, data block in `A`, element cards with echo. Fibres with ISUB4 1 write their inner
/// nodes to the graphics file; others add their elements to the layout of the linear system. Ends the run when
/// NSUBEL4MX is above kMaxSubElements, when an element number is above NET, and when the block does not fit into `A`;
/// numbers that are used as indices and lie outside their arrays are deck errors.
void ReadGroupRadial(Run& run, ElementGroup& group);

} // namespace zurt
