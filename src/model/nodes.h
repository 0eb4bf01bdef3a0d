// Node cards: coordinates, constraint indicators, generation of nodes between cards, and the numbering of equations.
//
// Called once a problem by the driver, after TakeNodeArrays. Coordinates are in the units of the deck.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

/// One node card.
struct NodeCard {
    std::int32_t N = 0;   // node number
    std::int32_t IND = 0; // constraint indicator
    double X = 0.0, Y = 0.0, Z = 0.0;
    double VALUE = 0.0; // value of a node without an equation
    std::int32_t K = 0; // generation step
};

extern const CardLayout kNodeCard;

/// Reads the node cards until they cover NP nodes, fills the nodes between them by generation, and numbers the
/// equations in the order of the nodes. Sets the coordinate columns, EquationNumbers, NodeCardValues, JEDN, NZADP4 and
/// NZADC (0); takes the list of shared nodes and fills it. A node number outside 1..NP and the end of the deck ahead of
/// the last node are deck errors.
void ReadNodalData(Run& run);

} // namespace zurt
