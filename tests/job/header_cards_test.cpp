// The cards ahead of the model, and the homogenization card: defaults, normalisation, what they leave for later steps.
#include "core/format.h"
#include "elements/cards/group_cards.h"
#include "homogenization/homogenization_card.h"
#include "job/header_cards.h"
#include "support/small_run.h"

namespace zurt {
namespace {

using namespace zurt_test;
using Integers = std::vector<std::int32_t>;

// Faults: INDFOR 0 or an odd value changed otherwise, any nonzero SolverSelector taken for the sparse solver, the
// sparse mode or IPASSPRINT of the problem before kept.
TEST(HeaderCards, FormatCardIsAlwaysFree) {
    SmallRun small("0, 3 2 2\n3 -1 0 1\n/\n");
    HeaderFields& header = small.control.header;
    header.INDFOR = 2;
    const auto fields = [&] {
        header.IPASSPRINT = 9;
        ReadFormatCard(small);
        return Integers{header.INDFOR, header.NDS, header.NANOCH, small.sizes.SparseMode, header.IPASSPRINT};
    };
    EXPECT_EQ(fields(), (Integers{1, 3, 2, 1, 1}));
    EXPECT_EQ(fields(), (Integers{3, -1, 0, 0, 1}));
    EXPECT_EQ(fields(), (Integers{1, -1, 0, 0, 1}));
}

// Faults: EPSTR given its default although EPSTA stands on the card, or not given it for values of no size; the single
// precision of the default lost; two implied decimals forgotten or given to a number with an exponent.
TEST(HeaderCards, AccuracyDefaults) {
    const double standard = static_cast<double>(1e-3f);
    const struct {
        const char *textEPSTA, *textEPSTR; // F10.2 each
        double EPSTA, EPSTR;
    } cases[] = {
        {"", "", 0.0, standard},
        {"1.E-5", "", 1e-5, 0.0},
        {"-1.E-5", "", -1e-5, 0.0},
        {"1.E-11", "1.E-11", 1e-11, standard},
        {"-9.E-11", "-9.E-11", -9e-11, standard},
        {"1.E-10", "", 1e-10, 0.0},
        {"", "2E-10", 0.0, 2e-10},
        {"150", "25", 1.5, 0.25},
        {"1E2", "2.5", 100.0, 2.5},
    };
    for (const auto& [textEPSTA, textEPSTR, EPSTA, EPSTR] : cases) {
        SmallRun run(FormatText("(20X,A10,A10)", textEPSTA, textEPSTR));
        run.control.header.INDFOR = 2;
        ReadControlCard(run);
        EXPECT_EQ(run.control.header.EPSTA, EPSTA) << textEPSTA;
        EXPECT_EQ(run.control.header.EPSTR, EPSTR) << textEPSTR;
    }
    EXPECT_EQ(standard, 0.0010000000474974513);
}

// Faults: a title cut at 78 or 105 characters, or stepped back over under the last problem's free format.
TEST(HeaderCards, TitleIsKeptAsEightyCharacters) {
    const std::string card = std::string(79, 't') + "eX";
    SmallRun run("C comment\n" + card + "\n2 0 0 0\n");
    run.control.header.INDFOR = 1;
    ReadTitle(run);
    EXPECT_EQ(std::string(run.control.header.title), card.substr(0, 80));
    ReadFormatCard(run);
    EXPECT_EQ(run.control.header.INDFOR, 2);
    EXPECT_EQ(run.deck.CardCounter, 3);
}

// Faults: device cards consumed under free format, by which the basic data would stand on another line; read by list;
// the degradation card left behind.
TEST(HeaderCards, DeviceCardsAreTakenByColumns) {
    SmallRun fixed("    1.5        2.    3.D-1         4         5     6.E-3\n   10   11   12   13    1\n"
                   "        1.        .2        3.        4.        5.        6.        7.\nbasic\n");
    fixed.control.header.INDFOR = 2;
    ReadDeviceCards(fixed);
    EXPECT_EQ(fixed.control.header.ELPCL, 0.0004); // four implied decimals
    EXPECT_EQ(fixed.control.header.NXPCL, 13);
    EXPECT_EQ(fixed.control.header.DIFFCDL, 7.0);
    EXPECT_EQ(NextRecord(fixed.deck, ""), "basic");

    SmallRun free("    2    3\n");
    free.control.header.INDFOR = 1;
    ReadDeviceCards(free);
    EXPECT_EQ(free.control.header.ELFIB, 0.0023);
    EXPECT_EQ(free.control.header.NYFIB, 3);
    EXPECT_EQ(free.deck.CardCounter, 2);
    EXPECT_EQ(free.deck.nextLine, 0);
}

// Faults: a default missing, given to a field that has none, or given to a negative value.
TEST(HeaderCards, BasicDataDefaults) {
    SmallRun run("         3\n         3    2    4    2   17   -1    1   -2    0   -3    1\n");
    const HeaderFields& header = run.control.header;
    run.control.header.INDFOR = 2;
    const auto fields = [&] {
        ReadBasicData(run);
        return Integers{header.NGET,  header.NMATT, header.NSTAC, header.NPER,  header.NPRINT,
                        header.IANIZ, header.NULAZ, header.ITOR,  header.IGRAF, header.IDIRECTD};
    };
    EXPECT_EQ(fields(), (Integers{1, 1, 0, 1, 1, 0, 1, 0, 1, 0}));
    EXPECT_EQ(fields(), (Integers{2, 4, 2, 17, -1, 1, -2, 0, -3, 1})); // more than the 16 of the echo
}

// Faults: a default of the control card missing or given to a negative value; IPASSPRINT stored without its shift.
TEST(HeaderCards, ControlDefaultsAndTheShiftOfIPASSPRINT) {
    SmallRun run("\n    2    1    1   -1                        7    1\n"
                 "    0    0    0    0                        0    2\n");
    const HeaderFields& header = run.control.header;
    run.control.header.INDFOR = 2;
    const auto fields = [&] {
        ReadControlCard(run);
        return Integers{header.INTEB, header.INDSC, header.IFORM,
                        header.MAXIT, header.NJRAP, header.IPASSPRINT};
    };
    EXPECT_EQ(fields(), (Integers{1, 0, 0, 15, 1, 1}));
    EXPECT_EQ(fields(), (Integers{2, 1, 1, -1, 7, 2}));
    EXPECT_EQ(fields()[5], 3);
}

// Faults: what the group cards say of sources and substructures lost for the steps that ask for it.
TEST(HeaderCards, GroupCards) {
    SmallRun run("    3        12    1    2    1    2\n    3        12\n");
    run.control.header.INDFOR = 2;
    for (const std::int32_t NGE : {1, 2}) {
        ReadGroupCard(run, NGE);
        NoteKindOfGroup(run, run.groups[NGE]);
    }
    const JobState& job = run.job; // LastISUB4 is of the last group alone
    EXPECT_EQ((Integers{job.SourcePresent, job.ConcentrationSource, job.SubstructurePresent, job.LastISUB4}),
              (Integers{1, 1, 1, 0}));
}

// Faults: under NDS the first field taken for NANLK, or the other five kept; NPOC 0 kept under NDS, or changed without.
TEST(HeaderCards, CurveCountsUnderNDS) {
    for (const std::int32_t NDS : {0, 1}) {
        SmallRun run("    6    5    4    3    2    1\n    0\n");
        run.control.header.INDFOR = 2;
        run.control.header.NDS = NDS;
        run.control.header.NMATT = 9;
        ReadMaterialHeader(run);
        ReadBoundaryCard(run);
        const CurveCounts& counts = run.control.counts;
        EXPECT_EQ((Integers{counts.MAXPMAT, counts.NANLK, counts.NTABK, counts.MAXTK, counts.NANLC,
                            counts.NTABC, counts.MAXTC, counts.NPOC}),
                  NDS == 0 ? (Integers{0, 6, 5, 4, 3, 2, 1, 0}) : (Integers{6, 0, 9, 6, 0, 0, 0, 1}));
    }
}

// Faults: the normalisation in another order (the second card wanted after IDCC has been cleared, active directions
// counted after NFIT has been cleared), INDDEG not brought into 1 to 3, flags kept in a run without a fit.
TEST(HomogenizationCard, Normalisation) {
    //  NSETS IEHM NFIT NFSTEP NFITMAX FITERR INDFITX Y Z INDDEG IHEQ IDCC IDIAM IDCSF
    const struct {
        const char* card;
        Integers expected; // IEHM, NFIT, INDDEG, IHEQ, IDCC, NACTDIR
        bool curveEnds;    // the second card is read
    } cases[] = {
        {"1 1 1 5 6 .01 1 0 1 2 1 1 1 0", {1, 1, 2, 1, 1, 2}, false},
        {"1 1 1 5 6 .01 1 0 1 0 1 0 1 0", {1, 1, 1, 1, 0, 2}, true},
        {"1 1 1 5 6 .01 1 2 0 9 1 0 1 1", {1, 1, 3, 0, 1, 1}, false}, // only flags equal to 1 are counted
        {"0 1 1 5 6 .01 1 1 1 -4 1 1 1 0", {0, 0, 1, 0, 0, 3}, false},
        {"0 1 1 5 6 .01 1 1 1 3 1 1 1 1", {0, 0, 3, 0, 0, 3}, false},
        {"2 0 1 5 6 .01 1 0 0 2 1 1 1 0", {0, 0, 2, 0, 0, 1}, false},
        {"2 1 0 5 6 .01 1 1 1 2 1 1 1 0", {1, 0, 2, 0, 0, 0}, false},
        {"2 1 0 5 6 .01 1 1 1 2 1 0 1 0", {1, 0, 2, 0, 0, 0}, true},
    };
    for (const auto& [text, expected, curveEnds] : cases) {
        SmallRun run(std::string(text) + "\n1.5 2.5\nnext\n");
        run.control.header.INDFOR = 1;
        ReadHomogenizationCard(run);
        const HomogenizationCard& card = run.fit.card;
        EXPECT_EQ((Integers{card.IEHM, card.NFIT, card.INDDEG, card.IHEQ, card.IDCC, run.fit.NACTDIR}),
                  expected)
            << text;
        EXPECT_EQ(card.D2D, curveEnds ? 2.5 : 0.0) << text;
        EXPECT_EQ(run.deck.nextLine, curveEnds ? 2 : 1) << text;
        EXPECT_EQ(card.NFSTEP, 5);
        EXPECT_EQ(card.NFITMAX, 6);
        EXPECT_EQ(card.FITERR, 0.01);
        EXPECT_EQ(Written(run.units.listing), ""); // NULAZ does not ask for the echo
    }
}

} // namespace
} // namespace zurt
