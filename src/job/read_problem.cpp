#include "job/read_problem.h"

#include "check/check_mesh.h"
#include "check/check_model.h"
#include "core/format.h"
#include "core/stop.h"
#include "elements/cards/group_cards.h"
#include "elements/element_phases.h"
#include "elements/surfaces/surface_cards.h"
#include "geometry/radial_nodes.h"
#include "homogenization/homogenization_card.h"
#include "homogenization/recorded_pass.h"
#include "job/header_cards.h"
#include "job/header_echo.h"
#include "microscale/correction_table.h"
#include "microscale/fibre_data.h"
#include "microscale/fibre_step.h"
#include "microscale/marked_nodes.h"
#include "model/diffusion_curves.h"
#include "model/function_tables.h"
#include "model/initial_conditions.h"
#include "model/material_tables.h"
#include "model/materials.h"
#include "model/nodes.h"
#include "model/outlet.h"
#include "model/prescribed_file.h"
#include "model/time_functions.h"
#include "model/time_steps.h"
#include "results/unv_mesh.h"
#include "run/banner.h"
#include "run/echo.h"
#include "run/files.h"
#include "run/partition.h"
#include "solver/linear_system.h"

#include <string_view>

namespace zurt {

namespace {

// --- header cards -------------------------------------------------------------------------------------------------

void OpenOutputs(Run& run) {
    const HeaderFields& header = run.control.header;
    if (header.NULAZ < 0)
        Write(run.units.console, "(1X,A,' \"',A,'\"')",
              Say(run, "NE STAMPAJU SE ULAZNI PODACI ZA PROBLEM POD NASLOVOM",
                  "NO PRINTOUT INPUT DATA FOR PROBLEM UNDER TITLE"),
              std::string_view(header.title, 78));
    if ((header.NULAZ >= 0 || header.NPRINT >= 0) && run.units.ListingOpen == 0) {
        OpenListing(run);
        WriteBanner(run);
    }
    MarkReadStart();
    if (header.IGRAF > 0 && run.units.GraphicsOpen == 0)
        OpenGraphics(run);
    if ((header.NULAZ == 1 || header.NULAZ == 2) && run.job.CardListingDone == 0) {
        ListCards(run);
        if (run.units.ListingOpen == 1)
            run.job.CardListingDone = 1;
    }
}

void ReadHeaderCards(Run& run) {
    const HeaderFields& header = run.control.header;
    ReadTitle(run);
    const std::int32_t titleCard = run.deck.CardCounter;
    ReadFormatCard(run);
    const std::int32_t formatCard = run.deck.CardCounter;
    if (header.NDS != 0 && header.NANOCH > 0)
        ReadDeviceCards(run);
    OpenMessages(run);
    ReadBasicData(run);
    OpenOutputs(run);
    if (EchoInput(run))
        EchoHeaderCards(run, titleCard, formatCard);
    ReadControlCard(run);
    if (EchoInput(run))
        EchoControlCard(run);
    ReadExecutionCard(run);
    if (EchoInput(run))
        EchoExecutionCard(run);
}

// --- model data ---------------------------------------------------------------------------------------------------

void ReadTimeData(Run& run) {
    if (run.control.header.NSTAC == 0) {
        CountSteadySteps(run);
        return;
    }
    TakePeriodTables(run);
    ReadTimeSteps(run, 0);
    TakeStepList(run);
    ReadTimeSteps(run, 1);
}

void ReadNodes(Run& run) {
    TakeNodeArrays(run);
    ReadNodalData(run);
    WriteUnvNodes(run);
    TakeDiagonalPositions(run);
}

void ReadMicroscaleData(Run& run) {
    ReadHomogenizationCard(run);
    ReadFibreData(run, run.fibres);
}

[[noreturn]] void StopOnTooManyGroups(Run& run, std::int32_t NGE) {
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(A,I3)", "BROJ TIPOVA ELEMENATA NGET=", NGE);
    Write(unit, "(A)", "-VECI OD 10;  URADITI SLEDECE:");
    Write(unit, "(A)", "POVECATI DIMENZIJU U VEKTORU NETV(10,3)- COMMON/TEMPGL/,");
    Write(unit, "(A)", "-DIMENZIJA MORA BITI VECA ILI JEDNAKA BROJU TIPOVAELEMENATA");
    Write(unit, "(A)", "2. ZAMENITI INSTRUKCIJU .IF(NGE.LE.10) GO TO 45. UMAIN-U U INSTRUKCIJU:");
    Write(unit, "(A)", ".IF(NGE.LE.NDIM) GO TO 45. GDE JE NDIM-BROJ NA KOJI JE DIMENZIJA POVECANA");
    StopRun(unit);
}

void ReadElementGroups(Run& run) {
    if (EchoInput(run))
        Write(run.units.listing, "('1'///6X,A)",
              Say(run, "U L A Z N I    P O D A C I    O    G R U P A M A   E L E M E N A T A",
                  "I N P U T    D A T A    F O R    E L E M E N T  G R O U P S"));
    run.job.SourcePresent = run.job.ConcentrationSource = run.job.SubstructurePresent = 0;
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        if (NGE > kMaxGroups)
            StopOnTooManyGroups(run, NGE);
        const ElementGroup& group = run.groups[NGE];
        const std::int32_t first = NumberOfNextCard(run.deck);
        ReadGroupCard(run, NGE);
        NoteKindOfGroup(run, group);
        if (EchoInput(run))
            EchoGroupCard(run, group, first);
        ReadElementGroup(run, run.groups[NGE]);
        WriteUnvElements(run, group);
    }
}

// The fibre step stands ahead of the solution vectors: it may take equations away.
void LayMeshOverFibres(Run& run) {
    if (run.fit.card.NSETS > 0) {
        ApplyFibres(run, run.fibres);
        TakeHeqStart(run);
    }
    if (RunsSeveralTimes(run))
        ReserveFullLayout(run);
}

// DBULK: the coefficients of the last material's curve, which a fit rewrites.
void KeepFitColumn(Run& run) {
    TakeFitColumn(run);
    StopIfInputOverflows(run);
    const RealTable table = DiffusionTable(run);
    const RealArray DBULK = RealSection(run.A, run.control.at.LFIT, run.control.counts.MAXPMAT);
    for (Word i = 1; i <= DBULK.length; ++i)
        DBULK(i) = table(run.control.header.NMATT, 2 * i);
}

void ReadMaterialData(Run& run) {
    const HeaderFields& header = run.control.header;
    const std::int32_t first = NumberOfNextCard(run.deck);
    ReadMaterialHeader(run);
    if (EchoInput(run))
        EchoMaterialHeader(run, first);
    TakeDiffusionCurves(run);
    if (header.NANOCH > 0 || header.NDS != 0)
        ReadDiffusionCurves(run);
    if (header.NANOCH > 0) {
        ReadNanochannelTable(run);
        TakeNanochannelVectors(run);
    }
    if (run.fit.card.NFIT == 1)
        KeepFitColumn(run);
    LayMeshOverFibres(run);
    TakeMaterialTables(run);
    if (header.NDS == 0)
        ReadMaterials(run);
}

void ReadTimeDependence(Run& run) {
    const HeaderFields& header = run.control.header;
    if (header.NDS != 0 && header.NDS != 2 && header.NANOCH == 0)
        ReadTimeFunctions(run, CardsOfDeck(run));
    if (header.NDS != 0 && header.NDS != 2 && header.NANOCH > 0)
        ReadOutletData(run);
    ReadPrescribedFile(run);
}

// Which curves make the problem iterate within a step.
void DecideKindOfProblem(Run& run) {
    const CurveCounts& counts = run.control.counts;
    run.job.ConductivityNonlinear = counts.NANLK > 0 || counts.MAXTK > 1;
    run.job.CapacityNonlinear = counts.NANLC > 0 || counts.MAXTC > 1;
    run.job.NonlinearFlag = run.job.ConductivityNonlinear != 0 || run.job.CapacityNonlinear != 0 ||
                            counts.MAXTHP > 1 || (counts.MAXTQE > 1 && run.job.ConcentrationSource != 0) ||
                            counts.MAXTHR > 0;
}

void StartAssembledFibres(Run& run) {
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (run.groups[NGE].NETIP == 4 && run.groups[NGE].ISUB4 == 0)
            SetFibreInitialValues(run, run.groups[NGE]);
}

void ReadBoundaryData(Run& run) {
    const CurveCounts& counts = run.control.counts;
    const std::int32_t first = NumberOfNextCard(run.deck);
    ReadBoundaryCard(run);
    if (EchoInput(run))
        EchoBoundaryCard(run, first);
    ReadFunctionTables(run);
    DecideKindOfProblem(run);
    RequireUseOfPrescribedValues(run);
    TakeSolutionVectors(run);
    if (run.control.header.NSTAC != 0 || run.job.NonlinearFlag == 1) {
        ReadInitialConditions(run, RoomForStartValues(run));
        StartAssembledFibres(run);
    }
    if (run.control.header.NSTAC == 0 || run.job.NonlinearFlag == 1) {
        Copy<double>(StepSolution(run), StepStart(run));
        Copy<double>(StepSolution(run), StepIncrement(run));
    }
    if (counts.NQP != 0 || counts.NHP != 0 || counts.NTOK != 0 || counts.NHR != 0)
        ReadSurfaceData(run);
}

} // namespace

void ReadProblem(Run& run) {
    ++run.job.ProblemNumber;
    CarryOutletOver(run);
    run.job.Solving = 0;
    run.deck.block = {};
    RestartWorkingVector(run.A);
    ForgetFit(run);
    ReserveRoom(run, 0, 0);
    ReadHeaderCards(run);
    ReadTimeData(run);
    ReadNodes(run);
    ReadMicroscaleData(run);
    ReadElementGroups(run);
    if (run.check.on)
        CheckMesh(run);
    ReadMaterialData(run);
    ReadTimeDependence(run);
    ReadBoundaryData(run);
    TakeSolverVectors(run);
    WriteSizeReport(run);
    ReportSystem(run);
    if (run.check.on)
        CheckModel(run);
    else
        StopIfSystemOverflows(run);
    WriteDeckNotes(run.deck);
}

} // namespace zurt
