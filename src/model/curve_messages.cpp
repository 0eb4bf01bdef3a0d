#include "model/curve_messages.h"

#include "core/format.h"
#include "core/stop.h"
#include "model/material_tables.h"

#include <cstdio>
#include <string>

namespace zurt {

namespace {

std::string Shown(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.7g", value);
    return text;
}

std::string PlaceText(const Run& run, const ElementPlace& place) {
    std::string text = "element group " + std::to_string(place.group);
    if (place.element > 0)
        text += ", element " + std::to_string(place.element);
    if (place.point > 0)
        text += ", Gauss point " + std::to_string(place.point);
    return text + ", step " + std::to_string(run.clock.KOR) + " (time " + Shown(run.clock.TIME) + ")";
}

// The curve that a message about diffusion speaks of: under NDS a diffusion curve, else a conduction function.
CurveView DiffusionOrConduction(const Run& run, std::int32_t curve) {
    if (run.control.header.NDS != 0)
        return DiffusionCurve(DiffusionTable(run), DiffusionPoints(run), curve);
    return PairCurve(ConductionPairs(run), ConductionPoints(run), curve);
}

} // namespace

void NoteOutsideCurve(const Run& run, const ElementPlace& place, const char* kind, std::int32_t number,
                      const CurveView& curve, double argument) {
    const double last = curve.argument[curve.stride * (curve.points - 1)];
    WriteNote(PlaceText(run, place) + ": " + Shown(argument) + " is outside " + kind + " curve " +
              std::to_string(number) + ", which reaches from " + Shown(*curve.argument) + " to " +
              Shown(last));
}

void StopOnDiffusionRange(Run& run, std::int32_t curve, double concentration, const ElementPlace& place) {
    TextUnit& unit = BeginMessage(run);
    NoteOutsideCurve(run, place, "diffusion", curve, DiffusionOrConduction(run, curve), concentration);
    Write(unit, "(1X,A)", Say(run, "ARGUMENT VAN OPSEGA ZADATE KRIVE", "CURVE ARGUMENT IS OUT OF RANGE"));
    Write(unit, "(1X,A,I5)",
          Say(run,
              "KOEFICIJENT DIFUZIJE - KONCENTRACIJA,  BR. =", "DIFFUSION COEFICIENT - CONCENTRATION,  NO. ="),
          curve);
    Write(unit, "(1X,A,1PE12.4)", Say(run, "KONCENTRACIJA,  CONC =", "CONCENTRARION,  CONC ="),
          concentration);
    Write(unit, "(1X,A)", "S T O P");
    Write(unit, "(1X,A)",
          Say(run, " PROVERITI: ULAZNE PODATKE ZA KOEFICIJENT DIFUZIJE",
              " CHECK: INPUT DATA FOR DIFFUSION COEFFICIENT"));
    Write(unit, "(1X,A)",
          Say(run, "I GRANICNE USLOVE ZA ULAZNI I IZLAZNI REZERVOAR",
              "AND BOUNDARY CONDITIONS FOR INLET AND OUTLET RESERVOIRS"));
    StopRun(unit);
}

void StopOnSpecificHeatRange(Run& run, std::int32_t curve, double temperature, const ElementPlace& place) {
    TextUnit& unit = BeginMessage(run);
    NoteOutsideCurve(run, place, "capacity", curve,
                     PairCurve(SpecificHeatPairs(run), SpecificHeatPoints(run), curve), temperature);
    Write(unit, "(1X,A)", Say(run, "ARGUMENT VAN OPSEGA ZADATE KRIVE", "CURVE ARGUMENT IS OUT OF RANGE"));
    Write(unit, "(1X,A,I5)",
          Say(run,
              "KRIVA SPECIFICNA TOPLOTA - TEMPERATURA,  BR. =", "CURVE SPECIFIC HEAT - TEMPERATURE,  No. ="),
          curve);
    Write(unit, "(1X,A,1PE12.4)", Say(run, "ARGUMENT TEMPERATURA,  TEMP =", "ARGUMENT TEMPERATURE,  TEMP ="),
          temperature);
    StopRun(unit);
}

void StopOnAnalyticRange(Run& run, AnalyticRange range, std::int32_t material, double T,
                         const ElementPlace& place) {
    // These texts are the same in both languages.
    TextUnit& unit = BeginMessage(run);
    const bool above = range == AnalyticRange::AboveMaximum;
    const Word limitsAt = above ? run.control.at.LMAT[4] : run.control.at.LMAT[5];
    const double limit = RealSection(run.A, limitsAt, run.control.header.NMATT)(material);
    WriteNote(PlaceText(run, place) + ": " + Shown(T) + " is " + (above ? "above " : "below ") +
              Shown(limit) + ", the limit of material " + std::to_string(material));
    Write(unit, "(1X,A)",
          above ? "PREKORACENA MAXIMALNA VREDNOST DOZVOLJENE TEMPERATURE"
                : "PREKORACENA MINIMALNA VREDNOST DOZVOLJENE TEMPERATURE");
    Write(unit, "(1X,A,I5)", "U MATERIJALU BROJ, MAT=", material);
    Write(unit, "(1X,A,E14.5)", "TEKUCA TEMPERATURA, TEMP=", T);
    Write(unit, "(1X,A,E14.5)",
          above ? "MAXIMALNA DOZVOLJENA TEMPERATURA U MATERIJALU, TOPM="
                : "MANIMALNA DOZVOLJENA TEMPERATURA U MATERIJALU, TMNM=",
          limit);
    StopRun(unit);
}

} // namespace zurt
