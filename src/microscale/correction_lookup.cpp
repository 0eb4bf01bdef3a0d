#include "microscale/correction_lookup.h"

#include <algorithm>
#include <functional>

namespace zurt {

namespace {

// The first i with distance(i) < d <= distance(i + 1); 0: none.
Word SearchRow(ConstRealArray distance, double d) {
    for (Word i = 1; i < distance.length; ++i)
        if (distance(i) < d && d <= distance(i + 1))
            return i;
    return 0;
}

// The last j with concentration(j) <= c < concentration(j + 1); 0: none.
Word SearchColumn(ConstRealArray concentration, double c) {
    Word column = 0;
    for (Word j = 1; j < concentration.length; ++j)
        if (concentration(j) <= c && c < concentration(j + 1))
            column = j;
    return column;
}

// The same of rising values, for d and c below the last one.
Word CountRow(ConstRealArray distance, double d) {
    Word below = 0;
    for (Word i = 1; i < distance.length; ++i)
        below += distance(i) < d ? 1 : 0;
    return below;
}

Word CountColumn(ConstRealArray concentration, double c) {
    Word reached = 0;
    for (Word j = 1; j < concentration.length; ++j)
        reached += concentration(j) <= c ? 1 : 0;
    return reached;
}

// Two neighbouring rows and the place between them.
struct RowInterval {
    Word below, above;
    double t;
};

RowInterval IntervalAbove(ConstRealArray distance, Word row, double d) {
    if (row == 0)
        return {1, 1, 0.0};
    return {row, row + 1, (d - distance(row)) / (distance(row + 1) - distance(row))};
}

double AtColumn(ConstRealTable factor, const RowInterval& rows, Word j) {
    return factor(rows.below, j) + (factor(rows.above, j) - factor(rows.below, j)) * rows.t;
}

template <bool Rising>
double Lookup(ConstRealArray distance, ConstRealArray concentration, ConstRealTable factor, double c,
              double d) {
    const Word NCONC = concentration.length;
    if (d >= distance(distance.length))
        return 1.0;
    const RowInterval rows =
        IntervalAbove(distance, Rising ? CountRow(distance, d) : SearchRow(distance, d), d);
    if (NCONC == 1 || c <= concentration(1))
        return AtColumn(factor, rows, 1);
    if (c >= concentration(NCONC))
        return AtColumn(factor, rows, NCONC);
    const Word j = Rising ? CountColumn(concentration, c) : SearchColumn(concentration, c);
    if (j == 0)
        return 1.0;
    const double a = AtColumn(factor, rows, j);
    const double b = AtColumn(factor, rows, j + 1);
    return a + (c - concentration(j)) * (b - a) / (concentration(j + 1) - concentration(j));
}

bool Rises(const std::vector<double>& values) {
    return std::adjacent_find(values.begin(), values.end(), std::greater_equal<>()) == values.end();
}

} // namespace

double LookupCorrectionFactor(ConstRealArray distance, ConstRealArray concentration, ConstRealTable factor,
                              double c, double d) {
    return Lookup<false>(distance, concentration, factor, c, d);
}

double LookupCorrectionFactor(const CorrectionTable& table, double c, double d) {
    if (table.NDIST < 1)
        return 1.0;
    return table.rising ? Lookup<true>(Distances(table), Concentrations(table), Factors(table), c, d)
                        : Lookup<false>(Distances(table), Concentrations(table), Factors(table), c, d);
}

bool RowsAndColumnsRise(const CorrectionTable& table) {
    return Rises(table.distance) && Rises(table.concentration);
}

} // namespace zurt
