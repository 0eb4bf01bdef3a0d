// Start values of the unknowns: one value for all nodes, or values by lists and ranges of nodes.
//
// Called once a problem by the driver, after TakeSolutionVectors, when the problem is transient or iterates.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

constexpr int kNodesPerListCard = 14;

struct InitialValueCard {
    double VALUE = 0.0;
    std::int32_t K1 = 0; // not 0: lists of single nodes follow
    std::int32_t K2 = 0; // not 0: ranges follow
};

struct InitialNodeListCard {
    std::int32_t NODE[kNodesPerListCard] = {};
};

struct InitialRangeCard {
    std::int32_t N1 = 0;
    std::int32_t KOR = 0;
    std::int32_t N2 = 0;
};

extern const CardLayout kInitialValueCard; // NPOC below 2: the value alone
extern const CardLayout kInitialGroupCard; // NPOC 2 and above
extern const CardLayout kInitialNodeListCard;
extern const CardLayout kInitialRangeCard;

/// Sets the entries of StepSolution. With NPOC below 2 the one value also becomes OutletStart (CINITAL). With NPOC 2
/// and above the cards are taken by columns unless all are free (ReadImageFields). A node without an equation keeps the
/// value of its node card; a start value given for it must agree within 1e-10, otherwise the run stops. So it does when a
/// range does not meet its last node. Node numbers outside 1..NP are deck errors. byNode, 1..NP or empty, takes the value
/// of every node, with or without an equation.
void ReadInitialConditions(Run& run, RealArray byNode);

} // namespace zurt
