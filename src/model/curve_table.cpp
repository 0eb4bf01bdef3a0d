#include "model/curve_table.h"

#include "model/curve_checks.h"

#include "core/format.h"

#include <string>

namespace zurt {

namespace {

constexpr CardField kFunctionHeaderFields[] = {
    ZURT_INTEGER(FunctionHeaderCard, F, "I5", "function number"),
    ZURT_INTEGER(FunctionHeaderCard, N, "I5", "number of points; one point is a constant"),
};

constexpr CardField kFunctionPointFields[] = {
    ZURT_REAL(FunctionPointCard, ARGUMENT, "D10.4", "argument, rising from card to card"),
    ZURT_REAL(FunctionPointCard, VALUE, "D10.4", "value of the function"),
};

void EchoHeader(Run& run, const FunctionHeaderCard& header) {
    Write(run.units.listing, "(//6X,A,I3,5X,A,I3)", Say(run, "FUNKCIJA BR.=", "FUNCTION NO.="), header.F,
          Say(run, "BROJ TACAKA NA KRIVOJ=", "NUMBER OF POINTS ON CURVE="), header.N);
}

void EchoPairs(Run& run, const FunctionHeaderCard& header, ConstRealTable pairs) {
    static const Format line("(11X,D10.4,5X,D10.4)");
    TextUnit& listing = run.units.listing;
    const Word row = 2 * Word{header.F};
    Write(listing, "(/12X,A,7X,A)", "ARGUMENT", Say(run, "FUNKCIJA", "FUNCTION"));
    for (Word p = 1; p <= header.N; ++p)
        Write(listing, line, pairs(row - 1, p), pairs(row, p));
}

void ReadFunctionPoints(const CardSource& source, const FunctionHeaderCard& header, RealTable pairs) {
    const Word row = 2 * Word{header.F};
    TablePoints points;
    for (Word p = 1; p <= header.N; ++p) {
        FunctionPointCard point{pairs(row - 1, p), pairs(row, p)};
        ReadCardFields(source.deck, source.INDFOR, kFunctionPointCard, &point);
        pairs(row - 1, p) = point.ARGUMENT;
        pairs(row, p) = point.VALUE;
        points.arguments.push_back(point.ARGUMENT);
        points.values.push_back(point.VALUE);
    }
    NoteIfNotRising(source.deck, kFunctionPointCard.group, "ARGUMENT", points,
                    "of function " + std::to_string(header.F));
}

/// A function needs one point to be looked up, and one to be tested against the end of the run.
void RequirePoint(const Deck& deck, const FunctionHeaderCard& header, std::int32_t largest,
                  bool checkCoverage) {
    if (largest < 1 || (checkCoverage && header.N < 1))
        DeckError(deck, kFunctionHeaderCard.group, "N", std::to_string(header.N),
                  "a function needs at least one point");
}

} // namespace

const CardLayout kFunctionHeaderCard = Layout("Function header card", kFunctionHeaderFields);
const CardLayout kFunctionPointCard = Layout("Function point card", kFunctionPointFields);

CurveTableResult ReadCurveTable(Run& run, const CardSource& source, IntArray points, RealTable pairs,
                                std::int32_t functions, std::int32_t largest, double TMAX,
                                bool checkCoverage) {
    const bool echo = EchoInput(run);
    // Functions that no card gives are constants of value 0, whatever an earlier problem left in `A`.
    Fill(points, 0);
    Fill(RealArray(pairs.data, pairs.rows * pairs.columns), 0.0);
    FunctionHeaderCard header;
    for (std::int32_t i = 1; i <= functions; ++i) {
        ReadCardFields(source.deck, source.INDFOR, kFunctionHeaderCard, &header);
        if (header.N > largest && header.F != 0)
            return {header.F, header.N, false, 0.0};
        RequireIndex(source.deck, kFunctionHeaderCard.group, "F", header.F, functions);
        RequirePoint(source.deck, header, largest, checkCoverage);
        points(header.F) = header.N;
        if (echo)
            EchoHeader(run, header);
        ReadFunctionPoints(source, header, pairs);
        if (checkCoverage) {
            const double last = pairs(2 * Word{header.F} - 1, header.N);
            if (last < TMAX)
                return {header.F, header.N, true, last};
        }
        if (echo)
            EchoPairs(run, header, pairs);
    }
    return {};
}

} // namespace zurt
