// Groups of all isoparametric families in one model.
#include "support/plane_deck.h"
#include "support/run_deck.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace zurt_test;

// A bar of bricks along x, quadrilaterals on its face z = 0 and lines along two of its edges, all on the same nodes. A
// uniform source over conductivity 1 gives -u'' = f in each of them, so that all together keep the parabola of one, which
// linear elements meet at their nodes. Faults: heights or equations of one family lost beside another, a group formed by
// the wrong family or from the connectivity of another, labels of the graphics file that begin anew.
TEST(MixedFamilies, BarOfBricksPlanesAndLines) {
    constexpr int kElements = 4;
    PlaneDeck deck;
    PlaneGroup bricks, planes, lines;
    bricks.family = 3;
    planes.family = 2;
    lines.family = 1;
    for (int section = 0; section <= kElements; ++section)
        for (int corner = 0; corner < 4; ++corner)
            deck.nodes.push_back({1.0 * section, corner == 1 || corner == 2 ? 1.0 : 0.0,
                                  corner > 1 ? 1.0 : 0.0, section == 0 || section == kElements});
    for (int e = 0; e < kElements; ++e) {
        const int n = 4 * e;
        bricks.elements.push_back({{n + 7, n + 3, n + 4, n + 8, n + 6, n + 2, n + 1, n + 5}, 1});
        planes.elements.push_back({{n + 6, n + 2, n + 1, n + 5}, 1});
        lines.elements.push_back({{n + 3, n + 7}, 1, 0.25});
        lines.elements.push_back({{n + 4, n + 8}, 1, 8.0});
    }
    for (PlaneGroup* group : {&lines, &bricks, &planes}) {
        group->IZIP = 1;
        deck.groups.push_back(*group);
    }
    deck.conductivity = {{0.0, 1.0}};
    deck.source = {{0.0, 2.0}};
    for (const int solver : {0, 2}) {
        deck.solver = solver;
        const RunResult run = RunDeck(Build(deck));
        ASSERT_EQ(run.status, 0) << run.errors;
        const std::vector<double> values = LastConcentrations(run.listing);
        ASSERT_EQ(values.size(), deck.nodes.size());
        for (std::size_t n = 0; n < values.size(); ++n) {
            const double x = deck.nodes[n].x;
            EXPECT_NEAR(values[n], x * (kElements - x), 1e-4);
        }
        for (const char* element : {"\n         8        21        21", "\n         9       115       115",
                                    "\n        12       115       115", "\n        13        44        44"})
            EXPECT_EQ(CountOf(run.graphics, element), 1) << element;
    }
}

} // namespace
