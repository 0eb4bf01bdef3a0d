#include "model/diffusion_curves.h"

#include "core/format.h"
#include "model/curve_checks.h"
#include "model/material_tables.h"

#include <string>

namespace zurt {

namespace {

constexpr CardField kDiffusionHeaderFields[] = {
    ZURT_INTEGER(DiffusionHeaderCard, N, "I5", "material number, 1 to NMATT; 0 becomes 1"),
    ZURT_COUNT(DiffusionHeaderCard, P, "I5", "points, at most MAXPMAT; 0 becomes 1; one point is a constant"),
};

constexpr CardField kDiffusionPointFields[] = {
    ZURT_REAL(DiffusionPointCard, CONC, "D20.6", "concentration, rising from card to card"),
    ZURT_REAL(DiffusionPointCard, DIFF, "D20.6", "diffusion coefficient"),
};

DiffusionHeaderCard ReadHeader(Run& run) {
    DiffusionHeaderCard header;
    ReadImageFields(run.deck, run.control.header.INDFOR, kDiffusionHeaderCard, &header);
    if (header.P == 0)
        header.P = 1;
    if (header.N == 0)
        header.N = 1;
    RequireIndex(run.deck, kDiffusionHeaderCard.group, "N", header.N, run.control.header.NMATT);
    const std::int32_t MAXPMAT = run.control.counts.MAXPMAT;
    if (header.P > MAXPMAT)
        DeckError(run.deck, kDiffusionHeaderCard.group, "P", std::to_string(header.P),
                  "the material header card leaves room for MAXPMAT = " + std::to_string(MAXPMAT) +
                      " points a curve");
    if (run.check.on)
        KeepLine(run.check.curveLine, header.N, run.deck.cardLine);
    return header;
}

void EchoHeader(Run& run, const DiffusionHeaderCard& header) {
    TextUnit& listing = run.units.listing;
    Write(listing, "(//1X,A,I5,A,I5)", Say(run, " MATERIJAL BROJ", " MATERIAL NUMBER"), header.N,
          Say(run, " BROJ TACAKA", " NUMBER OF POINTS"), header.P);
    Write(listing, "(1X,A)",
          Say(run, "EQ.1 - KONSTANTAN KOEFICIJENT DIFUZIJE", "EQ.1 - CONSTANT DIFFUSION COEFFICIENT"));
    Write(listing, "(/1X,A)",
          Say(run, " KONCENTRACIJA       KOEFICIJENT DIFUZIJE", " CONCENTRATION       DIFFUSION COEFICIENT"));
}

void ReadCurve(Run& run) {
    static const Format line("(D14.5,11X,D14.5)");
    const DiffusionHeaderCard header = ReadHeader(run);
    const bool echo = EchoInput(run);
    if (echo)
        EchoHeader(run, header);
    DiffusionPoints(run)(header.N) = header.P;
    const RealTable table = DiffusionTable(run);
    TablePoints points;
    for (Word p = 1; p <= header.P; ++p) {
        DiffusionPointCard point;
        ReadImageFields(run.deck, run.control.header.INDFOR, kDiffusionPointCard, &point);
        table(header.N, 2 * p - 1) = point.CONC;
        table(header.N, 2 * p) = point.DIFF;
        points.arguments.push_back(point.CONC);
        points.values.push_back(point.DIFF);
        if (echo)
            Write(run.units.listing, line, point.CONC, point.DIFF);
    }
    const std::string what = "of material " + std::to_string(header.N);
    NoteIfNotRising(run.deck, kDiffusionPointCard.group, "CONC", points, what);
    if (run.control.header.NDS != 0) // else nothing looks the curve up
        CheckCoefficients(run.deck, kDiffusionPointCard.group, "DIFF", points, what);
}

} // namespace

const CardLayout kDiffusionHeaderCard = Layout("Diffusion curve header", kDiffusionHeaderFields);
const CardLayout kDiffusionPointCard = Layout("Diffusion curve point", kDiffusionPointFields);

void ReadDiffusionCurves(Run& run) {
    // A material whose curve is not given has no points, and the coefficient 0.
    Fill(DiffusionPoints(run), 0);
    const RealTable table = DiffusionTable(run);
    Fill(RealArray(table.data, table.rows * table.columns), 0.0);
    for (std::int32_t m = 1; m <= run.control.header.NMATT; ++m)
        ReadCurve(run);
}

} // namespace zurt
