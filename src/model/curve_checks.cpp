#include "model/curve_checks.h"

#include <cstdio>

namespace zurt {

namespace {

std::string SixDigits(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

// The value at 0 by the interval from point i (from 0) to the next; false when 0 lies outside or at its ends.
bool ValueAtZero(const TablePoints& points, std::size_t i, double& value) {
    if (i + 1 >= points.arguments.size() || !(points.arguments[i] < 0.0 && points.arguments[i + 1] > 0.0))
        return false;
    const double share = -points.arguments[i] / (points.arguments[i + 1] - points.arguments[i]);
    value = points.values[i] + share * (points.values[i + 1] - points.values[i]);
    return true;
}

} // namespace

void NoteIfNotRising(Deck& deck, const char* group, const char* field, const TablePoints& points,
                     const std::string& what) {
    for (std::size_t i = 0; i + 1 < points.arguments.size(); ++i) {
        if (points.arguments[i] < points.arguments[i + 1])
            continue;
        NoteOnCard(deck, group, field,
                   "the arguments " + what + " do not rise from point " + std::to_string(i + 1) +
                       " to point " + std::to_string(i + 2) +
                       "; an argument takes the first interval that holds it, if there is one");
        return;
    }
}

void CheckCoefficients(Deck& deck, const char* group, const char* field, const TablePoints& points,
                       const std::string& what) {
    const bool constant = points.values.size() == 1;
    for (std::size_t i = 0; i < points.values.size(); ++i) {
        double atZero = 0.0;
        if ((constant || points.arguments[i] >= 0.0) && points.values[i] < 0.0)
            DeckError(deck, group, field, SixDigits(points.values[i]),
                      "a negative coefficient " + what + " has no meaning");
        if (ValueAtZero(points, i, atZero) && atZero < 0.0)
            DeckError(deck, group, field, SixDigits(points.values[i]),
                      "a negative coefficient at concentration 0 " + what + " has no meaning");
        if (points.values[i] < 0.0)
            NoteOnCard(deck, group, field,
                       "a negative coefficient " + what + " at concentration " +
                           SixDigits(points.arguments[i]) + ": no solution must come near it");
    }
}

} // namespace zurt
