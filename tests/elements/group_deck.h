// Group cards given as text, read by the reader of a family: for the tests of element groups.
#pragma once

#include "elements/element_dispatch.h"
#include "job/partition.h"
#include "job/run.h"
#include "support/run_deck.h"

#include <gtest/gtest.h>

#include <string>

namespace zurt::testmodel {

// The header data that the group readers look at.
struct GroupProblem {
    int INDFOR = 1, NP = 200, NMATT = 3, NDS = 0, NGET = 1, NULAZ = -1;
    int NETIP = 3, NET = 1, IZIP = 0;
    int SparseMode = 0, ITOR = 0, PotentialFunctionSize = 0;
    Word size = 20000;
};

// A run that stands in front of the cards of group 1, all nodes free.
struct GroupRun {
    Run run;
    ~GroupRun() { DestroyWorkingVector(run.A); }
};

inline void PrepareGroup(Run& run, const GroupProblem& problem, const std::string& cards) {
    const std::string deck = zurt_test::MakeTemporaryFolder() + "/deck";
    zurt_test::WriteFile(deck, cards);
    OpenDeck(run.deck, deck);
    CreateWorkingVector(run.A, problem.size);
    HeaderFields& header = run.control.header;
    header.INDFOR = problem.INDFOR;
    header.NP = problem.NP;
    header.NMATT = problem.NMATT;
    header.NDS = problem.NDS;
    header.NGET = problem.NGET;
    header.NULAZ = problem.NULAZ;
    header.INTEB = 1;
    header.ITOR = problem.ITOR;
    header.PotentialFunctionSize = problem.PotentialFunctionSize;
    run.control.state.SparseMode = problem.SparseMode;
    TakeNodeArrays(run);
    run.control.state.JEDN = problem.NP;
    for (std::int32_t n = 1; n <= problem.NP; ++n)
        EquationNumbers(run)(n) = n;
    TakeDiagonalPositions(run);
    ElementGroup& group = run.groups[1];
    group.NGE = 1;
    group.NETIP = problem.NETIP;
    group.NET = problem.NET;
    group.IZIP = problem.IZIP;
}

inline void ReadGroup(Run& run) {
    DispatchElementPhase(run, run.groups[1], run.groups[1].NETIP, kReadPhase);
}

// The listing of a run that `act` ended with status 0.
template <class Act> std::string ListingOfStop(Act act) {
    const std::string name = zurt_test::MakeTemporaryFolder() + "/listing";
    const auto child = [&] {
        TextUnit listing;
        OpenTextUnit(listing, name);
        act(listing);
    };
    EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
    return zurt_test::ReadFile(name);
}

} // namespace zurt::testmodel
