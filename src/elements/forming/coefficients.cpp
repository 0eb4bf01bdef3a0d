#include "elements/forming/coefficients.h"

#include "core/stop.h"
#include "microscale/direction_curves.h"
#include "model/material_tables.h"
#include "model/outlet.h"

#include <cmath>

namespace zurt {

namespace {

bool Fail(CoefficientFailure& failure, CoefficientStatus status, std::int32_t number, double argument) {
    failure = {status, number, argument};
    return false;
}

// One coefficient for all axes, or by the multipliers of the axes.
void SpreadOverAxes(const CoefficientTables& tables, const MaterialInHand& material, double K,
                    Coefficients& coefficients) {
    if (tables.anisotropic) {
        coefficients.KX = material.A[0] * K;
        coefficients.KY = material.A[1] * K;
        coefficients.KZ = material.A[2] * K;
    } else {
        coefficients.KX = coefficients.KY = coefficients.KZ = K;
    }
}

// True when every axis has a function of its own; otherwise the first one serves all axes.
bool HasFunctionPerAxis(const MaterialInHand& material) {
    return material.function[1] >= 1 && material.function[2] >= 1;
}

// Conduction functions at `argument`, one or three of them. Held values: see HeldCurveValues.
bool ConductionFromFunctions(const CoefficientTables& tables, const MaterialInHand& material, double argument,
                             HeldCurveValues& held, Coefficients& coefficients, CoefficientFailure& failure) {
    const bool perAxis = HasFunctionPerAxis(material);
    for (int axis = 0; axis < (perAxis ? 3 : 1); ++axis) {
        std::int32_t points = 0;
        const std::int32_t function = material.function[axis];
        if (CurveLookup(tables.conductionPairs, tables.conductionPoints, function, argument, held.K[axis],
                        points) != 0)
            return Fail(failure, CoefficientStatus::DiffusionRange, function, argument);
    }
    if (perAxis) {
        coefficients.KX = held.K[0];
        coefficients.KY = held.K[1];
        coefficients.KZ = held.K[2];
    } else {
        SpreadOverAxes(tables, material, held.K[0], coefficients);
    }
    return true;
}

bool ConductionFromPolynomials(const CoefficientTables& tables, const MaterialInHand& material, double TG,
                               Coefficients& coefficients, CoefficientFailure& failure) {
    double K1 = 0.0, K2 = 0.0, K3 = 0.0;
    const AnalyticRange range =
        AnalyticConduction(material.MATE, TG, tables.maxima, tables.minima, K1, K2, K3);
    if (range != AnalyticRange::Within)
        return Fail(failure,
                    range == AnalyticRange::AboveMaximum ? CoefficientStatus::AboveMaximum
                                                         : CoefficientStatus::BelowMinimum,
                    material.MATE, TG);
    if (K2 > 0.0 && K3 > 0.0) {
        coefficients.KX = K1;
        coefficients.KY = K2;
        coefficients.KZ = K3;
    } else {
        SpreadOverAxes(tables, material, K1, coefficients);
    }
    return true;
}

bool CapacityAt(const CoefficientTables& tables, const MaterialInHand& material, double TG,
                HeldCurveValues& held, Coefficients& coefficients, CoefficientFailure& failure) {
    if (tables.capacityPoints(material.MATE) == 0) {
        coefficients.CP = AnalyticSpecificHeat(material.MATE, TG, tables.densities);
        return true;
    }
    std::int32_t points = 0;
    if (CurveLookup(tables.capacityPairs, tables.capacityPoints, material.MATE, TG, held.CP, points) != 0)
        return Fail(failure, CoefficientStatus::CapacityRange, material.MATE, TG);
    coefficients.CP = held.CP;
    return true;
}

bool ConductionAt(const CoefficientTables& tables, const MaterialInHand& material, double TG,
                  HeldCurveValues& held, Coefficients& coefficients, CoefficientFailure& failure) {
    const std::int32_t(&function)[3] = material.function;
    if (function[0] != 0 || function[1] != 0 || function[2] != 0)
        return ConductionFromFunctions(tables, material, TG, held, coefficients, failure);
    return ConductionFromPolynomials(tables, material, TG, coefficients, failure);
}

// The diffusion curve of the material, which the table of a second direct pass or the curves by direction of a fit may
// replace; the multipliers of the axes are no part of either.
bool DeviceCoefficients(const CoefficientTables& tables, const MaterialInHand& material, double TG,
                        Coefficients& coefficients, CoefficientFailure& failure) {
    const double CABS = std::fabs(TG);
    double D = 0.0;
    if (DiffusionLookup(tables.diffusionCurves, tables.diffusionPoints, material.MATE, CABS, D) != 0)
        return Fail(failure, CoefficientStatus::DiffusionRange, material.MATE, CABS);
    if (tables.tabulated) {
        coefficients.KX = coefficients.KY = coefficients.KZ = tables.tabulatedD;
        return true;
    }
    if (tables.fitted == material.MATE)
        return CurveForDirection(tables.diffusionCurves, tables.diffusionPoints, material.MATE, tables.DBULK,
                                 tables.fit->D1DIR, tables.fit->D2DIR, CABS, coefficients.KX, coefficients.KY,
                                 coefficients.KZ) == 0 ||
               Fail(failure, CoefficientStatus::DiffusionRange, material.MATE, CABS);
    SpreadOverAxes(tables, material, D * tables.timeMultiplier, coefficients);
    return true;
}

// What a fit or the direct calculation puts in place of a diffusion curve, in models with fibres.
void ReplaceDiffusionCurve(const Run& run, CoefficientTables& tables) {
    const HomogenizationCard& card = run.fit.card;
    if (card.NSETS < 1)
        return;
    if (run.control.header.IDIRECTD == 1 && run.pass.PassCounter == 2) {
        tables.tabulated = true;
        tables.tabulatedD =
            RealTableSection(run.A, run.control.at.LDIRD, 2, run.control.counts.NDT)(2, run.clock.KOR);
    } else if (card.NFIT == 1 && run.fit.IFINALRUN == 1) {
        tables.fitted = run.control.header.NMATT;
        tables.DBULK = RealSection(run.A, run.control.at.LFIT, run.control.counts.MAXPMAT);
        tables.fit = &run.fit;
    }
}

} // namespace

CoefficientTables CoefficientTablesOf(const Run& run, const ElementGroup& group) {
    const HeaderFields& header = run.control.header;
    CoefficientTables tables;
    tables.device = header.NDS != 0;
    tables.transient = header.NSTAC != 0;
    tables.anisotropic = header.IANIZ != 0;
    tables.conductivityNonlinear = run.job.ConductivityNonlinear != 0;
    tables.capacityNonlinear = run.job.CapacityNonlinear != 0;
    if (tables.device) {
        tables.timeMultiplier = TimeMultiplierOfGroup(run, group.NGE);
        tables.diffusionCurves = DiffusionTable(run);
        tables.diffusionPoints = DiffusionPoints(run);
        ReplaceDiffusionCurve(run, tables);
        return tables;
    }
    tables.functions = MaterialFunctions(run);
    tables.multipliers = MaterialMultipliers(run);
    tables.densities = MaterialDensities(run);
    tables.maxima = MaterialMaxima(run);
    tables.minima = MaterialMinima(run);
    tables.conductionPairs = ConductionPairs(run);
    tables.conductionPoints = ConductionPoints(run);
    tables.capacityPairs = SpecificHeatPairs(run);
    tables.capacityPoints = SpecificHeatPoints(run);
    return tables;
}

void ChooseMaterial(const CoefficientTables& tables, std::int32_t MATE, HeldCurveValues& held,
                    MaterialInHand& material, Coefficients& coefficients) {
    material.MATE = MATE;
    material.diffusion = {};
    if (tables.device) {
        coefficients.CP = 1.0;
        if (!tables.tabulated && tables.fitted != MATE) {
            const CurveView curve = DiffusionCurve(tables.diffusionCurves, tables.diffusionPoints, MATE);
            if (ArgumentsRise(curve))
                material.diffusion = curve;
        }
        return;
    }
    CoefficientFailure none; // constants have curves of one point, which have no range
    for (int axis = 0; axis < 3; ++axis) {
        if (tables.anisotropic)
            material.A[axis] = tables.multipliers(MATE, axis + 1);
        material.function[axis] = tables.functions(MATE, axis + 1);
    }
    if (!tables.conductivityNonlinear)
        ConductionFromFunctions(tables, material, 0.0, held, coefficients, none);
    if (tables.transient && !tables.capacityNonlinear) {
        std::int32_t points = 0;
        CurveLookup(tables.capacityPairs, tables.capacityPoints, MATE, 0.0, held.CP, points);
        coefficients.CP = held.CP;
    }
}

bool EvaluateCoefficients(const CoefficientTables& tables, const MaterialInHand& material, double TG,
                          HeldCurveValues& held, Coefficients& coefficients, CoefficientFailure& failure) {
    if (tables.device)
        return DeviceCoefficients(tables, material, TG, coefficients, failure);
    if (tables.transient && tables.capacityNonlinear &&
        !CapacityAt(tables, material, TG, held, coefficients, failure))
        return false;
    return !tables.conductivityNonlinear || ConductionAt(tables, material, TG, held, coefficients, failure);
}

bool EvaluateDiffusion(const CoefficientTables& tables, const MaterialInHand& material, const double* TG,
                       int count, double* K) {
    if (material.diffusion.points == 0)
        return false;
    for (int p = 0; p < count; ++p)
        K[p] = std::fabs(TG[p]);
    if (!LookUpRisingCurve(material.diffusion, count, K))
        return false;
    for (int p = 0; p < count; ++p)
        K[p] *= tables.timeMultiplier;
    return true;
}

void StopOnCoefficients(Run& run, const CoefficientFailure& failure, const ElementPlace& place) {
    switch (failure.status) {
    case CoefficientStatus::CapacityRange:
        StopOnSpecificHeatRange(run, failure.number, failure.argument, place);
    case CoefficientStatus::AboveMaximum:
        StopOnAnalyticRange(run, AnalyticRange::AboveMaximum, failure.number, failure.argument, place);
    case CoefficientStatus::BelowMinimum:
        StopOnAnalyticRange(run, AnalyticRange::BelowMinimum, failure.number, failure.argument, place);
    default:
        StopOnDiffusionRange(run, failure.number, failure.argument, place);
    }
}

} // namespace zurt
