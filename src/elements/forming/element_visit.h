// What one visit of an isoparametric group holds, and the steps that forming and results share: a walk over the
// elements, and what is looked up on it: materials, coefficients, records of fibres.
#pragma once

#include "elements/forming/coefficients.h"
#include "geometry/element_walk.h"

namespace zurt {

/// What the points of the element in hand know of fibres; point p from 1.
struct FibreRecordsInHand {
    ArrayView<const GaussFibreRecord> records{};
    ConstRealArray shares{}; // what of each point is fluid, in an element that a wall cuts; else empty
};

/// What visits of an earlier problem left under this number is dropped: when the group has been read.
void ForgetVisits(Run& run, std::int32_t NGE);

/// Checks the group's cards (elements/cards/group_checks.h) at the first visit of a problem.
void CheckGroupOnce(Run& run, const ElementGroup& group);

template <int Family> struct ElementVisit {
    Run& run;
    const ElementGroup& group;
    ElementWalk<Family> walk{run, group};
    HeldCurveValues* held =
        &run.visits.held[group.NGE];    // or those of a worker's own (elements/forming/element_chunks.h)
    ConstIntArray materials{};          // empty when all elements have the group's
    const FibreGroup* fibres = nullptr; // of the group, when fibres lie under it
    bool skipsElements = false;         // those that fibres fill take no part
    bool integrates =
        true; // over elements, those that a wall cuts by a rule of their own; else points as such
    FibreRecordsInHand atPoints{};
    CoefficientTables tables{};
    ElementPoints<Family> cutPoints{};           // of the rule for elements that a wall cuts
    const ElementPoints<Family>* rule = nullptr; // this one or the walk's: it serves the element in hand
    MaterialInHand material{};
    Coefficients coefficients{};
};

/// The walk, views and tables for a visit of `group` with the rule of these orders (1..5 each).
template <int Family> void BeginElementVisit(ElementVisit<Family>& visit, const std::int32_t* orders);

/// The same for a further worker's visit of a group that one has begun to visit.
template <int Family> void JoinElementVisit(ElementVisit<Family>& visit, const std::int32_t* orders);

/// Under ITOR 3 the listing gets a line for each element that is formed.
void AnnounceElement(Run& run, std::int32_t n);

/// The lines of the elements from `next` on, which other processes form; the first one alone lists.
template <int Family> void AnnounceOtherElements(const ElementVisit<Family>& visit, Word next);

/// Takes element n in hand: in the walk, with its material and the rule that serves it.
template <int Family> void VisitElement(ElementVisit<Family>& visit, std::int32_t n);

/// False for an element that lies in fibres as a whole: it is passed over.
template <int Family> inline bool TakesPart(const ElementVisit<Family>& visit, std::int32_t n) {
    return !visit.skipsElements || ElementMarked(*visit.fibres, n);
}

/// Puts the factors of fibres at point p (from 1) and concentration TG on the coefficients in hand.
template <int Family> void MultiplyByFibreFactors(ElementVisit<Family>& visit, int p, double TG);

/// The same where fibres lie under the group.
template <int Family> inline void PassThroughFibres(ElementVisit<Family>& visit, int p, double TG) {
    if (kUnderFibres<Family> && visit.fibres != nullptr)
        MultiplyByFibreFactors(visit, p, TG);
}

/// Coefficients of the element in hand at point p (from 1) and concentration TG. Stops the run when there are none.
template <int Family> inline void EvaluateCoefficientsAt(ElementVisit<Family>& visit, int p, double TG) {
    CoefficientFailure failure;
    if (!EvaluateCoefficients(visit.tables, visit.material, TG, *visit.held, visit.coefficients, failure))
        StopOnCoefficients(visit.run, failure, {visit.group.NGE, visit.walk.number, p});
    PassThroughFibres(visit, p, TG);
}

} // namespace zurt
