#include "homogenization/mass_files.h"

#include "core/format.h"

namespace zurt {

void WritePlainMassFile(Run& run) {
    TextUnit& unit = run.units.massX;
    OpenTextUnit(unit, "MASS-X.LST");
    Write(unit, "(' NUMBER OF TIME STEPS, POROSITY')");
    Write(unit, "(I10,D14.5)", run.control.state.NDT, run.control.state.POROSITY);
    Write(unit, "(' VALUES OF DIFFUSION COEFFICIENTS')");
    Write(unit, "(10X,'C',12X,'Dbulk(C)',9X,'Deqv(C)')");
    CloseTextUnit(unit);
}

} // namespace zurt
