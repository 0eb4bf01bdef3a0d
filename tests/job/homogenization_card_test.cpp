#include "homogenization/homogenization_card.h"

#include "homogenization/mass_files.h"
#include "support/small_run.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace zurt {
namespace {

using zurt_test::Lines;
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
        SmallRun small(std::string(test.card) + "\n1.5 2.5\nnext\n");
        zurt::Run& run = small.run;
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
        EXPECT_EQ(small.run.deck.nextLine, test.curveEnds ? 2 : 1) << test.card;
        EXPECT_EQ(card.NFSTEP, 5);
        EXPECT_EQ(card.NFITMAX, 6);
        EXPECT_EQ(card.FITERR, 0.01);
        EXPECT_EQ(Written(run.units.listing), ""); // NULAZ does not ask for the echo
    }
}

// Faults: the fixed card's columns miscounted behind the one real field; the echo brought into line with its labels, or
// a value behind the last label.
TEST(HomogenizationCard, FixedColumnsAndTheShiftedEcho) {
    SmallRun small("   11    1    1   14   15    0.0016   17   18   19    2   21    0   23    0   99\n"
                   "          1.D-02         2000000\n");
    zurt::Run& run = small.run;
    run.control.header.INDFOR = 2;
    run.control.header.NULAZ = 3;
    ReadHomogenizationCard(run);
    EXPECT_EQ(run.fit.card.FITERR, 0.0016);
    EXPECT_EQ(run.fit.card.INDFITX, 17);
    EXPECT_EQ(run.fit.card.IDIAM, 23);
    EXPECT_EQ(run.fit.card.IDCSF, 0);
    EXPECT_EQ(run.fit.card.D1D, 0.01);
    EXPECT_EQ(run.fit.card.D2D, 2.0); // six implied decimals
    const std::vector<std::string> lines = Lines(Written(run.units.listing));
    const char* const echo[] = {"NUMBER OF FIBRE SETS ....................... NSETS   =   11",
                                "INDICATOR FOR EQUIVALENT HOMOGENOUS MEDIUM . IEHM    =    1",
                                "INDICATOR FOR HOMOGENIZATION................ NFIT    =    1",
                                "NUMBER OF TIMESTEPS FOR HOMOGENIZATION...... NFSTEP  =   15",
                                "MAX NUMBER OF ITERATIONS FOR HOMOGENIZATION. NFITMAX =   14",
                                "MASS ERROR FOR HOMOGENIZATION............... FITERR  = 0.000E+00",
                                "INDICATOR FOR HOMOGENIZATION IN X DIRECTION. INDFITX =   18",
                                "INDICATOR FOR HOMOGENIZATION IN Y DIRECTION. INDFITY =   19",
                                "INDICATOR FOR HOMOGENIZATION IN Z DIRECTION. INDFITZ =    2",
                                "MAIN DIFFUSION DIRECTION.................... INDDEG  =   21",
                                "INDICATOR FOR HOMOGENIZATION OF HEQ......... IHEQ    =    0",
                                "INDICATOR FOR HOMOGENIZATION OF D-C CURVE... IDCC    =   23",
                                "INDICATOR FOR INCLUDING MOL. DIAMETER IN SF. IDIAM   ="};
    ASSERT_GE(lines.size(), std::size(echo));
    for (std::size_t i = 0; i < std::size(echo); ++i)
        EXPECT_EQ(lines[lines.size() - std::size(echo) + i], "           " + std::string(echo[i]));
}

// Faults: another head or other fields in the file of a plain run; the file left open, so that the next problem's head
// would stand behind it.
TEST(MassFile, PlainRunWritesTheHeadAlone) {
    SmallRun small;
    const std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::current_path(small.folder);
    small.run.control.state.NDT = 9;
    WritePlainMassFile(small.run);
    small.run.control.state.NDT = 12;
    WritePlainMassFile(small.run);
    std::filesystem::current_path(here);
    EXPECT_FALSE(IsOpen(small.run.units.massX));
    EXPECT_EQ(zurt_test::ReadFile(small.folder + "/MASS-X.LST"),
              " NUMBER OF TIME STEPS, POROSITY\n        12   0.10000D+01\n"
              " VALUES OF DIFFUSION COEFFICIENTS\n"
              "          C            Dbulk(C)         Deqv(C)\n");
}

} // namespace
} // namespace zurt
