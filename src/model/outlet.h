// Outlet and reservoir cards of device problems with a nanochannel, and the time multiplier of diffusion coefficients.
//
// Concentrations and times are in the deck's units. Called by the driver with NANOCH positive and an NDS that is neither
// 0 nor 2, where other problems have their time functions; the multiplier is read by the coefficient code at every visit
// of a group.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

extern const CardLayout kOutletModeCard;
extern const CardLayout kOutletConcentrationCard;
extern const CardLayout kOutletCoefficientsCard;
extern const CardLayout kTimeMultiplierCard;
extern const CardLayout kTimePairCard;

/// Reads the cards, by columns unless all are free (ReadImageFields) and always with their echo. With NPOUT2 0 or 1 both
/// outlet concentrations, at the start of the step and at its end, take CONCOUT0. The other modes are read and echoed and
/// leave them alone. Takes the tables and the reservoir vectors in `A`. A negative NTMF, and an NTMF of 0 under a switch
/// that is on, are deck errors.
void ReadOutletData(Run& run);

/// A new problem begins with the outlet's start value that the last step of the one before left; cards may set it.
void CarryOutletOver(Run& run);

/// Factor on the diffusion coefficients of group NGE at the current TIME: that of the multiplier's table for groups 1 and
/// 2 whose switch is on, 1 for all others.
double TimeMultiplierOfGroup(const Run& run, std::int32_t NGE);

} // namespace zurt
