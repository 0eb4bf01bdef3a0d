#include "microscale/gauss_factors.h"

#include "core/widened_constants.h"
#include "microscale/correction_lookup.h"
#include "microscale/gauss_records.h"
#include "microscale/merged_tables.h"

#include <algorithm>

namespace zurt {

namespace {

void SetAll(double (&factor)[3], double value) {
    factor[0] = factor[1] = factor[2] = value;
}

// The diagonal of the sum over n of e_n k_n e_n with k2 = k1, which is that of k1 (I - e_3 e_3) + k3 e_3 e_3.
void TurnIntoMeshAxes(const GaussFibreRecord& record, double k1, double k3, double (&factor)[3]) {
    for (int axis = 0; axis < 3; ++axis)
        factor[axis] = k1 + (k3 - k1) * record.towards[axis];
}

void RaiseToSmallest(double (&factor)[3]) {
    for (double& f : factor)
        f = std::max(f, kSmallestFactor);
}

} // namespace

void GaussFactorCached(const FibreModel& model, const GaussFibreRecord& record, bool factorsOn, double c,
                       double (&factor)[3]) {
    if (record.wall <= 0.0) {
        SetAll(factor, kSmallestFactor);
        return;
    }
    if (!factorsOn || record.set == 0)
        return;
    const FibreSet& set = model.sets[static_cast<std::size_t>(record.set - 1)];
    const double k1 = LookupCorrectionFactor(set.table, c, record.wall);
    const double k3 = set.IANISY >= 1 ? LookupCorrectionFactor(set.tableY, c, record.wall) : k1;
    TurnIntoMeshAxes(record, k1, k3, factor);
    RaiseToSmallest(factor);
}

void GaussFactorDirect(const FibreModel& model, const FibreSearch& endless, const double (&X)[3],
                       bool factorsOn, double c, double (&factor)[3]) {
    GaussFibreRecord record;
    FillGaussRecord(endless, SearchAllFibres(endless, X), X, record);
    GaussFactorCached(model, record, factorsOn, c, factor);
}

void GaussFactorEhm(const FibreModel& model, double HEQ, bool factorsOn, double c, double (&factor)[3]) {
    if (!factorsOn)
        return;
    const double k1 = LookupCorrectionFactor(EhmTableX(model), c, HEQ);
    const double k3 = LookupCorrectionFactor(EhmTableY(model), c, HEQ);
    factor[0] = factor[1] = k1;
    factor[2] = k3;
    RaiseToSmallest(factor);
}

void GaussFactors(const FibreModel& model, const FitState& fit, bool direct, const GaussFibreRecord& record,
                  double c, double (&factor)[3]) {
    const bool factorsOn = FactorsOn(fit);
    if (fit.IEHM == 0 || direct)
        GaussFactorCached(model, record, factorsOn, c, factor);
    else
        GaussFactorEhm(model, fit.HEQ, factorsOn, c, factor);
}

void MixWithFibre(double share, double (&factor)[3]) {
    for (double& f : factor)
        f = share * f + (1.0 - share) * kSmallestFactor;
}

} // namespace zurt
