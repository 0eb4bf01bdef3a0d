// Coefficients of an element at a Gauss point: diffusion (conduction) in the three axes and capacity.
//
// With NDS not 0 the diffusion curve of the material is looked up at the absolute concentration, times the time multiplier of the
// group, and the capacity is 1; factors of fibres are the caller's (elements/forming/element_visit.h).
// With NDS 0 coefficients are constants of the material, or come from its curves or from the built-in polynomials at the
// concentration. Forming and results go through the same tree. Units are those of the deck.
#pragma once

#include "model/curve_messages.h"
#include "run/run.h"

namespace zurt {

struct Coefficients {
    double KX = 0.0, KY = 0.0, KZ = 0.0;
    double CP = 0.0;
};

/// Where coefficients come from in one visit of a group.
struct CoefficientTables {
    bool device = false;    // NDS not 0
    bool transient = false; // capacity takes part
    bool anisotropic = false;
    double timeMultiplier = 1.0; // on the diffusion curve
    bool conductivityNonlinear = false, capacityNonlinear = false;
    ConstRealTable diffusionCurves; // NDS not 0: model/material_tables.h has the layouts
    ConstIntArray diffusionPoints;
    bool tabulated = false; // second direct pass: tabulatedD instead, in all axes
    double tabulatedD = 0.0;
    std::int32_t fitted = 0; // final run of a fit: the material whose curve goes by direction, 0 none
    ConstRealArray DBULK;    // its saved curve
    const FitState* fit = nullptr;
    ConstIntTable functions; // the rest with NDS 0
    ConstRealTable multipliers;
    ConstRealArray densities, maxima, minima;
    ConstRealTable conductionPairs;
    ConstIntArray conductionPoints;
    ConstRealTable capacityPairs;
    ConstIntArray capacityPoints;
};

CoefficientTables CoefficientTablesOf(const Run& run, const ElementGroup& group);

/// What holds for all Gauss points of an element.
struct MaterialInHand {
    std::int32_t MATE = 0;         // 0: none chosen yet
    double A[3] = {1.0, 1.0, 1.0}; // multipliers of the axes; without a card for them 1
    std::int32_t function[3] = {}; // conduction functions, 0 none
    CurveView diffusion; // its curve where EvaluateDiffusion can take it; without points where it can't
};

enum class CoefficientStatus { Good, DiffusionRange, CapacityRange, AboveMaximum, BelowMinimum };

/// Why there are no coefficients: the curve (or material) and the argument that it was asked for.
struct CoefficientFailure {
    CoefficientStatus status = CoefficientStatus::Good;
    std::int32_t number = 0;
    double argument = 0.0;
};

/// Takes material MATE in hand and sets those coefficients that don't depend on the concentration.
void ChooseMaterial(const CoefficientTables& tables, std::int32_t MATE, HeldCurveValues& held,
                    MaterialInHand& material, Coefficients& coefficients);

/// The coefficients that depend on the concentration TG; the others are left alone. False when there are none: `failure`
/// then says why.
bool EvaluateCoefficients(const CoefficientTables& tables, const MaterialInHand& material, double TG,
                          HeldCurveValues& held, Coefficients& coefficients, CoefficientFailure& failure);

/// KX, KY and KZ at concentrations TG(1..count) at once, for coefficients that come from a diffusion curve and nothing
/// else; the same bits as EvaluateCoefficients gives. False when they don't, or when some TG lies outside the
/// curve: EvaluateCoefficients then has to tell, concentration by concentration.
///   TG, K  1..count; K is the output, for all axes
bool EvaluateDiffusion(const CoefficientTables& tables, const MaterialInHand& material, const double* TG,
                       int count, double* K);

/// Ends the run with the message of a failure.
[[noreturn]] void StopOnCoefficients(Run& run, const CoefficientFailure& failure, const ElementPlace& place);

} // namespace zurt
