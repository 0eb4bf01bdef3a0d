#include "model/curve_messages.h"

#include "core/format.h"
#include "core/stop.h"

namespace zurt {

void StopOnDiffusionRange(Run& run, std::int32_t curve, double concentration) {
    TextUnit& unit = BeginMessage(run);
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

void StopOnSpecificHeatRange(Run& run, std::int32_t curve, double temperature) {
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(1X,A)", Say(run, "ARGUMENT VAN OPSEGA ZADATE KRIVE", "CURVE ARGUMENT IS OUT OF RANGE"));
    Write(unit, "(1X,A,I5)",
          Say(run,
              "KRIVA SPECIFICNA TOPLOTA - TEMPERATURA,  BR. =", "CURVE SPECIFIC HEAT - TEMPERATURE,  No. ="),
          curve);
    Write(unit, "(1X,A,1PE12.4)", Say(run, "ARGUMENT TEMPERATURA,  TEMP =", "ARGUMENT TEMPERATURE,  TEMP ="),
          temperature);
    StopRun(unit);
}

void StopOnAnalyticRange(Run& run, AnalyticRange range, std::int32_t material, double T) {
    // These texts are the same in both languages.
    TextUnit& unit = BeginMessage(run);
    const bool above = range == AnalyticRange::AboveMaximum;
    const Word limitsAt = above ? run.control.at.LMAT[4] : run.control.at.LMAT[5];
    const double limit = RealSection(run.A, limitsAt, run.control.header.NMATT)(material);
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
