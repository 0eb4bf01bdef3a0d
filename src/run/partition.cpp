#include "run/partition.h"

#include "core/format.h"
#include "core/stop.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>

namespace zurt {

namespace {

[[noreturn]] void StopOnInputOverflow(Run& run) {
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(A)",
          Say(run,
              "NEDOVOLJNA DIMENZIJA U OSNOVNOM RADNOM VEKTORU A ZA UCITAVANJE ULAZNIH "
              "PODATAKA",
              " UNSUFFICIENT DIMENSION OF WORKING VECTOR A FOR READ IN INPUT DATA"));
    Write(unit, "(A,I10)", Say(run, "POTREBNA DIMENZIJA, LMAX=", " REQUIRED DIMENSION, LMAX ="), run.A.LMAX);
    Write(unit, "(A,I10)", Say(run, "RASPOLOZIVA DIMENZIJA, NTOTA=", " AVAILABLE DIMENSION, NTOTA="),
          run.A.NTOTA);
    NoteSectionOutside(run);
    StopRun(unit);
}

// Nine vectors of NP words, one after the other.
void TakeResultVectors(Run& run) {
    constexpr std::array<const char*, 10> names = {"",      "LNDS1", "LNDS2", "LNDS3", "LNDS4",
                                                   "LNDS5", "LNDS6", "LNDS7", "LNDS8", "LNDS9"};
    Pointers& at = run.control.at;
    const Word NP = run.control.header.NP;
    for (int i = 1; i <= 9; ++i)
        at.LNDS[i] = TakeWords(run.A, names[static_cast<std::size_t>(i)], NP);
}

// Words of a vector by equation, and of the matrix: as the largest layout of the problem needs them.
Word EquationWords(const Run& run) {
    return std::max(run.sizes.JEDN, run.sizes.EquationRoom);
}
Word MatrixWords(const Run& run) {
    return std::max(run.sizes.NWK, run.sizes.MatrixRoom);
}

} // namespace

void NoteSectionOutside(const Run& run) {
    const SectionRecord* section = FirstSectionOutside(run.A);
    if (section != nullptr)
        WriteNote(std::string("the working vector has ") + std::to_string(run.A.NTOTA) + " words; " +
                  section->name + " takes " + std::to_string(section->length) + " behind word " +
                  std::to_string(section->first - 1) + " (zurt --words N DECK gives it more)");
}

void StopIfInputOverflows(Run& run) {
    if (run.A.LMAX > run.A.NTOTA)
        StopOnInputOverflow(run);
}

void TakePeriodTables(Run& run) {
    const Word NPER = run.control.header.NPER;
    run.control.at.LNKDT = TakeWords(run.A, "LNKDT", NPER);
    run.control.at.LDTDT = TakeWords(run.A, "LDTDT", NPER);
    // While the cards are counted the step list has room for one step a period.
    run.control.at.LDT = TakeWords(run.A, "LDT", NPER);
    StopIfInputOverflows(run);
}

void TakeStepList(Run& run) {
    ReleaseFrom(run.A, run.control.at.LDT);
    run.control.at.LDT = TakeWords(run.A, "LDT", run.control.counts.NDT);
    StopIfInputOverflows(run);
}

void TakeNodeArrays(Run& run) {
    const HeaderFields& header = run.control.header;
    Pointers& at = run.control.at;
    const Word NP = header.NP;
    at.LCORD = TakeWords(run.A, "LCORD", 3 * NP);
    at.LID = TakeWords(run.A, "LID", NP);
    at.LNODEV = TakeWords(run.A, "LNODEV", NP);
    at.LPOT = TakeWords(run.A, "LPOT", header.ITOR == 2 ? header.PotentialFunctionSize : 0);
    at.LDIRD = TakeWords(run.A, "LDIRD", header.IDIRECTD == 1 ? 2 * Word{run.control.counts.NDT} : 0);
    std::fill(std::begin(at.LNDS), std::end(at.LNDS), at.LDIRD);
    if (header.NDS != 0) {
        TakeWords(run.A, "gap of NP words", NP);
        TakeResultVectors(run);
    }
    StopIfInputOverflows(run);
    // No card sets the potential of ITOR 2: it is 0, whatever an earlier problem left in these words.
    ClearWords(run.A, at.LPOT, at.LDIRD - 1);
    if (run.A.LMAX >= run.A.NTOTA) // here a table that exactly fills A is refused already
        StopOnInputOverflow(run);
    if (header.NDS != 0)
        ClearWords(run.A, at.LNDS[1], run.A.LMAX - 1);
}

void TakeSharedNodeList(Run& run, std::int32_t sharedNodes) {
    Word words = sharedNodes;
    if (sharedNodes <= 0)
        words = run.job.LastISUB4 == 1 ? run.control.header.NP : 0;
    run.control.at.LSUBS = TakeWords(run.A, "LSUBS", words);
}

void SetSolver(Run& run, std::int32_t SolverSelector) {
    const SolverChoice choice = run.options.solver;
    const bool sparse = choice == SolverChoice::OfDeck ? SolverSelector == 2 : choice == SolverChoice::Sparse;
    run.sizes.SparseMode = sparse ? 1 : 0;
}

void SetEquations(Run& run, std::int32_t JEDN) {
    run.sizes.JEDN = JEDN;
}

void SetMatrixLength(Run& run, Word NWK) {
    run.sizes.NWK = NWK;
}

void ReserveRoom(Run& run, std::int32_t JEDN, Word NWK) {
    run.sizes.EquationRoom = JEDN;
    run.sizes.MatrixRoom = NWK;
}

void TakeDiagonalPositions(Run& run) {
    const Word words = Word{run.sizes.JEDN} + 1;
    run.control.at.LMAXA = TakeWords(run.A, "MAXA", words);
    run.sizes.DiagonalRoom = 2 * words;
    StopIfInputOverflows(run);
    ClearWords(run.A, run.control.at.LMAXA, run.A.LMAX - 1);
}

void StopIfLayoutOverflows(Run& run) {
    const WorkingVector& A = run.A;
    if (run.sizes.SparseMode == 1 || A.LMAX <= A.NTOTA)
        return;
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(A)",
          Say(run, "NEDOVOLJNA DIMENZIJA U VEKTORU A-ZA FORMIRANJE MAXA",
              " UNSUFFICIENT DIMENSION OF WORKING VECTOR A FOR MAXA"));
    const Format number(Say(run, "(A,I9)", "(A,I10)"));
    Write(unit, number, Say(run, "POTREBNA DIMENZIJA , LMAX=", " REQUIRED DIMENSION, LMAX ="), A.LMAX);
    Write(unit, number, Say(run, "RASPOLOZIVA DIMENZIJA , NTOTA=", " AVAILABLE DIMENSION, NTOTA="), A.NTOTA);
    NoteSectionOutside(run);
    StopRun(unit);
}

void MoveDiagonalPositions(Run& run, std::int32_t JEDN) {
    const IntArray old = DiagonalPositions(run);
    const Word words = Word{JEDN} + 1;
    run.control.at.LMAXA = TakeWords(run.A, "MAXA of all nodes", words);
    run.sizes.DiagonalRoom = 2 * words;
    StopIfInputOverflows(run);
    Copy<std::int32_t>(old, DiagonalPositions(run));
}

void TakeDiffusionCurves(Run& run) {
    const Word NMATT = run.control.header.NMATT;
    run.control.at.LNPMAT = TakeWords(run.A, "LNPMAT", NMATT);
    run.control.at.LDCT = TakeWords(run.A, "LDCT", 2 * NMATT * run.control.counts.MAXPMAT);
    StopIfInputOverflows(run);
}

void TakeNanochannelVectors(Run& run) {
    run.control.at.LNANO[4] = TakeWords(run.A, "LNANO4", 3 * Word{run.control.header.NP});
    run.control.at.LNANO[5] = TakeWords(run.A, "LNANO5", run.control.header.NP);
}

void TakeFitColumn(Run& run) {
    run.control.at.LFIT = TakeWords(run.A, "LFIT", run.control.counts.MAXPMAT);
}

void TakeFibreNodes(Run& run) {
    run.control.at.LFIBN = TakeWords(run.A, "LFIBN", run.control.header.NP);
}

void TakeMaterialTables(Run& run) {
    const HeaderFields& header = run.control.header;
    const CurveCounts& counts = run.control.counts;
    Word* at = run.control.at.LMAT;
    std::fill(at, at + 10, run.A.LMAX);
    if (header.NDS == 0) {
        const Word NMATT = header.NMATT;
        const Word NTABK = std::max(counts.NTABK, 1);
        at[1] = TakeWords(run.A, "LMAT1", 3 * NMATT);
        at[2] = TakeWords(run.A, "LMAT2", 3 * NMATT);
        at[3] = TakeWords(run.A, "LMAT3", NMATT);
        at[4] = TakeWords(run.A, "LMAT4", NMATT);
        at[5] = TakeWords(run.A, "LMAT5", NMATT);
        at[6] = TakeWords(run.A, "LMAT6", NTABK);
        at[7] = TakeWords(run.A, "LMAT7", 2 * NTABK * counts.MAXTK);
        at[8] = at[9] = run.A.LMAX;
        if (header.NSTAC > 0) {
            at[8] = TakeWords(run.A, "LMAT8", NMATT);
            at[9] = TakeWords(run.A, "LMAT9", 2 * NMATT * counts.MAXTC);
        }
    }
    StopIfInputOverflows(run);
}

void TakeFunctionTable(Run& run, const char* name, std::int32_t functions, std::int32_t points,
                       Word& countsAt, Word& tableAt) {
    countsAt = TakeWords(run.A, name, functions);
    tableAt = TakeWords(run.A, name, 2 * Word{functions} * points);
    StopIfInputOverflows(run);
}

void TakeOutletPairs(Run& run, std::int32_t pairs) {
    run.control.at.LOUT1 = TakeWords(run.A, "outlet pairs", 2 * Word{pairs});
    StopIfInputOverflows(run);
}

void TakeTimeMultiplierPairs(Run& run, std::int32_t pairs) {
    run.control.at.LOUT2 = TakeWords(run.A, "time multiplier pairs", 2 * Word{pairs});
    StopIfInputOverflows(run);
}

void TakeReservoirVectors(Run& run, bool gap) {
    const Word NP = run.control.header.NP;
    if (gap)
        TakeWords(run.A, "gap of NP words ahead of LRES1", NP);
    run.control.at.LRES1 = run.control.at.LRES2 = TakeWords(run.A, "LRES1", NP);
    StopIfInputOverflows(run);
}

void TakeShapeFactors(Run& run) {
    run.control.at.LFO = TakeWords(run.A, "LFO", run.control.counts.NFO);
}

void TakeSolutionVectors(Run& run) {
    const Word words = EquationWords(run);
    run.control.at.LTT1 = TakeWords(run.A, "StepSolution", words);
    run.control.at.LTT2 = TakeWords(run.A, "StepIncrement", words);
    run.control.at.LTT3 = TakeWords(run.A, "StepStart", words);
    StopIfInputOverflows(run);
    ClearWords(run.A, run.control.at.LTT1, run.A.LMAX - 1);
}

void TakeSolverVectors(Run& run) {
    Pointers& at = run.control.at;
    const Word NZADC = run.control.counts.NZADC;
    at.LZAD1 = TakeWords(run.A, "LZAD1", NZADC);
    at.LZAD2 = TakeWords(run.A, "LZAD2", NZADC);
    at.LZAD3 = TakeWords(run.A, "LZAD3", NZADC);
    at.LNODAL = TakeWords(run.A, "NodalValues", run.control.header.NP);
    at.LEQV = TakeWords(run.A, "LEQV", EquationWords(run));
    at.LSK = TakeWords(run.A, "SkylineMatrix", MatrixWords(run));
    at.LRHS = TakeWords(run.A, "RHS", EquationWords(run));
    run.A.LMAXM = run.A.LMAX;
}

void WriteSizeReport(Run& run) {
    TextUnit& listing = run.units.listing;
    Write(listing, "('1'///6X,A)",
          Say(run, "PODACI O DIMENZIJAMA MATRICA SISTEMA I RADNOG VEKTORA",
              "DATA ABOUT DIMENSIONS OF SYSTEM MATRIX AND WORKING VECTOR"));
    const Format entry("(///11X,A,I9)");
    Write(listing, entry,
          Say(run, "BROJ JEDNACINA .............................. JEDN =",
              "NUMBER OF EQUATIONS ......................... JEDN ="),
          run.sizes.JEDN);
    Write(listing, entry,
          Say(run, "BROJ ELEMENATA U MATRICI SISTEMA ............. NWK =",
              "NUMBER OF ELEMENTS INTO MATRIX OF SYSTEM ..... NWK ="),
          run.sizes.NWK);
    Write(listing, entry,
          Say(run, "ZAUZET PROSTOR U RADNOM VEKTORU ............ LMAXM =",
              "REQUIRED DIMENSION INTO WORKING VECTOR ..... LMAXM ="),
          run.A.LMAXM);
    Write(listing, entry,
          Say(run, "RASPOLOZIV PROSTOR U RADNOM VEKTORU ........ NTOTA =",
              "MAXIMUM TOTAL STORAGE AVAILABLE ............. MTOT ="),
          run.A.NTOTA);
}

std::string FaultOfMatrixLength(const Run& run) {
    constexpr Word kMost = std::numeric_limits<std::int32_t>::max();
    const Word words = MatrixWords(run);
    if (words < kMost)
        return "";
    return "the skyline matrix takes " + std::to_string(words) + " words, and its positions end at " +
           std::to_string(kMost) + ": choose the sparse solver (SolverSelector 2 on the format card)";
}

void StopIfSystemOverflows(Run& run) {
    if (run.A.LMAXM <= run.A.NTOTA) {
        if (const std::string fault = FaultOfMatrixLength(run); !fault.empty())
            StopWithLibraryError(fault);
        return;
    }
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(A)",
          Say(run, "NEDOVOLJNA DIMENZIJA ZA SMESTANJE MATRICA I VEKTORASISTEMA :",
              " UNSUFFICIENT DIMENSION OF WORKING VECTOR:"));
    Write(unit, "(A,I10)", Say(run, "POTREBNA DIMENZIJA, LMAXM=", " REQUIRED DIMENSION LMAXM ="),
          run.A.LMAXM);
    Write(unit, "(A,I10)", Say(run, "RASPOLOZIVADIMENZIJA, NTOTA =", " AVAILABLE DIMENSION NTOT ="),
          run.A.NTOTA);
    if (run.control.header.NDS > 0) {
        TextUnit& messages = run.units.messages;
        Write(messages, "(' UNSUFFICIENT DIMENSION OF WORKING ARRAY:')");
        Write(messages, "(' REQUIRED DIMENSION LMAXM =',I10)", run.A.LMAXM);
        Write(messages, "(' AVAILABLE DIMENSION NTOT =',I10)", run.A.NTOTA);
        Write(messages,
              "(/' ** CONTACT THE SOFTWARE ZUR-T DEVELOPER TO INCREASE THE SIZE',' OF TH WORKING ARRAY')");
        Write(messages, "(' ** OR USE COARSER MESH'/)");
        Write(messages, "('  PROGRAM STOPS')");
    }
    NoteSectionOutside(run);
    StopRun(unit);
}

} // namespace zurt
