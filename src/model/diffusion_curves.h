// Diffusion coefficient against concentration, one curve a material, for device and nanochannel models.
//
// Called once a problem by the driver, after TakeDiffusionCurves, when NDS is not 0 or NANOCH is positive. Where the
// curves lie: model/material_tables.h.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

struct DiffusionHeaderCard {
    std::int32_t N = 0; // curve number, which is a material number; 0 becomes 1
    std::int32_t P = 0; // points; 0 becomes 1
};

struct DiffusionPointCard {
    double CONC = 0.0;
    double DIFF = 0.0;
};

extern const CardLayout kDiffusionHeaderCard;
extern const CardLayout kDiffusionPointCard;

/// Clears and reads NMATT curves; the cards are taken by columns unless all are free (ReadImageFields). A curve number outside
/// 1..NMATT and more than MAXPMAT points are deck errors.
void ReadDiffusionCurves(Run& run);

} // namespace zurt
