// Small fibre models made in memory, for the tests of the micro scale.
#pragma once

#include "run/fibre_set.h"

#include <array>
#include <initializer_list>
#include <vector>

namespace zurt::testfibres {

using Point = std::array<double, 3>;

// The record of a Gauss point: element and point from 1.
inline const GaussFibreRecord& RecordOf(const FibreGroup& group, Word element, Word point) {
    return ArrayView<const GaussFibreRecord>(group.records.data(), static_cast<Word>(group.records.size()))(
        (element - 1) * group.points + point);
}

inline Fibre FibreThrough(std::initializer_list<Point> points) {
    Fibre fibre;
    fibre.NPOINTS = static_cast<std::int32_t>(points.size());
    for (const Point& point : points)
        fibre.points.insert(fibre.points.end(), point.begin(), point.end());
    return fibre;
}

// A set whose box holds everything near the origin.
inline FibreSet MakeSet(std::int32_t NTYPE, double DIAM, std::vector<Fibre> fibres) {
    FibreSet set;
    set.NTYPE = NTYPE;
    set.DIAM = DIAM;
    set.NUMFIB = static_cast<std::int32_t>(fibres.size());
    set.fibres = std::move(fibres);
    for (int axis = 0; axis < 3; ++axis) {
        set.low[axis] = -10.0;
        set.high[axis] = 10.0;
    }
    return set;
}

inline FibreModel MakeModel(std::vector<FibreSet> sets) {
    FibreModel model;
    model.sets = std::move(sets);
    return model;
}

// Rows are distances, columns concentrations.
inline CorrectionTable MakeTable(std::vector<double> distance, std::vector<double> concentration,
                                 const std::vector<std::vector<double>>& rows) {
    CorrectionTable table;
    table.NDIST = static_cast<std::int32_t>(distance.size());
    table.NCONC = static_cast<std::int32_t>(concentration.size());
    table.distance = std::move(distance);
    table.concentration = std::move(concentration);
    for (std::size_t j = 0; j < table.concentration.size(); ++j)
        for (const std::vector<double>& row : rows)
            table.factor.push_back(row[j]);
    return table;
}

} // namespace zurt::testfibres
