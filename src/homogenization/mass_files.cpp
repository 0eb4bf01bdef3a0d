#include "homogenization/mass_files.h"

#include "core/format.h"
#include "run/file_names.h"

namespace zurt {

namespace {

TextUnit& MassUnit(Run& run, std::int32_t direction) {
    return direction == 1 ? run.units.massX : direction == 2 ? run.units.massY : run.units.massZ;
}

TextUnit& MainUnit(Run& run) {
    return MassUnit(run, run.fit.INDDEG);
}

// Tables of a later problem are appended to those of earlier ones. What plain runs have written, a head alone, is replaced.
void OpenMassFile(Run& run, std::int32_t direction) {
    TextUnit& unit = MassUnit(run, direction);
    if (IsOpen(unit))
        return;
    if (run.units.massTables && !unit.name.empty())
        ReopenTextUnit(unit);
    else
        OpenTextUnit(unit, MassFileName(run.units, direction));
}

void WriteTitle(TextUnit& unit) {
    Write(unit, "(' NUMBER OF TIME STEPS, POROSITY')");
}

void WriteCoefficientHead(TextUnit& unit) {
    Write(unit, "(' VALUES OF DIFFUSION COEFFICIENTS')");
    Write(unit, "(10X,'C',12X,'Dbulk(C)',9X,'Deqv(C)')");
}

void WriteDirectHeads(Run& run, std::int32_t direction) {
    WriteTitle(MassUnit(run, direction));
    if (direction == 1)
        Write(run.units.massX, "(I10,D14.5)", run.control.counts.NDT, run.fibres.POROSITY);
    else
        Write(run.units.massX, "(I10)", run.control.counts.NDT);
    WriteCoefficientHead(MassUnit(run, direction));
}

void WriteChangeTitle(TextUnit& unit) {
    Write(unit, "(' CHANGE OF MASS AT INLET CROSS-SECTION WITH TIME')");
}

} // namespace

void WritePlainMassFile(Run& run) {
    TextUnit& unit = run.units.massX;
    OpenMassFile(run, 1);
    WriteTitle(unit);
    Write(unit, "(I10,D14.5)", run.control.counts.NDT, run.fibres.POROSITY);
    WriteCoefficientHead(unit);
    CloseTextUnit(unit);
}

void OpenMassFiles(Run& run) {
    const HomogenizationCard& card = run.fit.card;
    const std::int32_t wanted[4] = {0, card.INDFITX, card.INDFITY, card.INDFITZ};
    for (std::int32_t direction = 1; direction <= 3; ++direction) {
        if (wanted[direction] != 1 && run.fit.INDDEG != direction)
            continue;
        OpenMassFile(run, direction);
        if (run.control.header.IDIRECTD == 1)
            WriteDirectHeads(run, direction);
    }
    run.units.massTables = true;
}

void WriteDirectRow(Run& run, double concentration, double bulk, double equivalent) {
    Write(MainUnit(run), "(3D16.5)", concentration, bulk, equivalent);
}

void WriteMassChange(Run& run) {
    TextUnit& unit = MainUnit(run);
    WriteChangeTitle(unit);
    Write(unit, "(7X,'STEP',17X,'FLUX-MICRO',10X,'FLUX-EQUIV')");
    for (std::int32_t step = 1; step <= run.control.counts.NDT; ++step) {
        const auto row = static_cast<std::size_t>(step - 1);
        Write(unit, "(5X,I5,5X,D16.5,5X,D16.5)", step, run.mass.FLUXMICRO[row], run.mass.FLUXEQUIV[row]);
    }
}

void PrintFittedParameters(Run& run) {
    TextUnit& unit = MainUnit(run);
    const FitState& fit = run.fit;
    const std::int32_t i = fit.INDDEG;
    const double HEQ =
        fit.card.IDIAM == 1 ? fit.HEQDIR[i] - 0.5 * run.control.header.DMOLECULE : fit.HEQDIR[i];
    Write(unit, "(' VALUES OF FITTED PARAMETERS')");
    Write(unit, "(7X,'D1D',17X,'D2D',10X,'HEQ',10X,'HEQ0')");
    Write(unit, "(4D16.5)", fit.D1DIR[i], fit.D2DIR[i], HEQ, fit.HEQ0);
    WriteChangeTitle(unit);
    Write(unit, "(7X,'STEP',17X,'TIME',10X,'MASS FLUX')");
}

void WriteFlowRow(Run& run, std::int32_t result) {
    const auto row = static_cast<std::size_t>(result - 1);
    if (row >= run.mass.FLUXEQUIV.size())
        return;
    Write(MainUnit(run), "(5X,I5,5X,D16.5,5X,D16.5)", result, run.clock.TIME, run.mass.FLUXEQUIV[row]);
}

} // namespace zurt
