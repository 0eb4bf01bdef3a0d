#include "job/header_cards.h"

#include "core/format.h"
#include "job/echo.h"
#include "job/header_echo.h"
#include "support/small_run.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zurt {
namespace {

using zurt_test::CountOf;
using zurt_test::SmallRun;
using zurt_test::Written;
using zurt_test::WrittenByStop;

// Faults: a title cut at 78 or 105 characters, or stepped back over under the last problem's free format.
TEST(HeaderCards, TitleIsKeptAsEightyCharacters) {
    const std::string card = std::string(79, 't') + "eX";
    SmallRun small("C comment\n" + card + "\n2 0 0 0\n");
    small.run.control.header.INDFOR = 1;
    ReadTitle(small.run);
    EXPECT_EQ(std::string(small.run.control.header.title), card.substr(0, 80));
    ReadFormatCard(small.run);
    EXPECT_EQ(small.run.control.header.INDFOR, 2);
    EXPECT_EQ(small.run.deck.CardCounter, 3);
    SmallRun blank("\n1 0 0 0\n");
    ReadTitle(blank.run);
    EXPECT_EQ(std::string(blank.run.control.header.title), std::string(80, ' '));
}

// Faults: INDFOR 0 or an odd value changed otherwise, any nonzero SolverSelector taken for the sparse solver, the
// sparse mode or IPASSPRINT of the problem before kept.
TEST(HeaderCards, FormatCardIsAlwaysFree) {
    SmallRun small("0, 3 2 2\n3 -1 0 1\n/\n");
    HeaderFields& header = small.run.control.header;
    header.INDFOR = 2;
    ReadFormatCard(small.run);
    EXPECT_EQ(header.INDFOR, 1);
    EXPECT_EQ(header.NDS, 3);
    EXPECT_EQ(header.NANOCH, 2);
    EXPECT_EQ(small.run.control.state.SparseMode, 1);
    header.IPASSPRINT = 9;
    ReadFormatCard(small.run);
    EXPECT_EQ(header.INDFOR, 3);
    EXPECT_EQ(header.NDS, -1);
    EXPECT_EQ(small.run.control.state.SparseMode, 0);
    EXPECT_EQ(header.IPASSPRINT, 1);
    ReadFormatCard(small.run);
    EXPECT_EQ(header.INDFOR, 1);
    EXPECT_EQ(header.NDS, -1);
}

// Faults: device cards consumed under free format, by which the basic data would stand on another line; read by list;
// the degradation card read without INDDEGR 1 or left behind with it.
TEST(HeaderCards, DeviceCardsAreTakenByColumns) {
    SmallRun fixed("    1.5        2.    3.D-1         4         5     6.E-3\n"
                   "   10   11   12   13    1\n"
                   "        1.        2.        3.        4.        5.        6.        7.\nbasic\n");
    HeaderFields& header = fixed.run.control.header;
    header.INDFOR = 2;
    ReadDeviceCards(fixed.run);
    EXPECT_EQ(header.ELFIB, 1.5);
    EXPECT_EQ(header.DFIB, 2.0);
    EXPECT_EQ(header.WFIB, 0.3);
    EXPECT_EQ(header.ELPCL, 0.0004); // four implied decimals
    EXPECT_EQ(header.DMOLECULE, 0.006);
    EXPECT_EQ(header.NXPCL, 13);
    EXPECT_EQ(header.DEGALPHA, 1.0);
    EXPECT_EQ(header.DIFFCDL, 7.0);
    EXPECT_EQ(NextRecord(fixed.run.deck, ""), "basic");

    SmallRun free("    2    3\n");
    HeaderFields& same = free.run.control.header;
    same.INDFOR = 1;
    ReadDeviceCards(free.run);
    EXPECT_EQ(same.ELFIB, 0.0023);
    EXPECT_EQ(same.NXFIB, 2);
    EXPECT_EQ(same.NYFIB, 3);
    EXPECT_EQ(free.run.deck.CardCounter, 2);
    EXPECT_EQ(free.run.deck.nextLine, 0);
}

// Faults: a default missing, given to a field that has none, or given to a negative value.
TEST(HeaderCards, BasicDataDefaults) {
    SmallRun small("         3\n         3    2    4    2   17   -1    1   -2    0   -3    1\n");
    HeaderFields& header = small.run.control.header;
    header.INDFOR = 2;
    ReadBasicData(small.run);
    EXPECT_EQ(header.NP, 3);
    for (const std::int32_t one :
         {header.NGET, header.NMATT, header.NPER, header.NPRINT, header.NULAZ, header.IGRAF})
        EXPECT_EQ(one, 1);
    for (const std::int32_t zero : {header.NSTAC, header.IANIZ, header.ITOR, header.IDIRECTD})
        EXPECT_EQ(zero, 0);
    ReadBasicData(small.run);
    EXPECT_EQ(header.NGET, 2);
    EXPECT_EQ(header.NMATT, 4);
    EXPECT_EQ(header.NSTAC, 2);
    EXPECT_EQ(header.NPER, 17); // more than the 16 of the echo
    EXPECT_EQ(header.NPRINT, -1);
    EXPECT_EQ(header.NULAZ, -2);
    EXPECT_EQ(header.IGRAF, -3);
}

struct ControlCase {
    const char *textEPSTA, *textEPSTR; // F10.2 each
    double EPSTA, EPSTR;
};

// Faults: EPSTR given its default although EPSTA stands on the card, or not given it for values of no size; the single
// precision of the default lost; two implied decimals forgotten or given to a number with an exponent.
TEST(HeaderCards, AccuracyDefaults) {
    const double standard = static_cast<double>(1e-3f);
    const ControlCase cases[] = {
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
    for (const ControlCase& test : cases) {
        SmallRun small(FormatText("(20X,A10,A10)", test.textEPSTA, test.textEPSTR));
        HeaderFields& header = small.run.control.header;
        header.INDFOR = 2;
        ReadControlCard(small.run);
        EXPECT_EQ(header.EPSTA, test.EPSTA) << test.textEPSTA;
        EXPECT_EQ(header.EPSTR, test.EPSTR) << test.textEPSTR;
    }
    EXPECT_EQ(standard, 0.0010000000474974513);
}

// Faults: a default of the control card missing or given to a negative value; IPASSPRINT stored without its shift.
TEST(HeaderCards, ControlDefaultsAndTheShiftOfIPASSPRINT) {
    SmallRun small("title\n2 0 0 0\n\n    2    1    1   -1                        7    1\n"
                   "    0    0    0    0                        0    2\n");
    zurt::Run& run = small.run;
    HeaderFields& header = run.control.header;
    ReadTitle(run);
    ReadFormatCard(run);
    ReadControlCard(run);
    EXPECT_EQ(header.INTEB, 1);
    EXPECT_EQ(header.MAXIT, 15);
    EXPECT_EQ(header.NJRAP, 1);
    EXPECT_EQ(header.IPASSPRINT, 1);
    ReadControlCard(run);
    EXPECT_EQ(header.INTEB, 2);
    EXPECT_EQ(header.INDSC, 1);
    EXPECT_EQ(header.IFORM, 1);
    EXPECT_EQ(header.MAXIT, -1);
    EXPECT_EQ(header.NJRAP, 7);
    EXPECT_EQ(header.IPASSPRINT, 2);
    EchoControlCard(run);
    EXPECT_EQ(CountOf(Written(run.units.listing), "IPASSPRINT=    2\n"), 1);
    ReadControlCard(run);
    EXPECT_EQ(header.IPASSPRINT, 3);
}

// Faults: columns of the execution or the group card miscounted; what the group cards say of sources and substructures
// lost for the steps that ask for it.
TEST(HeaderCards, ExecutionAndGroupCards) {
    SmallRun small("    1    3    4 1.5           99\n"
                   "    3        12    1    2    1    2\n    3        12\n");
    zurt::Run& run = small.run;
    HeaderFields& header = run.control.header;
    header.INDFOR = 2;
    ReadExecutionCard(run);
    EXPECT_EQ(header.IREST, 1);
    EXPECT_EQ(header.NCZK, 3);
    EXPECT_EQ(header.NCZR, 4);
    EXPECT_EQ(header.VREM0, 1.5);
    EXPECT_EQ(header.PotentialFunctionSize, 99);
    ReadGroupCard(run, run.groups[1]);
    EXPECT_EQ(run.groups[1].NETIP, 3);
    EXPECT_EQ(run.groups[1].NET, 12);
    EXPECT_EQ(run.groups[1].INDAX, 1);
    EXPECT_EQ(run.groups[1].IND4N, 2);
    ReadGroupCard(run, run.groups[2]);
    EXPECT_EQ(run.control.state.SourcePresent, 1);
    EXPECT_EQ(run.control.state.ConcentrationSource, 1);
    EXPECT_EQ(run.control.state.SubstructurePresent, 1);
    EXPECT_EQ(run.control.state.LastISUB4, 0); // of the last group alone
}

// Faults: under NDS the first field taken for NANLK, or the other five kept.
TEST(HeaderCards, MaterialHeaderUnderNDS) {
    for (const std::int32_t NDS : {0, 1}) {
        SmallRun small("    6    5    4    3    2    1\n");
        zurt::Run& run = small.run;
        run.control.header.INDFOR = 2;
        run.control.header.NDS = NDS;
        run.control.header.NMATT = 9;
        ReadMaterialHeader(run);
        const CurveCounts& counts = run.control.counts;
        EXPECT_EQ((std::vector<std::int32_t>{counts.MAXPMAT, counts.NANLK, counts.NTABK, counts.MAXTK,
                                             counts.NANLC, counts.NTABC, counts.MAXTC}),
                  NDS == 0 ? (std::vector<std::int32_t>{0, 6, 5, 4, 3, 2, 1})
                           : (std::vector<std::int32_t>{6, 0, 9, 6, 0, 0, 0}));
    }
}

// Faults: NPOC changed without NDS; the order of the pairs mixed up; sources without functions let through, or the
// message in another language or with another status.
TEST(HeaderCards, BoundaryCard) {
    SmallRun small("0 1 2 3 4 5 6 7 8 9 10\n0 1 2 3 4 5 6 0 8 9 10\n");
    zurt::Run& run = small.run;
    const CurveCounts& counts = run.control.counts;
    run.control.header.INDFOR = 1;
    run.control.state.SourcePresent = 1;
    ReadBoundaryCard(run);
    const std::int32_t fields[] = {counts.NPOC,   counts.NQP,  counts.MAXTQP, counts.NHP,
                                   counts.MAXTHP, counts.NTOK, counts.MAXTOK, counts.NQE,
                                   counts.MAXTQE, counts.NHR,  counts.MAXTHR};
    for (std::int32_t i = 0; i <= 10; ++i)
        EXPECT_EQ(fields[i], i);
    run.control.state.Language = kSerbian;
    EXPECT_EQ(WrittenByStop(small, run.units.listing, [&] { ReadBoundaryCard(run); }),
              " ERROR IN INPUTE DATA: THERE IS SOURCE TERM FOR ELEMENT GROUP, IZIP.GT.0\n"
              " TIME FUNCTIONS MUST BE INPUT AND NQE MUST BE GT.0\n"
              " INPUT DATA FOR NQE IS NQE=    0\n S T O P\n");
    run.control.state.SourcePresent = 0;
    run.control.header.NDS = 2;
    ReadBoundaryCard(run);
    EXPECT_EQ(counts.NPOC, 1);
}

// Faults: header cards echoed out of their order, values ahead of their defaults, card numbers without the comments,
// device data echoed for models that have none.
TEST(HeaderCards, EchoInOrder) {
    SmallRun small("C comment\nA title\n2 1 1 0\n       1.5\n    7\n"
                   "         4\n                        1.E-11\n    1    0    0      2.5\n");
    zurt::Run& run = small.run;
    ReadTitle(run);
    ReadFormatCard(run);
    ReadDeviceCards(run);
    ReadBasicData(run);
    EchoHeaderCards(run, 2, 3);
    ReadControlCard(run);
    EchoControlCard(run);
    ReadExecutionCard(run);
    EchoExecutionCard(run);
    const std::string listing = Written(run.units.listing);
    const char* const order[] = {" CARD NUMBER     2\n",
                                 "***\n\n A title",
                                 " ELFIB = 1.500E+00\n",
                                 " NXFIB =    7\n",
                                 " CARD NUMBER     3\n",
                                 " INDFOR =    2\n",
                                 "EQ.1; MODELING NDS DEVICE\n",
                                 " CARD NUMBER     6\n",
                                 "B A S I C    D A T A    F O R   T H E   P R O B L E M\n",
                                 " NP =    4\n",
                                 " NGET =    1\n",
                                 " IDIRECTD=    0\n",
                                 " CARD NUMBER     7\n",
                                 " MAXIT =   15\n",
                                 " EPSTA = 1.000E-11\n",
                                 " EPSTR = 1.000E-03\n",
                                 " IPASSPRINT=    1\n",
                                 " CARD NUMBER     8\n",
                                 " IREST =    1\n",
                                 " VREM0 = 2.500E+00\n"};
    std::size_t at = 0;
    for (const char* text : order) {
        const std::size_t found = listing.find(text, at);
        ASSERT_NE(found, std::string::npos) << text;
        at = found;
    }
    EXPECT_EQ(run.deck.CardCounter, 8);
    EXPECT_EQ(CountOf(listing, "DEGALPHA"), 0);
    run.control.header.NANOCH = 0;
    EchoHeaderCards(run, 2, 3);
    EXPECT_EQ(CountOf(Written(run.units.listing), " ELFIB ="), 1);
}

} // namespace
} // namespace zurt
