// What the cards of a problem gave: header fields, counts, the outlet; and the pointers into `A`. Nothing changes it once it
// is read.
//
// A field keeps its value from one problem of the deck to the next unless a card or a step of the driver sets it anew.
// Pointers are one-based word indices into `A`; the partition (run/partition.h) sets them for every problem.
#pragma once

#include "core/array_view.h"

#include <cstdint>

namespace zurt {

constexpr int kTitleLength = 80;

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
    std::int32_t NZADP4 = 0;                      // nodes shared with radial elements
    std::int32_t NDT = 0;                         // steps of all periods
    double TotalTime = 0.0;                       // their sum; 0 in a steady problem
    // From the file of prescribed values (model/prescribed_file.h), without one 0.
    std::int32_t NZADC = 0; // entries
    std::int32_t IGATH = 0; // 1 selects the second form of the gather (geometry/gather.h)
};

/// Outlet and time multiplier cards of problems with a nanochannel.
struct OutletFields {
    std::int32_t NPOUT2 = 0;           // mode; above 1 the number of pairs, negative an analytic expression
    double CONCOUT0 = 0.0;             // value of nodes without an equation
    double coefficients[4] = {};       // A, B, D, E of the analytic expression; nothing evaluates it
    double OutletStartOfRun = 0.0;     // value of a node without an equation as every pass begins with it
    double OutletEnd = 0.0;            // and at the end of every step
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
    Word LTFT1 = 0, LTFT2 = 0; // time functions: table, points per function
    Word LQE1 = 0, LQE2 = 0, LQP1 = 0, LQP2 = 0, LTOK1 = 0, LTOK2 = 0, LHP1 = 0, LHP2 = 0, LHR1 = 0, LHR2 = 0;
    Word LFO = 0;
    Word LTT1 = 0, LTT2 = 0, LTT3 = 0; // StepSolution, StepIncrement, StepStart
    Word LNODAL = 0, LSK = 0, LRHS = 0;
    // The section of prescribed values, empty while NZADC is 0.
    Word LPRES = 1, LZAD1 = 0, LZAD2 = 0, LZAD3 = 0;
    // Dormant: sections that keep their place in `A`, and nothing uses. LNANO(4) and LNANO(5) are two more.
    Word LRES1 = 1, LRES2 = 1, LEQV = 0;
};

struct Control {
    HeaderFields header;
    CurveCounts counts;
    OutletFields outlet;
    Pointers at;
};

} // namespace zurt
