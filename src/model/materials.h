// Material cards and the curves of conduction and specific heat, for problems without device modelling (NDS 0).
//
// Called once a problem by the driver, after TakeMaterialTables. Where the data lie: model/material_tables.h.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

struct MaterialCard {
    std::int32_t NFUN[3] = {}; // K function of each direction, 0: analytic form
    double PROP[3] = {};       // multiplier of each direction
    double DENS = 0.0;
    double TOPM = 0.0; // highest concentration of the analytic form
    double TMNM = 0.0; // lowest
};

struct ConductionHeaderCard {
    std::int32_t N = 0; // function number
    std::int32_t P = 0; // points
};

struct SpecificHeatHeaderCard {
    std::int32_t N = 0; // material number
    std::int32_t P = 0; // points
};

/// A point of either kind of curve.
struct MaterialPointCard {
    double ARGUMENT = 0.0;
    double VALUE = 0.0;
};

extern const CardLayout kMaterialCard;
extern const CardLayout kConductionHeaderCard;
extern const CardLayout kConductionPointCard;
extern const CardLayout kSpecificHeatHeaderCard;
extern const CardLayout kSpecificHeatPointCard;

/// Reads NMATT material cards, NTABK conduction functions and NTABC specific heat curves. More points than MAXTK or
/// MAXTC stop the run; numbers that name no function or material are deck errors. Specific heat curves of a problem
/// whose NSTAC is not positive have no room: they are read, checked and echoed, and dropped.
void ReadMaterials(Run& run);

} // namespace zurt
