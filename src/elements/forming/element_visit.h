// What one visit of an isoparametric group holds, and the steps that forming and results share: nodes, material, Gauss
// points.
#pragma once

#include "elements/forming/coefficients.h"
#include "geometry/element_points.h"
#include "geometry/gather.h"
#include "geometry/jacobian.h"
#include "run/run.h"

namespace zurt {

/// What the points of the element in hand know of fibres; point p from 1.
struct FibreRecordsInHand {
    ArrayView<const GaussFibreRecord> records{};
    ConstRealArray shares{}; // what of each point is fluid, in an element that a wall cuts; else empty
};

template <int Dimension> struct ElementVisit {
    Run& run;
    ElementGroup& group;
    ConstIntTable NEL{};
    ConstIntArray materials{}; // empty when all elements have the group's
    NodalViews nodes{};
    const FibreGroup* fibres = nullptr; // of the group, when fibres lie under it
    bool skipsElements = false;         // those that fibres fill take no part
    bool integrates =
        true; // over elements, those that a wall cuts by a rule of their own; else points as such
    FibreRecordsInHand atPoints{};
    CoefficientTables tables{};
    std::int32_t NGAUS[Dimension] = {};
    ElementPoints<Dimension> points{};              // of the visit's rule
    ElementPoints<Dimension> cutPoints{};           // of the rule for elements that a wall cuts
    const ElementPoints<Dimension>* rule = nullptr; // the one of these two that serves the element in hand
    MaterialInHand material{};
    Coefficients coefficients{};
    std::int32_t number = 0; // of the element in hand
    ElementNodes<Dimension> element{};
};

/// Views, tables and orders (1..5 each) for a visit of `group`; `element` and `points` are filled element by element.
template <int Dimension> void BeginElementVisit(ElementVisit<Dimension>& visit, const std::int32_t* orders);

/// Under ITOR 3 the listing gets a line for each element that is formed.
void AnnounceElement(Run& run, std::int32_t n);

/// Makes the tables of the visit's rules for elements with these nodes.
template <int Dimension> void SetVisitPoints(ElementVisit<Dimension>& visit, const ActiveNodes& active);

/// Takes element n in hand: nodal data, material, and the shape table when its nodes differ from the element's before.
template <int Dimension> void TakeElement(ElementVisit<Dimension>& visit, std::int32_t n);

/// Ends the run: the Jacobian `DET` at point `at` of the element in hand is not positive.
template <int Dimension>
[[noreturn]] void StopOnElementJacobian(const ElementVisit<Dimension>& visit,
                                        const ElementPoint<Dimension>& at, double DET);

/// False for an element that lies in fibres as a whole: it is passed over.
template <int Dimension> inline bool TakesPart(const ElementVisit<Dimension>& visit, std::int32_t n) {
    return !visit.skipsElements || ElementMarked(*visit.fibres, n);
}

/// Puts the factors of fibres at point p (from 1) and concentration TG on the coefficients in hand.
template <int Dimension> void MultiplyByFibreFactors(ElementVisit<Dimension>& visit, int p, double TG);

/// The same where fibres lie under the group.
template <int Dimension> inline void PassThroughFibres(ElementVisit<Dimension>& visit, int p, double TG) {
    if (Dimension > 1 && visit.fibres != nullptr)
        MultiplyByFibreFactors(visit, p, TG);
}

/// Coefficients of the element in hand at point p (from 1) and concentration TG. Stops the run when there are none.
template <int Dimension> inline void EvaluatePoint(ElementVisit<Dimension>& visit, int p, double TG) {
    CoefficientFailure failure;
    if (!EvaluateCoefficients(visit.tables, visit.material, TG, visit.group.held, visit.coefficients,
                              failure))
        StopOnCoefficients(visit.run, failure);
    PassThroughFibres(visit, p, TG);
}

} // namespace zurt
