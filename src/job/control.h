// The run-wide control record: the header fields of the deck, counts, run state and the pointers into `A`.
//
// Integers are 32-bit, reals 64-bit. A field keeps its value from one problem of the deck to the next unless a card or
// a step of the driver sets it anew; what is set anew for every problem says so. Pointers are one-based word
// indices into `A`; the partition (job/partition.h) sets them all for every problem.
#pragma once

#include "core/array_view.h"
#include "core/language.h"

#include <cstdint>

namespace zurt {

constexpr int kTitleLength = 80;
constexpr int kMaxGroups = 10;

/// Fields of the title, format, device and degradation cards, of basic data, control and execution card.
struct HeaderFields {
    char title[kTitleLength + 1] = {}; // 80 characters, blank padded

    // Format card.
    std::int32_t INDFOR = 0;         // 1 free, 2 fixed format
    std::int32_t NDS = 0;            // device modelling
    std::int32_t NANOCH = 0;         // nanochannel modelling
    std::int32_t SolverSelector = 0; // 2 selects the sparse solver

    // Device cards.
    double ELFIB = 0.0, DFIB = 0.0, WFIB = 0.0;              // box of the fibres, X, Y, Z
    double ELPCL = 0.0;                                      // read and echoed only
    double AMOLAR = 0.0;                                     // factor on nodal mass fluxes
    double DMOLECULE = 0.0;                                  // diameter of the diffusing molecules
    std::int32_t NXFIB = 0, NYFIB = 0, NZFIB = 0, NXPCL = 0; // divisions of the regular grid
    std::int32_t INDDEGR = 0;                                // 1: a degradation card follows

    // Degradation card.
    double DEGALPHA = 0.0, DEGIPOR = 0.0, DEGPART = 0.0, DEGRATEK = 0.0, DEGRATEKW = 0.0;
    double DIFFCDS = 0.0, DIFFCDL = 0.0;

    // Basic data.
    std::int32_t NP = 0;       // nodes
    std::int32_t NGET = 0;     // element groups
    std::int32_t NMATT = 0;    // materials
    std::int32_t NSTAC = 0;    // 0 steady, else transient
    std::int32_t NPER = 0;     // periods of constant step
    std::int32_t NPRINT = 0;   // printing interval, negative: none
    std::int32_t IANIZ = 0;    // anisotropy
    std::int32_t NULAZ = 0;    // kind of input printout
    std::int32_t ITOR = 0;     // analogue problems
    std::int32_t IGRAF = 0;    // graphics interval, negative: none
    std::int32_t IDIRECTD = 0; // direct effective coefficient

    // Control card.
    std::int32_t INTEB = 0;      // time integration
    std::int32_t INDSC = 0;      // echoed only
    std::int32_t IFORM = 0;      // 1: listing values in F10.3
    std::int32_t MAXIT = 0;      // iteration limit
    double EPSTA = 0.0;          // absolute accuracy
    double EPSTR = 0.0;          // relative accuracy
    std::int32_t NJRAP = 0;      // echoed only
    std::int32_t IPASSPRINT = 0; // stored value: card value plus one

    // Execution card.
    std::int32_t IREST = 0;                 // 0: check of input only
    std::int32_t NCZK = 0;                  // last steps to keep, 0 all
    std::int32_t NCZR = 0;                  // echoed only
    double VREM0 = 0.0;                     // echoed only
    std::int32_t PotentialFunctionSize = 0; // words of LPOT under ITOR 2
};

/// Counts of curves, functions and tables: material header, general boundary card, radiation card, time functions.
struct CurveCounts {
    std::int32_t NANLK = 0, NTABK = 0, MAXTK = 0; // conduction: analytic, tabular, most points
    std::int32_t NANLC = 0, NTABC = 0, MAXTC = 0; // capacity
    std::int32_t MAXPMAT = 0;                     // most points of a diffusion curve
    std::int32_t NTABFT = 0, MAXTFT = 0;          // time functions
    std::int32_t NPOC = 0;                        // initial value groups
    std::int32_t NQP = 0, MAXTQP = 0;             // surface fluxes
    std::int32_t NHP = 0, MAXTHP = 0;             // convection coefficients
    std::int32_t NTOK = 0, MAXTOK = 0;            // environment values
    std::int32_t NQE = 0, MAXTQE = 0;             // volume sources
    std::int32_t NHR = 0, MAXTHR = 0;             // radiation
    double SBC = 0.0;                             // Stefan-Boltzmann constant
    std::int32_t NFO = 0;                         // shape factors
    std::int32_t NZADC = 0;                       // prescribed concentrations; no card sets it
    std::int32_t NZADP4 = 0;                      // nodes shared with radial elements
};

/// Outlet and time multiplier cards of problems with a nanochannel.
struct OutletFields {
    std::int32_t NPOUT2 = 0;           // mode; above 1 the number of pairs, negative an analytic expression
    double CONCOUT0 = 0.0;             // value of nodes without an equation
    double coefficients[4] = {};       // A, B, D, E of the analytic expression; nothing evaluates it
    std::int32_t ITMF1 = 0, ITMF2 = 0; // 1: the time multiplier acts in group 1, 2
    std::int32_t NTMF = 0;             // its points
};

/// Word pointers into `A`, in the order of the partition.
struct Pointers {
    Word LNKDT = 0, LDTDT = 0, LDT = 0;
    Word LCORD = 0, LID = 0, LNODEV = 0, LPOT = 0, LDIRD = 0;
    Word LNDS[10] = {}; // LNDS1 to LNDS9 at 1..9
    Word LSUBS = 0, LMAXA = 0;
    Word LNPMAT = 0, LDCT = 0;
    Word LNANO[6] = {}; // LNANO1 to LNANO5
    Word LFIT = 0, LFIBN = 0;
    Word LMAT[10] = {};        // LMAT1 to LMAT9
    Word LOUT1 = 0, LOUT2 = 0; // outlet pairs, time multiplier pairs
    Word LPRES = 1, LRES1 = 1, LRES2 = 1;
    Word LTFT1 = 0, LTFT2 = 0; // time functions: table, points per function
    Word LQE1 = 0, LQE2 = 0, LQP1 = 0, LQP2 = 0, LTOK1 = 0, LTOK2 = 0, LHP1 = 0, LHP2 = 0, LHR1 = 0, LHR2 = 0;
    Word LFO = 0;
    Word LTT1 = 0, LTT2 = 0, LTT3 = 0; // StepSolution, StepIncrement, StepStart
    Word LZAD1 = 0, LZAD2 = 0, LZAD3 = 0;
    Word LNODAL = 0, LEQV = 0, LSK = 0, LRHS = 0;
};

/// State of the run and of the problem in work.
struct RunState {
    std::int32_t Language = kEnglish; // set at start-up, nothing changes it
    std::int32_t ListingOpen = 0, GraphicsOpen = 0, CardListingDone = 0;
    std::int32_t PassCounter = 1;      // pass of a direct calculation
    std::int32_t ResultsPhaseFlag = 0; // 1 while groups are visited for results
    std::int32_t NonlinearFlag = 0;    // 1: the problem iterates within a step
    std::int32_t ConductivityNonlinear = 0, CapacityNonlinear = 0;
    std::int32_t GraphicsEnabled = 0;         // 1: this pass may write steps to the graphics file
    std::int32_t SparseMode = 0;              // 1 when SolverSelector is 2
    std::int32_t SolverReportFlag = 1;        // 1: the sparse solver reports its stages on the console
    std::int32_t SourcePresent = 0;           // some group has IZIP positive
    std::int32_t ConcentrationSource = 0;     // some group has IZIP equal to 2
    std::int32_t SubstructurePresent = 0;     // some group has ISUB4 positive
    std::int32_t LastISUB4 = 0;               // ISUB4 of the last group card read
    std::int32_t GatherByPrescribedValue = 0; // selects the second form of the gather; nothing sets it

    std::int32_t ProblemNumber = 0; // of the problem in work, from 1
    std::int32_t Solving = 0;       // 1 once the problem has been read

    double TIME = 0.0;      // end of the current step
    double StartTime = 0.0; // start of the current step
    double TimeStep = 0.0;
    std::int32_t KOR = 0, ITER = 0;
    std::int32_t NDT = 0;  // number of steps
    std::int32_t JEDN = 0; // number of equations
    Word NWK = 0;          // length of SkylineMatrix
    std::int32_t EquationRoom =
        0; // JEDN and NWK for which the partition keeps room: a fit changes between layouts
    Word MatrixRoom = 0;
    Word DiagonalRoom = 0; // integers that the section of MAXA holds
    std::int32_t NCZZ = 0; // steps held in the step file

    double OutletStart = 0.0; // value of nodes without an equation at the start of the step
    double OutletEnd = 0.0;   // and at its end
    double OutletStartOfRun =
        0.0; // OutletStart as the input left it; every new run of the time loop begins with it

    double GraphicsInterval = 0.0;    // IGRAF times TimeStep
    std::int32_t GraphicsLimit = 0;   // NDT / IGRAF, formed by transient passes only
    std::int32_t GraphicsCounter = 0; // steps since the last graphics output
    std::int32_t GraphicsWritten = 0; // graphics outputs of this pass
    std::int32_t PrintCounter = 0;    // steps since the last listing output
    std::int32_t ResultsWritten = 0;  // listing outputs of this pass

    std::int32_t FactorFlag = 0; // 1: assemble and factor the matrix
    double ReferenceNorm = 0.0;  // TREF
    double IncrementNorm = 0.0;  // DTMOD
    double LowestIncrement =
        0.0; // smallest IncrementNorm of the step so far, and the iteration that reached it
    std::int32_t LowestIteration = 0;

    double POROSITY = 1.0;

    std::int32_t TimingTable[4][3] = {}; // clocks of the execution report; nothing fills it
};

struct Control {
    HeaderFields header;
    CurveCounts counts;
    OutletFields outlet;
    Pointers at;
    RunState state;
};

} // namespace zurt
