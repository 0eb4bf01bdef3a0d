// The homogenization card, the run state of a fit, which element code reads, and what fits and the direct calculation keep
// on the heap.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace zurt {

/// First card of the fibre data, after its normalisation.
struct HomogenizationCard {
    std::int32_t NSETS = 0;                             // fibre sets
    std::int32_t IEHM = 0;                              // equivalent homogeneous medium, to begin with
    std::int32_t NFIT = 0;                              // homogenization
    std::int32_t NFSTEP = 0;                            // steps of one run of the fit
    std::int32_t NFITMAX = 0;                           // iteration limit
    double FITERR = 0.0;                                // relative tolerance on mass
    std::int32_t INDFITX = 0, INDFITY = 0, INDFITZ = 0; // directions to fit
    std::int32_t INDDEG = 0;                            // main diffusion direction, to begin with
    std::int32_t IHEQ = 0;                              // fit HEQ after the D-C curve
    std::int32_t IDCC = 0;                              // fit the D-C curve
    std::int32_t IDIAM = 0;                             // subtract the molecule's radius from wall distances
    std::int32_t IDCSF = 0;
    double D1D = 0.0, D2D = 0.0; // curve ends to start from, when their card is read
};

/// The run state of a fit. One search at a time: on HEQ, or on the first value of the D-C curve. Element code reads
/// IEHM, ISFOFF, ITERFIT, HEQ and IFINALRUN. All of it but the card begins anew
/// with every problem.
struct FitState {
    HomogenizationCard card;
    std::int32_t IEHM = 0;                // of the model in work: 0 while the model with fibres runs
    std::int32_t INDDEG = 0;              // direction in work
    std::int32_t activeDirection[4] = {}; // flags at 1..3
    std::int32_t NACTDIR = 0;             // how many of them are 1
    std::int32_t IFINALRUN = 1;           // 1: this run writes results

    double MASSFIB = 0.0; // mass through the inlet in the run with fibres
    double MASSEHM = 0.0; // and in the last run of the equivalent medium
    double DMASS = 0.0;   // MASSEHM - MASSFIB
    double MASSREF = 0.0; // MASSFIB at iteration 2; ERRFIT is relative to it
    double ERRFIT = 0.0;  // relative error of the iteration

    std::int32_t ITERFIT = 0; // iteration of the fit in work; runs with fibres do not count
    std::int32_t IPHASE = 0;  // 0: the next run is of the model with fibres; 1: of the equivalent medium
    std::int32_t ISFOFF = 0;  // 1: correction factors are off
    std::int32_t IFITEND = 0; // 1: the fit of this direction has ended
    std::int32_t IDCEND = 0;  // 1: the D-C curve has been found
    std::int32_t SEENPOS = 0; // a DMASS above 0 has been seen in this stage
    std::int32_t SEENNEG = 0; // one of 0 or below

    double ERRPOS = 0.0;       // relative error of the last run with DMASS above 0 in this stage
    double ERRNEG = 0.0;       // and of the last one with DMASS not above 0
    bool clampedCurve = false; // a curve was tried whose end would have fallen below 0

    double HEQ = 0.0;                   // wall distance at which the homogeneous medium reads its factors now
    double HEQ0 = 0.0;                  // its start value, from the geometry of the fibres (space models)
    double HEQDIR[4] = {};              // by direction 1..3
    double HEQTRY = 0.0, HEQSTEP = 0.0; // value tried, relative step
    double HEQPOS = 0.0, HEQNEG = 0.0;  // HEQ of the last run with DMASS above 0, and not above 0

    double D1 = 0.0, D2 = 0.0;             // ends of the curve that the search on it refers to
    double DCTRY = 0.0, DCSTEP = 0.0;      // first value tried, relative step
    double DCPOS = 0.0, DCNEG = 0.0;       // DCTRY of the last run with DMASS above 0, and not above 0
    double DMASSPOS = 0.0, DMASSNEG = 0.0; // DMASS there
    double DCFIT1 = 0.0, DCFIT2 = 0.0;     // fitted curve ends
    double D1DIR[4] = {}; // first value of the D-C curve by direction 1..3, for the final run
    double D2DIR[4] = {}; // last value
};

/// The cross-section of one direction: a plane of the mesh, and the elements that stand on its high side.
struct CrossSection {
    bool found = false;
    std::vector<std::int32_t> nodes;                 // in the plane
    std::vector<std::vector<std::int32_t>> elements; // by group at 1..NGET
};

/// Flows through the inlet cross-section and the start of runs: filled by homogenization/mass_monitor.h and
/// homogenization/recorded_pass.h, empty in other problems.
struct MassTables {
    std::vector<double> FLUXMICRO;       // flow by step 1..NDT at 0..NDT-1, in the model with fibres
    std::vector<double> FLUXEQUIV;       // and in the equivalent medium
    std::array<CrossSection, 4> section; // by direction 1..3
    std::int32_t flowRows = 0;           // rows of flows of the pass in work in the mass file
    std::vector<double> nodalSums;       // 1..NP at 0..NP-1: work space for residuals
    std::vector<double>
        startValues; // 1..NP: initial concentration of every node, with an equation or without
};

} // namespace zurt
