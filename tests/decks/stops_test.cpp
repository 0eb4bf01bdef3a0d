// Every message that ends a run and that a deck can reach, through the real binary: status, standard error, the message.
// And the notes that belong to good ends.
#include "support/bar_deck.h"
#include "support/run_deck.h"
#include "support/small_decks.h"

#include <filesystem>

namespace zurt_test {
namespace {

const char* const kReading = "problem 1";
const char* const kSolving = "problem 1, step 1, iteration 0";
constexpr bool kConsole = true;
const char* const kSquares = "quadrilaterals"; // a small deck

struct StopCase {
    std::string message; // its first line that holds letters
    std::string detail;  // a part of a later line, which tells what is wrong
    std::string deck;
    std::string place = ""; // "": that of most cases of its table
    bool onConsole = false;
    int words = 0; // of the working vector; 0: the default, and the dialogue has no other
};

// A small deck with other text at the first place where `part` stands.
std::string Deck(const char* name, const std::string& part, const std::string& by) {
    return Replaced(SmallDeckText(name), part, by);
}

// The deck "functions" with another table in the place of the n-th of its five, from 0; they are all alike.
std::string WithTable(int n, const std::string& table) {
    std::string before = "1 1 2 1 2 1 2 1 2 1 2\n";
    for (int i = 0; i < n; ++i)
        before += "1 2\n0. 1.\n1. 1.\n";
    return Deck("functions", before + "1 2\n0. 1.\n1. 1.\n", before + table);
}

// A row of bricks, each a group of its own.
BarDeck Bar(int nx) {
    BarDeck bar;
    bar.nx = bar.groups = nx;
    bar.periods = {{2, 0.5}};
    return bar;
}

// A bar that takes more than the two iterations that it may; with a source it is at rest in its first step.
BarDeck WithoutEquilibrium(bool source) {
    BarDeck bar = Bar(2);
    bar.diffusion = {{-1000.0, 1.0}, {0.0, 1.0}, {1000.0, 5000.0}};
    bar.source = source;
    bar.start = source ? 0.0 : 1.0;
    bar.sourceCurve = {{0.0, 0.0}, {0.5, 0.0}, {1.5, 1e3}};
    bar.MAXIT = 1;
    bar.EPSTR = 1e-9;
    return bar;
}

// A face without extent, in a layer of elements whose surface terms are formed for results alone: once the second solve
// of the step has found no increment.
std::string WithFlatFace() {
    std::string deck = SmallDeckText("device cards");
    for (const char* node :
         {"\n         8    1      1.00000000e+00", "\n        16    1      1.00000000e+00"})
        deck = Replaced(deck, std::string(node) + " 3.33333333e-01", std::string(node) + " 0.00000000e+00");
    deck = Replaced(
        deck, "    1    0    0    0    0    0    0    0    0    0    0\n",
        "    1    1    1    0    0    0    0    0    0    0    0\n    1    1\n       9.0       1.0\n");
    return Replaced(deck, "STOP\n", "    3    4    8   12   16    1\n\nSTOP\n");
}

// Bricks of 20 nodes, and the words of all but their element matrices.
StopCase TightVector(const std::string& message, const std::string& detail, const char* place,
                     int moreWords) {
    const std::string deck = SmallDeckText("steady free");
    const std::string label = "REQUIRED DIMENSION INTO WORKING VECTOR ..... LMAXM =";
    const auto words = static_cast<int>(NumbersBehind(RunDeck(deck).listing, label).at(0));
    return {message, detail, deck, place, false, words + moreWords};
}

std::vector<StopCase> StopsOfReading() {
    const std::string nodes = "ERROR IN INPUT DATA :",
                      noNodes = "NUMBER OF NODAL POINT - NP =   -1\n MUST BE GREATER THAN ZERO!\n";
    const std::string vector = "UNSUFFICIENT DIMENSION OF WORKING VECTOR";
    const std::string data = "ERROR IN INPUT DATA FOR ", group = " ELEMENT GROUP:";
    const std::string number = "INPUT ELEMENT NUMBER IS GREATER THANTHE TOTAL NUMBER WITHIN THE GROUP\n"
                               " INPUT ELEMENT NUMBER  NN=       ",
                      ofGroup = "\n TOTAL NUMBER OF ELEMENTS WITHIN THE GROUP, NET=       ";
    const std::string material = "MATERIAL NUMBER IS GREATER THAN THE TOTAL NUMBER OF MATERIALS\n"
                                 "   MATERIAL NUMBER FOR ",
                      materials = "   TOTAL NUMBER OF MATERIALS, NMATT=    1\n   S T O P\n";
    const std::string curve = "MATERIAL NUMBER =  1\n  NUMBER POINTS ON CURVE =  ",
                      most = "\n  MAXIMAL NUMBER POINTS ON CURVE , MAX";
    const std::string boundary = "ERROR IN BOUNDARY CONDITION INPUT DATA:", ofNodes = "BOUNDARY NODES :   ";
    const std::string early = "TIME FUNCTION IS NOT DEFINED WITHIN THE WHOLE RANGE";
    const std::string endsEarly = "1 2\n0. 1.\n.001 1.\n", isLarge = "1 3\n0. 1.\n1. 1.\n2. 1.\n";
    const std::string many = "NUMBER OF POINTS READ IN, IMAX=    3\n";
    const std::string functions = "ERROR IN FUNCTIONS OF ";
    const std::string source = functions + "TEMPERATURE SOURCES (SINKS) INPUT DATA:";
    const std::string flux = functions + "SURFACE FLUXES INPUT DATA  :"; // of radiation, too
    const std::string start = "GRESKA U ULAZNIM PODACIMA:";
    const char *const fibres = "radial fibres", *const lists = "device lists";
    const std::string eleven = Build(Bar(11));
    return {
        {nodes, noNodes, Deck("free", "16 1 1 1 2", "-1 1 1 1 2"), "", kConsole},
        {nodes, noNodes, Deck("two free", "12 1 1 1 2", "-1 1 1 1 2"), "problem 2"},
        {"BROJ TIPOVA ELEMENATA NGET= 11",
         "-VECI OD 10;  URADITI SLEDECE:\nPOVECATI DIMENZIJU U VEKTORU NETV(10,3)- COMMON/TEMPGL/,\n"
         "-DIMENZIJA MORA BITI VECA ILI JEDNAKA BROJU TIPOVAELEMENATA\n"
         "2. ZAMENITI INSTRUKCIJU .IF(NGE.LE.10) GO TO 45. UMAIN-U U INSTRUKCIJU:\n"
         ".IF(NGE.LE.NDIM) GO TO 45. GDE JE NDIM-BROJ NA KOJI JE DIMENZIJA POVECANA\n",
         eleven.substr(0, eleven.rfind("\n3 1 0 0 0 0"))}, // the eleventh group is not read
        {vector + " A FOR READ IN INPUT DATA", "NTOTA= 120000000", Deck("free", "16 1 1", "99999999 1 1")},
        {"UNSUFFICIENT DIMENSION OF BASIC VECTOR FOR DATA ENTRY", "MTOT= 120000000",
         Deck(lists, "\n    2    2\n    1    2\n", "\n 9999 9999\n    1    2\n")},
        TightVector(vector + ":", "REQUIRED DIMENSION LMAXM =", "", -1),
        TightVector(vector + " A FOR", "ELEMENT MATRIX\n", kSolving, 0),
        {data + "1D" + group, number + "3" + ofGroup + "2\n S T O P\n",
         Deck("lines", "\n1 2 1 0", "\n3 2 1 0")},
        {data + "2D" + group, number + "3" + ofGroup + "2\n", Deck(kSquares, "\n1 5 4", "\n3 5 4")},
        {data + "3D" + group, number + "4" + ofGroup + "3\n", Deck("free", "\n1 14 13", "\n4 14 13")},
        {data + "3D" + group, number + "4" + ofGroup + "3\n", // by generation
         Deck("free", "\n1 14 13", "\n3 14 13")},
        {data + "RADIAL 1D" + group, number, Deck(fibres, "1           0.1000", "3           0.1000")},
        {"INPUT ERROR:", "NSUBEL4MX=   11\n", Deck(fibres, "    3    2   ", "   11    2   ")},
        {"E R R O R", material + "3D ELEMENTS, MAT3D=    2\n" + materials,
         Deck("device", "    1         8", "    2         8")},
        {"E R R O R", material + "3D ELEMENT, NMAT=    2\n" + materials,
         Deck("device", "       2  0  1  1", "       2  2  1  1")},
        {data + "CONDUCTION COEFFICIENT:", curve + "3" + most + "TK =  2\n",
         Deck("free", "\n1 2 \n-1000", "\n1 3 \n-1000")},
        {data + "SPECIFIC HEAT:", curve + "2" + most + "TC =  1\n",
         Deck("free", "\n1 1 \n0 1 \n", "\n1 2 \n0 1 \n")},
        {data + "TIME FUNCTIONS", "IMAX=    3\n", Deck(lists, "    2\n       0.0  ", "    3\n       0.0  ")},
        {data + "TIME FUNCTIONS", "NIJE DEFINISANA", Deck(lists, "       9.0", "     0.001")},
        {"ERROR IN INPUTE DATA: THERE IS SOURCE TERM FOR ELEMENT GROUP, IZIP.GT.0",
         "TIME FUNCTIONS MUST BE INPUT AND NQE MUST BE GT.0\n INPUT DATA FOR NQE IS NQE=    0\n S T O P\n",
         Deck(kSquares, "\n1 1 2 1 2 1 2 1 1 1 2\n", "\n1 1 2 1 2 1 2 0 1 1 2\n")},
        {source, early, WithTable(0, endsEarly)},
        {source, many, WithTable(0, isLarge)},
        {flux, early, WithTable(1, endsEarly)},
        {"ERROR IN ENVIRONMENT TEMPERATURE FUNCTIONS INPUT DATA :", early, WithTable(2, endsEarly)},
        {functions + "CONVECTION COEFICIENT TEMPERATURE DEPENDENCE  :", many, WithTable(3, isLarge)},
        {flux, many, WithTable(4, isLarge)},
        {start, "CVOT BROJ=    1\n", Deck(lists, "         1    0  ", "         1    1  ")},
        {start + " POSLEDNJI CVOR MORA SE DOBITI SABIRANJEM KORAKA KOR POCEVSI OD PRVOG CVORA N1", "",
         Deck(lists, "   16   -1   11\n", "   16   -2   11\n")},
        {boundary, "ELEMENT NO.       1\n READIN " + ofNodes + "    3\n DO NOT CONSTITUTE SIDE OF ELEMENT\n",
         Deck("lines", "\n1 0 0 0 0 0 0 0 0 0 0\n1.\n",
              "\n1 1 1 0 0 0 0 0 0 0 0\n1 1\n9. 1.\n1.\n1 3 1 0 0 0 0\n0/\n0/\n")},
        {boundary,
         "ELEMENT NO.       2\n READ IN " + ofNodes + "    1       6\n DO NOT CONSTITUTE ONE EDGE OF",
         Deck(kSquares, "\n2 3 6 0 0", "\n2 1 6 0 0")},
        {boundary, ofNodes + "    4       4\n DO NOT CONSTITUTE ONE EDGE OF ELEMENT\n",
         Deck(kSquares, "\n1 4 1 1 1", "\n1 4 4 1 1")},
        {boundary,
         "READIN " + ofNodes + "   14      10       2       5\n DO NOT CONSTITUTE ONE SURFACE OF ELEMENT\n",
         Deck("functions", "\n1 14 10 2 6 1 1", "\n1 14 10 2 5 1 1")},
    };
}

// Of curves that do not hold the values, which lie between 0 and 1, or the times, which end at 0.04; of elements; of the
// solvers.
std::vector<StopCase> StopsOfSolving() {
    const std::string range = "CURVE ARGUMENT IS OUT OF RANGE", first = ",  No. =    1\n";
    const std::string diffusion = "DIFFUSION COEFICIENT - CONCENTRATION,  NO. =    1\n";
    const std::string analytic = "VREDNOST DOZVOLJENE TEMPERATURE", material = "BROJ, MAT=    1\n TEKUCA ";
    const std::string temperature = " ARGUMENT TEMPERATURE,  TEMP =", time = " ARGUMENT TIME, TIME = ",
                      surface = " ARGUMENT TEMPERATURE, TEMP =  1.0000E+00\n";
    const std::string limits = "1 2 3 1. 1. 1. 1. 1e6 -1e6";
    const std::string inner = "** GRESKA **: JAKOBIJAN JEDNAK ILI MANJI OD NULE ZA ELEMENT No.         1";
    const std::string place = "      KFIX=    0\n         R=-0.57735D+00\n";
    const std::string error = "** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ";
    const std::string ofElement = error + "ELEMENT No.         ";
    const std::string brick = "      14      13       9      10       6       5       1       2  ";
    const std::string insideOut = "      10       9      13      14       2       1       5       6  ";
    const std::string silent =
        Replaced(Deck("fixed", brick, insideOut), "2    1    0    1", "2   -1    0   -1");
    const std::string loose = Deck("lines", "1 5 3 4 ", "1 5 3 0 "); // no element has node 4
    const std::string pivot = "MATRICA SISTEMA NIJE POZITIVNO DEFINITNA";
    return {
        {range, diffusion, Deck("free", "\n1000 1", "\n.5 1")},
        {range, diffusion, Deck("fit", " 0.000e+00\nSTOP", " 2.000e+03\nSTOP"),
         "problem 1, fit in direction X, run 1, step 1, iteration 0"},
        {range, "CURVE SPECIFIC HEAT - TEMPERATURE" + first + temperature + "  7.8868E-01\n",
         Replaced(Deck("free", "0 1 2 0 1 1", "0 1 2 0 1 2"), "\n1 1 \n0 1 \n", "\n1 2 \n0 1 \n.5 1 \n")},
        {range, "CURVE HEAT SOURCE - TIME" + first + time,
         Deck("sources", "\n0 1 \n0.02 2", "\n.03 1 \n.04 2")},
        {range, "CURVE SURFACE FLUX - TIME" + first + time + " 1.0000E-02\n",
         Deck(kSquares, "\n0. 1.\n1. 1.\n", "\n.5 1.\n1. 1.\n")},
        {range, "CURVE ENVIRONMENT TEMPERATURE - TIME" + first + time,
         Deck(kSquares, "\n0. 2.\n", "\n.5 2.\n")},
        {range, "CURVE CONVECTION COEFICIENT - TEMPERATURE" + first + surface,
         Deck(kSquares, "\n100. 2.\n1 2\n-100. .5", "\n.5 2.\n1 2\n-100. .5")},
        {range, "CURVE RADIATION COEFICIENT - TEMPERATURE" + first + surface,
         Deck(kSquares, "\n100. .6", "\n.5 .6")},
        {"PREKORACENA MAXIMALNA " + analytic,
         material + "TEMPERATURA, TEMP=   0.78868E+00\n MAXIMALNA DOZVOLJENA TEMPERATURA U MATERIJALU, TOPM= "
                    "  0.50000E+00\n",
         Deck("built-in", limits, "0 0 0 1. 1. 1. 1. .5 -1e6")},
        {"PREKORACENA MINIMALNA " + analytic,
         material + "TEMPERATURA, TEMP=   0.21132E+00\n MANIMALNA DOZVOLJENA TEMPERATURA U MATERIJALU, TMNM= "
                    "  0.15000E+01\n",
         Deck("built-in", limits, "0 0 0 1. 1. 1. 1. 1e6 1.5")},
        {inner, place + "         S=-0.57735D+00\n         T=-0.57735D+00\n       DET=-",
         Deck("fixed", brick, insideOut)},
        {inner, "DET=-", silent, "", kConsole},                       // asks for no listing
        {inner, "DET=-", Deck("fibres", brick, insideOut), kReading}, // where fibres are laid over the mesh
        {ofElement + "3", "KFIX=    1\n", WithFlatFace(), "problem 1, step 1, iteration 1"},
        {ofElement + "1", "R=-0.57735D+00\n         S=-0.77460D+00\n      DET2=-",
         Deck(kSquares, "\n1 5 4 1 2", "\n1 5 2 1 4")},
        {ofElement + "1", "DET2= 0.00000D+00\n", Deck(kSquares, "\n4 0 0. 2.", "\n4 0 0. 1.")}, // of an edge
        {error + "ELENMENT No. =         1", "R=-0.57735D+00\n      DET1= 0.00000D+00\n",
         Deck("lines", "\n2 -1 1.", "\n2 -1 0.")},
        {"NIJE UGRADJENA ALFA INTEGRACIJA", "", Deck("lines", "\n1 0 0 9", "\n2 0 0 9"), "", kConsole},
        {pivot, "ZA JEDNACINU BR.   3\n", Replaced(loose, "\n1 0 0 2\n", "\n1 0 0 0\n")},
        {"ERROR IN SOLVER EXECUTION - STOPPING CALCULATION", "", loose, "", kConsole},
        {"Error in solver calling!", "", Deck("lines", "1.\n100. 2.\n1 1\n0. 1.", "0.\n100. 0.\n1 1\n0. 0."),
         "", kConsole},
        {"MAXIMUM NUMBER OF ITERATION ACHIEVED",
         "STEP NO. =    2\n NUMBER OF ITERATION, ITER =    1\n"
         " ALLOWED ERROR IN REGARD TO INITIAL INCREASE OF TEMPERATURE WITHIN STEP,\n"
         " (%) EPST = 1.00000E-07\n REF. VALUE, TREF = ",
         Deck("free", "STOP\n", Build(WithoutEquilibrium(true))), "problem 2, step 2, iteration 1"},
    };
}

void ExpectStop(const StopCase& stop, const std::string& usualPlace, const RunResult& run, int status) {
    const std::string what = stop.message + " " + stop.detail;
    const std::string line = "zurt: stopped: " + stop.message + " (" +
                             (stop.place.empty() ? usualPlace : stop.place) + "; see " +
                             (stop.onConsole ? "the console" : "the end of zurt.lst") + ")\n";
    EXPECT_EQ(run.status, status) << what;
    EXPECT_EQ(CountOf(run.errors, "zurt: stopped: "), 1) << what << run.errors;
    const std::string errors = "\n" + run.errors; // each line behind the end of another
    EXPECT_EQ(errors.substr(errors.rfind('\n', errors.size() - 2) + 1), line) << what;
    const std::string& text = stop.onConsole ? run.console : run.listing;
    const std::size_t at = text.find(stop.message + "\n");
    ASSERT_NE(at, std::string::npos) << what;
    EXPECT_TRUE(Contains(text.substr(at), stop.detail)) << what << text.substr(at);
}

void ExpectStops(const std::vector<StopCase>& stops, const std::string& usualPlace) {
    for (const StopCase& stop : stops) {
        Invocation invocation;
        invocation.arguments = {"zurt.dat"};
        if (stop.words > 0)
            invocation.arguments.push_back("--words=" + std::to_string(stop.words));
        else
            ExpectStop(stop, usualPlace, RunDeck(stop.deck), 0);
        ExpectStop(stop, usualPlace, RunProgram(FolderWith("zurt.dat", stop.deck), invocation), 1);
    }
}

// Faults: a message that isn't reached, or another one first; the dialogue's status on the command line or the other way
// round; no line on standard error, two, or one that isn't the last; other words than those of the message; a step while
// cards are read, that of the problem before in the second one; the wrong unit pointed at.
TEST(Stops, WhileReading) {
    ExpectStops(StopsOfReading(), kReading);
    EXPECT_EQ(CountOf(RunWell(Build(Bar(10))).listing, "S T E P  NUMBER"), 2) << "ten groups may be";
}

// Faults: those, and no step or iteration, one that counts from another number, a fit without its direction and run.
TEST(Stops, WhileSolving) {
    ExpectStops(StopsOfSolving(), kSolving);
}

void ExpectEndsWith(const std::string& text, const std::string& end) {
    ASSERT_GE(text.size(), end.size());
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

// Faults: one solve more or fewer than MAXIT + 1, the count of saved steps missing, or of the problem before, or there
// without any; the message in MESSAGES.LST without NDS, or its lines; results of the failed step.
TEST(Stops, WithoutEquilibrium) {
    BarDeck first = Bar(2);
    first.NPRINT = first.NULAZ = first.IGRAF = -1;
    first.end = "";
    const RunResult plain = RunWell(Build(first) + Build(WithoutEquilibrium(true)));
    EXPECT_TRUE(Contains(plain.errors, "note: step 2: no equilibrium within MAXIT = 1 iterations"));
    EXPECT_EQ(plain.messages, "      \n      \n");
    EXPECT_EQ(CountOf(plain.console, " ITERATION =  1"), 2 + 1);
    EXPECT_EQ(CountOf(plain.console, " ITERATION =  2"), 0);
    EXPECT_EQ(CountOf(plain.listing, " S T E P  NUMBER ="), 1);
    EXPECT_EQ(CountOf(plain.listing, "\n ACHIEVED VELUE OF TEMPERATURE INCREASE MODULE, DTMOD = "), 1);
    ExpectEndsWith(plain.listing, "\n THERE ARE LAST NCZZ=    1STEPS WRITTEN \n POSIBLE RESTART\n");
    EXPECT_EQ(CountOf(plain.graphics, "CVORNE KONCENTRACIJE"), 1);

    BarDeck bar = WithoutEquilibrium(false);
    bar.NDS = 1;
    bar.fixedFormat = true;
    const RunResult device = RunWell(Build(bar));
    EXPECT_EQ(CountOf(device.listing, " MAXIMUM NUMBER OF ITERATION ACHIEVED\n"), 1);
    EXPECT_EQ(CountOf(device.listing, "NCZZ"), 0);
    for (const char* lines :
         {"      \n MAXIMUM NUMBER OF ITERATION REACHED\n\n TIME= 5.00000E-01\n TIME STEP= 5.00000E-01\n"
          " STEP NO. =    1\n NUMBER OF ITERATIONS, ITER =    1\n CURRENT REFERENCE CONCENTRATION, "
          "CREFFERENCE= ",
          "\n ALLOWED PERCENTAGE ERROR WITH RESPECT TO CREFFERENCE, ERRORPERCENT ="
          " 1.00000E-07\n UNBALANCED RIGHT-HAND SIDE, UNBALANCE = "})
        EXPECT_EQ(CountOf(device.messages, lines), 1) << device.messages;
    ExpectEndsWith(device.messages, "\n\n Use smaller time step, or\n"
                                    " Refine the mesh (particularly in regions of high gradients), or\n"
                                    " Increase percentage error tolerance,ERRORPERCENT\n");
}

// Faults: rounding taken for increments that fall; tolerances told that do not end the iteration; of elements alike another
// than the first, or an element of a group that is less stiff.
TEST(Stops, IncrementsOfRounding) {
    BarDeck bar = Bar(2);
    bar.nx = 6;
    bar.width = 0.3;
    bar.diffusion = {{-1e13, 1.0}, {1e13, 1.0}};
    bar.start = 1e12;
    bar.EPSTA = 1e-9;
    bar.EPSTR = 1e-30;
    const std::string words = " of the step's largest, which is rounding. EPSTA ";
    const std::string errors = RunDeck(Build(bar)).errors;
    ASSERT_TRUE(Contains(errors, words)) << errors;
    EXPECT_TRUE(Contains(errors, "stiffest elements (group 1, element 1 for one, entry ")) << errors;
    BarDeck absolute = bar, relative = bar;
    absolute.EPSTA = NumbersBehind(errors, words).at(0);
    relative.EPSTR = NumbersBehind(errors, " works, or EPSTR ").at(0);
    for (const BarDeck& mended : {absolute, relative})
        EXPECT_FALSE(Contains(RunWell(Build(mended)).errors, "no equilibrium")) << errors;
}

// Faults: a check run that solves, that goes on to the next problem or that ends with another status; IREST 2 taken for
// a check, or for a restart at the time that stands on its card.
TEST(Stops, CheckOfInputData) {
    BarDeck bar = Bar(2);
    const std::string good = Build(bar), executed = ResultsOfListing(RunWell(good).listing);
    bar.IREST = 0;
    bar.end = "";
    const RunResult check = RunWell(Build(bar) + Replaced(good, bar.title, "Second of two"));
    ExpectEndsWith(check.listing, "\n           READING AND GENERATING OF INPUT DATA IS OVER\n"
                                  "\n           INPUT DATA ARE WITHOUT FORMAL ERROR\n"
                                  "\n           FOR EXECUTION OF PROGRAM ENTER:   IREST = 1\n");
    EXPECT_EQ(CountOf(check.listing, "MTOT =120000000\n"), 1);
    EXPECT_EQ(CountOf(check.listing, "Second of two"), 0);
    EXPECT_EQ(CountOf(check.console, "ITERATION"), 0);
    EXPECT_FALSE(std::filesystem::exists(check.folder + "/MASS-X.LST"));
    EXPECT_EQ(CountOf(executed, "S T E P  NUMBER"), 2);
    const std::string restart = Replaced(good, "\n1 0 0 0. 0\n", "\n2 0 7 1.5 0\n");
    EXPECT_EQ(ResultsOfListing(RunWell(restart).listing), executed);
}

// Faults: a linear problem without its note, an iterating one with it.
TEST(Stops, NotesOfLinearProblems) {
    BarDeck bar = Bar(2);
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

} // namespace
} // namespace zurt_test
