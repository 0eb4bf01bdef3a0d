// The homogenization card and the run state of a fit, which element code reads.
#pragma once

#include <cstdint>

namespace zurt {

/// First card of the fibre data, after its normalisation.
struct HomogenizationCard {
    std::int32_t NSETS = 0;                             // fibre sets
    std::int32_t IEHM = 0;                              // equivalent homogeneous medium
    std::int32_t NFIT = 0;                              // homogenization
    std::int32_t NFSTEP = 0;                            // steps of one run of the fit
    std::int32_t NFITMAX = 0;                           // iteration limit
    double FITERR = 0.0;                                // relative tolerance on mass
    std::int32_t INDFITX = 0, INDFITY = 0, INDFITZ = 0; // directions to fit
    std::int32_t INDDEG = 0;                            // main diffusion direction
    std::int32_t IHEQ = 0;                              // fit HEQ after the D-C curve
    std::int32_t IDCC = 0;                              // fit the D-C curve
    std::int32_t IDIAM = 0;                             // subtract the molecule's radius from wall distances
    std::int32_t IDCSF = 0;
    double D1D = 0.0, D2D = 0.0; // curve ends to start from, when their card is read
};

struct FitState {
    HomogenizationCard card;
    std::int32_t activeDirection[4] = {}; // flags at 1..3
    std::int32_t NACTDIR = 0;             // how many of them are 1
    std::int32_t IFINALRUN = 1;           // 1: this run writes results

    std::int32_t ISFOFF = 0;  // 1: correction factors are off
    std::int32_t ITERFIT = 0; // iteration of the fit in work; runs with fibres do not count
    double HEQ = 0.0;         // wall distance at which the homogeneous medium reads its factors now
    double HEQ0 = 0.0;        // its start value, from the geometry of the fibres (space models)
    double HEQDIR[4] = {};    // by direction 1..3
    double D1DIR[4] = {};     // first value of the D-C curve by direction 1..3, for the final run
    double D2DIR[4] = {};     // last value
};

} // namespace zurt
