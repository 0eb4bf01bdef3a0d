// Messages that end a run, through the real binary: their text, their place, and the status of a normal end.
#include "support/bar_deck.h"
#include "support/run_deck.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace zurt_test {
namespace {

constexpr const char* kTitleSecond = "Second of two";

BarDeck SmallBar() {
    BarDeck bar;
    bar.nx = 2;
    bar.periods = {{2, 0.5}};
    return bar;
}

std::string Replaced(std::string text, const std::string& part, const std::string& by) {
    const std::size_t at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    return at == std::string::npos ? text : text.replace(at, part.size(), by);
}

void ExpectEndsWith(const std::string& text, const std::string& end) {
    ASSERT_GE(text.size(), end.size());
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

// Faults: a check run that solves, that goes on to the next problem or that ends with another status; IREST 2 taken for
// a check, or for a restart at the time that stands on its card.
TEST(Messages, CheckOfInputData) {
    BarDeck bar = SmallBar();
    bar.IREST = 0;
    bar.end = "";
    std::string deck = Build(bar);
    bar.title = kTitleSecond;
    const RunResult check = RunDeck(deck + Build(bar));
    EXPECT_EQ(check.status, 0) << check.errors;
    ExpectEndsWith(check.listing, "\n           READING AND GENERATING OF INPUT DATA IS OVER\n"
                                  "\n           INPUT DATA ARE WITHOUT FORMAL ERROR\n"
                                  "\n           FOR EXECUTION OF PROGRAM ENTER:   IREST = 1\n");
    EXPECT_EQ(CountOf(check.listing, "MTOT =120000000\n"), 1);
    EXPECT_EQ(CountOf(check.listing, kTitleSecond), 0);
    EXPECT_EQ(CountOf(check.console, "ITERATION"), 0);
    EXPECT_FALSE(std::filesystem::exists(check.folder + "/MASS-X.LST"));

    bar = SmallBar();
    const std::string executed = ResultsOfListing(RunDeck(Build(bar)).listing);
    EXPECT_EQ(CountOf(executed, "S T E P  NUMBER"), 2);
    deck = Replaced(Build(bar), "\n1 0 0 0. 0\n", "\n2 0 7 1.5 0\n");
    EXPECT_EQ(ResultsOfListing(RunDeck(deck).listing), executed);
}

// A problem that is at rest in its first step and can't be solved in two iterations in its second.
BarDeck NoEquilibrium() {
    BarDeck bar = SmallBar();
    bar.start = 0.0;
    bar.diffusion = {{-1000.0, 1.0}, {0.0, 1.0}, {1000.0, 5000.0}};
    bar.source = true;
    bar.sourceCurve = {{0.0, 0.0}, {0.5, 0.0}, {1.5, 1e3}};
    bar.MAXIT = 1;
    bar.EPSTR = 1e-9;
    return bar;
}

// Faults: one solve more or fewer than MAXIT + 1, lines of the message, the count of saved steps missing, a message in
// MESSAGES.LST without NDS, a status other than that of a normal end, results of the failed step.
TEST(Messages, NoEquilibriumWithoutDevice) {
    BarDeck first = SmallBar(); // its two saved steps are not those of the second problem
    first.NPRINT = first.NULAZ = first.IGRAF = -1;
    first.end = "";
    const RunResult result = RunDeck(Build(first) + Build(NoEquilibrium()));
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(Contains(result.errors, "note: step 2: no equilibrium within MAXIT = 1 iterations"))
        << result.errors;
    EXPECT_EQ(result.messages, "      \n      \n");
    EXPECT_EQ(CountOf(result.console, " ITERATION =  1"), 2 + 1);
    EXPECT_EQ(CountOf(result.console, " ITERATION =  2"), 0);
    EXPECT_EQ(CountOf(result.listing, " S T E P  NUMBER ="), 1);
    const std::size_t at = result.listing.find(" MAXIMUM NUMBER OF ITERATION ACHIEVED\n");
    ASSERT_NE(at, std::string::npos);
    const std::string message = result.listing.substr(at);
    EXPECT_EQ(message.find(" MAXIMUM NUMBER OF ITERATION ACHIEVED\n STEP NO. =    2\n"
                           " NUMBER OF ITERATION, ITER =    1\n"
                           " ALLOWED ERROR IN REGARD TO INITIAL INCREASE OF TEMPERATURE WITHIN STEP,\n"
                           " (%) EPST = 1.00000E-07\n REF. VALUE, TREF = "),
              0u)
        << message;
    EXPECT_EQ(CountOf(message, "\n ACHIEVED VELUE OF TEMPERATURE INCREASE MODULE, DTMOD = "), 1);
    ExpectEndsWith(message, "\n THERE ARE LAST NCZZ=    1STEPS WRITTEN \n POSIBLE RESTART\n");
    EXPECT_EQ(CountOf(result.graphics, "CVORNE KONCENTRACIJE"), 1);
}

// Faults: MESSAGES.LST without the message under NDS, or its lines; saved steps spoken of when there are none.
TEST(Messages, NoEquilibriumUnderNDS) {
    BarDeck bar = SmallBar();
    bar.NDS = 1;
    bar.fixedFormat = true;
    bar.diffusion = {{-1000.0, 1.0}, {0.0, 1.0}, {1000.0, 5000.0}};
    bar.MAXIT = 1;
    bar.EPSTR = 1e-9;
    const RunResult result = RunDeck(Build(bar));
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(CountOf(result.listing, " MAXIMUM NUMBER OF ITERATION ACHIEVED\n"), 1);
    EXPECT_EQ(CountOf(result.listing, "NCZZ"), 0);
    EXPECT_EQ(
        result.messages.find("      \n MAXIMUM NUMBER OF ITERATION REACHED\n\n TIME= 5.00000E-01\n"
                             " TIME STEP= 5.00000E-01\n STEP NO. =    1\n NUMBER OF ITERATIONS, ITER =    1\n"
                             " CURRENT REFERENCE CONCENTRATION, CREFFERENCE= "),
        0u)
        << result.messages;
    EXPECT_EQ(CountOf(result.messages,
                      "\n ALLOWED PERCENTAGE ERROR WITH RESPECT TO CREFFERENCE, ERRORPERCENT ="
                      " 1.00000E-07\n UNBALANCED RIGHT-HAND SIDE, UNBALANCE = "),
              1);
    ExpectEndsWith(result.messages, "\n\n Use smaller time step, or\n"
                                    " Refine the mesh (particularly in regions of high gradients), or\n"
                                    " Increase percentage error tolerance,ERRORPERCENT\n");
}

// Faults: a linear problem without its note, an iterating one with it.
TEST(Messages, NotesOfLinearProblems) {
    BarDeck bar = SmallBar();
    bar.NDS = 1;
    bar.fixedFormat = true;
    for (const bool linear : {true, false})
        for (const bool steady : {true, false}) {
            bar.steady = steady;
            bar.diffusion = {{-1000.0, 1.0}, {1000.0, 1.0}};
            if (linear)
                bar.diffusion.pop_back();
            const std::string errors = RunDeck(Build(bar)).errors;
            EXPECT_EQ(CountOf(errors, "note: a steady problem with constant coefficients"), linear && steady);
            EXPECT_EQ(CountOf(errors, "note: a transient problem with constant coefficients"),
                      linear && !steady);
        }
}

// Faults: the eleventh group read before the message, ten groups refused, or a fault of the group table.
TEST(Messages, TenGroupsAtMost) {
    BarDeck bar = SmallBar();
    bar.nx = 11;
    bar.groups = 10;
    EXPECT_EQ(CountOf(RunDeck(Build(bar)).listing, "S T E P  NUMBER"), 2);
    bar.groups = 11;
    std::string deck = Build(bar);
    std::size_t last = deck.rfind("\n3 1 0 0 0 0");
    ASSERT_NE(last, std::string::npos);
    const RunResult result = RunDeck(deck.substr(0, last + 1) + "no group card");
    EXPECT_EQ(result.status, 0) << result.errors;
    ExpectEndsWith(result.listing,
                   "\nBROJ TIPOVA ELEMENATA NGET= 11\n-VECI OD 10;  URADITI SLEDECE:\n"
                   "POVECATI DIMENZIJU U VEKTORU NETV(10,3)- COMMON/TEMPGL/,\n"
                   "-DIMENZIJA MORA BITI VECA ILI JEDNAKA BROJU TIPOVAELEMENATA\n"
                   "2. ZAMENITI INSTRUKCIJU .IF(NGE.LE.10) GO TO 45. UMAIN-U U INSTRUKCIJU:\n"
                   ".IF(NGE.LE.NDIM) GO TO 45. GDE JE NDIM-BROJ NA KOJI JE DIMENZIJA POVECANA\n");
}

// Faults: a message about nodes lost because no listing is open yet, a listing asked for first; the message of the
// second problem not on the listing of the first.
TEST(Messages, NodesMustBePositive) {
    const std::string message = " ERROR IN INPUT DATA :\n NUMBER OF NODAL POINT - NP =   -1\n"
                                " MUST BE GREATER THAN ZERO!\n";
    const std::string bad = "No nodes\n1 0 0 0\n-1 1 1 1 1 1 1 1 1 1 1\n";
    const RunResult first = RunDeck(bad);
    EXPECT_EQ(first.status, 0) << first.errors;
    EXPECT_EQ(first.console, "   INPUT FILE NAME   <zurt.dat>\n" + message);
    EXPECT_EQ(first.listing, "");
    BarDeck bar = SmallBar();
    bar.end = "";
    const RunResult second = RunDeck(Build(bar) + bad);
    EXPECT_EQ(second.status, 0) << second.errors;
    ExpectEndsWith(second.listing, message);
}

} // namespace
} // namespace zurt_test
