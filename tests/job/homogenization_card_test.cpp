#include "homogenization/homogenization_card.h"

#include "support/small_run.h"

#include <gtest/gtest.h>

#include <string>

namespace zurt {
namespace {

using zurt_test::SmallRun;
using zurt_test::Written;

struct Normalised {
    const char* card;
    std::int32_t IEHM, NFIT, INDDEG, IHEQ, IDCC, NACTDIR;
    bool curveEnds; // the second card is read
};

// Faults: the normalisation in another order (the second card wanted after IDCC has been cleared, active directions
// counted after NFIT has been cleared), INDDEG not brought into 1 to 3, flags kept in a run without a fit.
TEST(HomogenizationCard, Normalisation) {
    //  NSETS IEHM NFIT NFSTEP NFITMAX FITERR INDFITX Y Z INDDEG IHEQ IDCC IDIAM IDCSF
    const Normalised cases[] = {
        {"1 1 1 5 6 .01 1 0 1 2 1 1 1 0", 1, 1, 2, 1, 1, 2, false},
        {"1 1 1 5 6 .01 1 0 1 0 1 0 1 0", 1, 1, 1, 1, 0, 2, true},
        {"1 1 1 5 6 .01 1 2 0 9 1 0 1 1", 1, 1, 3, 0, 1, 1, false}, // only flags equal to 1 are counted
        {"0 1 1 5 6 .01 1 1 1 -4 1 1 1 0", 0, 0, 1, 0, 0, 3, false},
        {"0 1 1 5 6 .01 1 1 1 3 1 1 1 1", 0, 0, 3, 0, 0, 3, false},
        {"2 0 1 5 6 .01 1 0 0 2 1 1 1 0", 0, 0, 2, 0, 0, 1, false},
        {"2 1 0 5 6 .01 1 1 1 2 1 1 1 0", 1, 0, 2, 0, 0, 0, false},
        {"2 1 0 5 6 .01 1 1 1 2 1 0 1 0", 1, 0, 2, 0, 0, 0, true},
    };
    for (const Normalised& test : cases) {
        SmallRun run(std::string(test.card) + "\n1.5 2.5\nnext\n");
        run.control.header.INDFOR = 1;
        ReadHomogenizationCard(run);
        const HomogenizationCard& card = run.fit.card;
        EXPECT_EQ(card.IEHM, test.IEHM) << test.card;
        EXPECT_EQ(card.NFIT, test.NFIT) << test.card;
        EXPECT_EQ(card.INDDEG, test.INDDEG) << test.card;
        EXPECT_EQ(card.IHEQ, test.IHEQ) << test.card;
        EXPECT_EQ(card.IDCC, test.IDCC) << test.card;
        EXPECT_EQ(run.fit.NACTDIR, test.NACTDIR) << test.card;
        EXPECT_EQ(card.D2D, test.curveEnds ? 2.5 : 0.0) << test.card;
        EXPECT_EQ(run.deck.nextLine, test.curveEnds ? 2 : 1) << test.card;
        EXPECT_EQ(card.NFSTEP, 5);
        EXPECT_EQ(card.NFITMAX, 6);
        EXPECT_EQ(card.FITERR, 0.01);
        EXPECT_EQ(Written(run.units.listing), ""); // NULAZ does not ask for the echo
    }
}

} // namespace
} // namespace zurt
