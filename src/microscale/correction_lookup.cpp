#include "microscale/correction_lookup.h"

namespace zurt {

namespace {

// Two neighbouring rows and the place between them.
struct RowInterval {
    Word below, above;
    double t;
};

RowInterval LocateRows(ConstRealArray distance, double d) {
    for (Word i = 1; i < distance.length; ++i)
        if (distance(i) < d && d <= distance(i + 1))
            return {i, i + 1, (d - distance(i)) / (distance(i + 1) - distance(i))};
    return {1, 1, 0.0};
}

double AtColumn(ConstRealTable factor, const RowInterval& rows, Word j) {
    return factor(rows.below, j) + (factor(rows.above, j) - factor(rows.below, j)) * rows.t;
}

} // namespace

double LookupCorrectionFactor(ConstRealArray distance, ConstRealArray concentration, ConstRealTable factor,
                              double c, double d) {
    const Word NCONC = concentration.length;
    if (d >= distance(distance.length))
        return 1.0;
    const RowInterval rows = LocateRows(distance, d);
    if (NCONC == 1 || c <= concentration(1))
        return AtColumn(factor, rows, 1);
    if (c >= concentration(NCONC))
        return AtColumn(factor, rows, NCONC);
    double result = 1.0;
    for (Word j = 1; j < NCONC; ++j) {
        if (!(concentration(j) <= c && c < concentration(j + 1)))
            continue;
        const double a = AtColumn(factor, rows, j);
        const double b = AtColumn(factor, rows, j + 1);
        result = a + (c - concentration(j)) * (b - a) / (concentration(j + 1) - concentration(j));
    }
    return result;
}

} // namespace zurt
