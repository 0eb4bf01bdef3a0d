// Stresses and moments of torsion in whole runs; the moment of a square shaft converges in tests/decks/classical_test.cpp.
#include "geometry/gauss_rules.h"
#include "support/plane_deck.h"
#include "support/run_deck.h"
#include "support/small_decks.h"

#include <utility>

namespace zurt_test {
namespace {

// One element of nine nodes over (-1, 1) x (-1, 1) holds c (1 - x x) (1 - y y) exactly; a source f makes c = 5 f / 16.
// Faults: stresses swapped or of the wrong sign, points in another order, a moment without its 2 or its Jacobian.
TEST(Torsion, StressesAndMomentOfOneElement) {
    const RunResult run = RunWell(SmallDeckText("torsion"));
    const double c = 5.0 * 2.0 / 16.0;
    const auto rows = RowsBelow(run.listing, "   NGX  NGY       TAUZY", 1);
    ASSERT_EQ(rows.size(), 9U);
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) {
            const std::vector<double>& row = rows[static_cast<std::size_t>(3 * i + j - 4)];
            const double x = zurt::XG(3, i), y = zurt::XG(3, j); // the element is the reference element
            const double expected[] = {
                1.0 * i, 1.0 * j, 2.0 * c * x * (1.0 - y * y), -2.0 * c * y * (1.0 - x * x), x, y};
            for (std::size_t k = 0; k < 6; ++k)
                EXPECT_NEAR(row.at(k), expected[k], k < 4 ? 5e-4 : 5.1e-3);
        }
    for (const char* label : {"TORZE =", "TORZM ="})
        EXPECT_NEAR(NumbersBehind(run.listing, label).at(0), 2.0 * c * 16.0 / 9.0, 5e-5);
}

// Faults: flags of other elements, moments that don't add up, a line without sources that is followed by others.
TEST(Torsion, MomentOfTheElementsWithAFlag) {
    PlaneDeck deck = Rectangle(4, 4, -1.0, 1.0, -1.0, 1.0);
    deck.ITOR = 1;
    deck.groups[0].IZIP = 1;
    deck.groups[0].IPTG = 2;
    for (PlaneNode& node : deck.nodes)
        node.held = std::fabs(node.x) == 1.0 || std::fabs(node.y) == 1.0;
    deck.conductivity = {{-9.0, 1.0}, {9.0, 1.0}};
    deck.source = {{0.0, 2.0}};
    std::string text = Build(deck);
    const std::pair<std::string, const char*> cards[] = {
        {"\n7 14 13 8 9 0 1 0 0 0 ", "5"}, // carried on until a card takes it back
        {"\n8 15 14 9 10 0 1 0 0 0 ", "-1"},
        {"\n16 25 24 19 20 0 1 0 0 0 ", "1"}};
    for (const auto& [card, flag] : cards) {
        text = Replaced(text, card + text.at(text.find(card) + card.size()), card + flag);
    }
    const std::string listing = RunDeck(text).listing;
    const std::vector<double> moments = NumbersBehind(listing, "TORZE =");
    ASSERT_GE(moments.size(), 2U);
    EXPECT_NEAR(NumbersBehind(listing, "TORZM =").at(0), moments[0] + moments[1], 1e-5);
    EXPECT_GT(moments[0], 2.0 * moments[1]) << "an element at the middle, another at a corner";
    EXPECT_TRUE(Contains(listing, " SHARE STRESS AT GAUSS POINTS OF ELEMENT   16\n"));

    deck.source.clear();
    deck.groups[0].IZIP = 0;
    const std::string none = RunDeck(Build(deck)).listing;
    EXPECT_TRUE(Contains(none, "  THERE IS NOT TORSION, NQE=0\n"));
    EXPECT_FALSE(Contains(none, "TORZ"));
}

} // namespace
} // namespace zurt_test
