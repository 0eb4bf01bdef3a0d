#include "elements/surfaces/surface_terms.h"

#include "core/format.h"
#include "core/stop.h"
#include "geometry/gauss_rules.h"
#include "model/curve_messages.h"

namespace zurt {

namespace {

// --- curves -------------------------------------------------------------------------------------------------------

struct CurveWords {
    const char* serbianCurve;
    const char* englishCurve;
    const char* kind; // in a note
    bool ofTime;
};

constexpr CurveWords kFluxWords = {
    "KRIVA POVRSINSKI FLUKS - VREME,  BR. =", "CURVE SURFACE FLUX - TIME,  No. =", "surface flux", true};
constexpr CurveWords kEnvironmentWords = {"KRIVA TEMPERATURA OKOLINE - VREME,  BR. =",
                                          "CURVE ENVIRONMENT TEMPERATURE - TIME,  No. =", "environment",
                                          true};
constexpr CurveWords kConvectionWords = {"KRIVA KOEFICIJENT KONVEKCIJE - TEMPERATURA,  BR. =",
                                         "CURVE CONVECTION COEFICIENT - TEMPERATURE,  No. =", "convection",
                                         false};
constexpr CurveWords kEmissivityWords = {"KRIVA KOEFICIJENT RADIJACIJE - TEMPERATURA,  BR. =",
                                         "CURVE RADIATION COEFICIENT - TEMPERATURE,  No. =", "radiation",
                                         false};

[[noreturn]] void StopOnCurveRange(Run& run, const CurveWords& words, const ElementPlace& place,
                                   const CurveView& view, std::int32_t curve, double argument) {
    TextUnit& unit = BeginMessage(run);
    NoteOutsideCurve(run, place, words.kind, curve, view, argument);
    Write(unit, "(1X,A)", Say(run, "ARGUMENT VAN OPSEGA ZADATE KRIVE", "CURVE ARGUMENT IS OUT OF RANGE"));
    Write(unit, "(1X,A,I5)", Say(run, words.serbianCurve, words.englishCurve), curve);
    Write(unit, "(1X,A,1PE12.4)",
          words.ofTime ? Say(run, "ARGUMENT VREME, VREME =", "ARGUMENT TIME, TIME =")
                       : Say(run, "ARGUMENT TEMPERATURA, TEMP =", "ARGUMENT TEMPERATURE, TEMP ="),
          argument);
    StopRun(unit);
}

// At the exact end of the curve `value` stays as it is.
template <int Family>
void EvaluateCurve(const ElementWalk<Family>& walk, const FunctionTable& table, const CurveWords& words,
                   std::int32_t curve, double argument, double& value) {
    std::int32_t points = 0;
    if (CurveLookup(table.pairs, table.points, curve, argument, value, points) != 0)
        StopOnCurveRange(walk.run, words, {walk.group.NGE, walk.number, 0},
                         PairCurve(table.pairs, table.points, curve), curve, argument);
}

// --- one side -----------------------------------------------------------------------------------------------------

template <int Family> struct SurfaceVisit {
    const ElementWalk<Family>& walk; // with the element in hand
    const SurfaceTables& tables;
    HeldCurveValues& held;
};

// The curve numbers of a side, 0 none.
struct SideCurves {
    std::int32_t flux, convection, environment, emissivity;
};

// Packed matrices apart from the conduction matrix until all sides are summed.
template <int Family> struct SideSums {
    static constexpr int kLength = kMaxNodes<Family> * (kMaxNodes<Family> + 1) / 2;
    double convection[kLength] = {};
    double radiation[kLength] = {};
    bool hasConvection = false, hasRadiation = false;
};

// Values that hold for the whole side. A convection or emissivity curve of one point needs no concentration.
template <int Family> void EvaluateSide(const SurfaceVisit<Family>& visit, const SideCurves& curves) {
    const ElementWalk<Family>& walk = visit.walk;
    const SurfaceTables& tables = visit.tables;
    HeldCurveValues& held = visit.held;
    if (curves.convection > 0 && tables.convection.points(curves.convection) < 2)
        EvaluateCurve(walk, tables.convection, kConvectionWords, curves.convection, 0.0, held.HC);
    if (curves.emissivity > 0 && tables.emissivity.points(curves.emissivity) < 2)
        EvaluateCurve(walk, tables.emissivity, kEmissivityWords, curves.emissivity, 0.0, held.EM);
    if (curves.flux > 0)
        EvaluateCurve(walk, tables.flux, kFluxWords, curves.flux, tables.TIME, held.QS);
    if (curves.environment > 0)
        EvaluateCurve(walk, tables.environment, kEnvironmentWords, curves.environment, tables.TIME, held.TE);
}

// HC and EM at the surface value TS, from curves of more than one point.
template <int Family>
void EvaluateAtSurface(const SurfaceVisit<Family>& visit, const SideCurves& curves, double TS) {
    const SurfaceTables& tables = visit.tables;
    if (curves.convection > 0 && tables.convection.points(curves.convection) > 1)
        EvaluateCurve(visit.walk, tables.convection, kConvectionWords, curves.convection, TS, visit.held.HC);
    if (curves.emissivity > 0 && tables.emissivity.points(curves.emissivity) > 1)
        EvaluateCurve(visit.walk, tables.emissivity, kEmissivityWords, curves.emissivity, TS, visit.held.EM);
}

// The shape factor has the number of the emissivity curve, not that of the field named after it.
double ShapeFactor(const SurfaceTables& tables, const SideCurves& curves) {
    return tables.shapeFactors.length == 0 ? 1.0 : tables.shapeFactors(curves.emissivity);
}

template <int Family>
void AddSidePoint(const SurfaceVisit<Family>& visit, const SideCurves& curves, const SidePoint<Family>& point,
                  SideSums<Family>& sums, RealArray FE) {
    const SurfaceTables& tables = visit.tables;
    HeldCurveValues& held = visit.held;
    const double* N = point.shape.H;
    const double* TE1 = visit.walk.element.TE1;
    const int ND = visit.walk.points.active.ND;
    double TS = 0.0;
    if (tables.nonlinear) {
        for (int i = 0; i < ND; ++i)
            TS += N[i] * TE1[i];
        EvaluateAtSurface(visit, curves, TS);
    }
    const double TE = held.TE;
    const double FQ = held.QS * point.measure;
    const double FH = held.HC * point.measure;
    if (curves.environment != 0 && curves.emissivity != 0)
        held.FR = held.EM * tables.SBC * point.measure * ShapeFactor(tables, curves) * (TS * TS + TE * TE) *
                  (TS + TE);
    const double FR = held.FR; // without an environment function: that of the point before
    double S = 0.0;
    for (int i = 0; i < ND; ++i)
        S += N[i] * (tables.nonlinear ? TE - TE1[i] : TE);

    const bool radiation = tables.nonlinear && curves.emissivity != 0;
    for (int i = 0, entry = 0; i < ND; ++i) {
        for (int j = i; j < ND; ++j, ++entry) {
            if (radiation)
                sums.radiation[entry] += N[i] * N[j] * FR;
            if (curves.convection != 0)
                sums.convection[entry] += N[i] * N[j] * FH;
        }
        if (radiation)
            FE(i + 1) += N[i] * FR * S;
        if (curves.convection != 0)
            FE(i + 1) += N[i] * FH * S;
        if (curves.flux != 0)
            FE(i + 1) += FQ * N[i];
    }
    if (tables.flows != nullptr) {
        tables.flows->flux += curves.flux != 0 ? FQ : 0.0;
        tables.flows->convection += curves.convection != 0 ? FH * S : 0.0;
        tables.flows->radiation += radiation ? FR * S : 0.0;
    }
}

// The points of a side: natural direction `fixed` (from 0) is held at `end`, the others run in ascending order.
template <int Family>
void SumOverSide(const SurfaceVisit<Family>& visit, const SideCurves& curves, int fixed, double end,
                 SideSums<Family>& sums, RealArray FE) {
    const int a = fixed == 0 ? 1 : 0, b = fixed == 2 ? 1 : 2;
    const std::int32_t* NGAUS = visit.walk.NGAUS;
    const std::int32_t orderA = kDimension<Family> > 1 ? NGAUS[a] : 1,
                       orderB = kDimension<Family> > 2 ? NGAUS[b] : 1;
    for (std::int32_t i = 1; i <= orderA; ++i)
        for (std::int32_t j = 1; j <= orderB; ++j) {
            SidePoint<Family> point;
            point.place[fixed] = end;
            if (kDimension<Family> != 1) {
                point.place[a] = XG(orderA, i);
                point.weight = WGT(orderA, i);
            }
            if (kDimension<Family> == 3) {
                point.place[b] = XG(orderB, j);
                point.weight *= WGT(orderB, j);
            }
            LocateSidePoint(visit.walk, fixed + 1, point);
            AddSidePoint(visit, curves, point, sums, FE);
        }
}

template <int Family> SideCurves CurvesOf(const SurfaceTables& tables, Word record, int side) {
    const auto field = [&](SurfaceField f) { return tables.ISURF(kSurfaceFields * (side - 1) + f, record); };
    return {field(kFluxCurve), field(kConvectionCurve), field(kEnvironmentCurve), field(kEmissivityCurve)};
}

void AddMatrix(const double* matrix, RealArray K) {
    for (Word entry = 1; entry <= K.length; ++entry)
        K(entry) += matrix[entry - 1];
}

} // namespace

template <int Family> SurfaceTables SurfaceTablesOf(const Run& run, const ElementGroup& group) {
    const CurveCounts& counts = run.control.counts;
    SurfaceTables tables;
    tables.present = counts.NQP != 0 || counts.NHP != 0 || counts.NTOK != 0 || counts.NHR != 0;
    if (!tables.present)
        return tables;
    tables.NSURF = SurfaceRecordNumbers(run, group);
    tables.ISURF = SurfaceRecords<Family>(run, group);
    tables.flux = FluxFunctions(run);
    tables.convection = ConvectionFunctions(run);
    tables.environment = EnvironmentFunctions(run);
    tables.emissivity = RadiationFunctions(run);
    if (counts.NHR != 0)
        tables.shapeFactors = ShapeFactors(run);
    tables.SBC = counts.SBC;
    tables.TIME = run.clock.TIME;
    tables.nonlinear = run.job.NonlinearFlag == 1;
    return tables;
}

template <int Family>
void SurfaceTerms(const ElementWalk<Family>& walk, const SurfaceTables& tables, HeldCurveValues& held,
                  RealArray K, RealArray FE) {
    const std::int32_t record = tables.present ? tables.NSURF(walk.number) : 0;
    if (record == 0)
        return;
    const SurfaceVisit<Family> visit{walk, tables, held};
    SideSums<Family> sums;
    for (int side = 1; side <= kSides<Family>; ++side) {
        const SideCurves curves = CurvesOf<Family>(tables, record, side);
        if (curves.flux == 0 && curves.convection == 0 && curves.environment == 0 && curves.emissivity == 0)
            continue;
        sums.hasConvection = sums.hasConvection || curves.convection != 0;
        sums.hasRadiation = sums.hasRadiation || (tables.nonlinear && curves.emissivity != 0);
        EvaluateSide(visit, curves);
        SumOverSide(visit, curves, (side - 1) / 2, side % 2 == 1 ? 1.0 : -1.0, sums, FE);
    }
    if (sums.hasConvection)
        AddMatrix(sums.convection, K);
    if (sums.hasRadiation)
        AddMatrix(sums.radiation, K);
}

#define ZURT_SURFACE_TERMS(FAMILY)                                                                           \
    template SurfaceTables SurfaceTablesOf<FAMILY>(const Run&, const ElementGroup&);                         \
    template void SurfaceTerms(const ElementWalk<FAMILY>&, const SurfaceTables&, HeldCurveValues&,           \
                               RealArray, RealArray);
ZURT_FOR_ALL_FAMILIES(ZURT_SURFACE_TERMS)
#undef ZURT_SURFACE_TERMS

} // namespace zurt
