// What one visit of a 3D group holds, and the steps that forming and results share: nodes, material, Gauss points.
#pragma once

#include "elements/brick_points.h"
#include "elements/coefficients.h"
#include "elements/gather.h"
#include "job/run.h"

namespace zurt {

struct BrickVisit {
    Run& run;
    ElementGroup& group;
    ConstIntTable NEL{};
    ConstIntArray materials{}; // empty when all elements have the group's
    NodalViews nodes{};
    CoefficientTables tables{};
    std::int32_t NGAUS[3] = {};
    BrickPoints points{};
    MaterialInHand material{};
    Coefficients coefficients{};
    std::int32_t number = 0; // of the element in hand
    ElementNodes<3> element{};
};

/// Views, tables and orders for a visit of `group`; `element` and `points` are filled element by element.
void BeginBrickVisit(BrickVisit& visit, const std::int32_t (&NGAUS)[3]);

/// Takes element n in hand: nodal data, material, and the shape table when its nodes differ from the element's before.
/// Under ITOR 3 the listing gets a line for it.
void TakeBrick(BrickVisit& visit, std::int32_t n);

/// Ends the run: the Jacobian `DET` at point `at` of the element in hand is not positive.
[[noreturn]] void StopOnBrickJacobian(const BrickVisit& visit, const BrickPoint& at, double DET);

} // namespace zurt
