#include "microscale/merged_tables.h"

#include "microscale/correction_lookup.h"

#include <algorithm>

namespace zurt {

namespace {

using TableOfSet = CorrectionTable FibreSet::*;

// Concentrations from the smallest to the largest of all sets; sets with fewer columns give what they have.
void SpreadConcentrations(const FibreModel& model, TableOfSet which, RealArray merged) {
    double smallest = 100000.0, largest = -100000.0;
    for (const FibreSet& set : model.sets) {
        const ConstRealArray C = Concentrations(set.*which);
        for (Word j = 1; j <= std::min(merged.length, C.length); ++j) {
            smallest = std::min(smallest, C(j));
            largest = std::max(largest, C(j));
        }
    }
    if (merged.length == 1)
        merged(1) = largest;
    else
        for (Word j = 1; j <= merged.length; ++j)
            merged(j) = smallest + static_cast<double>(j - 1) * (largest - smallest) /
                                       static_cast<double>(merged.length - 1);
}

// Distances up to the largest of all sets, but for the first row.
void SpreadDistances(const FibreModel& model, TableOfSet which, RealArray merged) {
    if (merged.length < 2)
        return;
    double largest = merged(2);
    for (const FibreSet& set : model.sets) {
        const ConstRealArray D = Distances(set.*which);
        for (Word i = 2; i <= std::min(merged.length, D.length); ++i)
            largest = std::max(largest, D(i));
    }
    for (Word i = 2; i <= merged.length; ++i)
        merged(i) = static_cast<double>(i - 1) * largest / static_cast<double>(merged.length - 1);
}

void MergeTable(FibreModel& model, TableOfSet which) {
    CorrectionTable& table = model.sets.front().*which;
    const RealArray C = Concentrations(table);
    const RealArray D = Distances(table);
    const RealTable F = Factors(table);
    if (model.sets.size() > 1) {
        SpreadConcentrations(model, which, C);
        SpreadDistances(model, which, D);
        table.rising = RowsAndColumnsRise(table);
    }
    for (Word j = 1; j <= C.length; ++j)
        for (Word i = 2; i <= D.length; ++i) {
            double sum = 0.0;
            for (const FibreSet& set : model.sets)
                sum += LookupCorrectionFactor(set.*which, C(j), D(i)) * set.volume / model.fibreVolume;
            F(i, j) = sum;
        }
}

} // namespace

void MergeCorrectionTables(FibreModel& model) {
    MergeTable(model, &FibreSet::table);
    MergeTable(model, &FibreSet::tableY);
}

} // namespace zurt
