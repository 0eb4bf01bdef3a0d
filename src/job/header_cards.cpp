#include "job/header_cards.h"

#include "core/format.h"
#include "core/stop.h"
#include "core/widened_constants.h"
#include "geometry/element_family.h"
#include "run/partition.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

namespace zurt {

namespace {

constexpr double kSmallestTolerance = 1e-10;
constexpr std::int32_t kDefaultMAXIT = 15;

constexpr CardField kFormatFields[] = {
    ZURT_CODE(HeaderFields, INDFOR, "I5", 0, 2, "is no format: no field of any further card is read",
              "format of all further cards: 0 or 1 free, 2 fixed"),
    ZURT_CODE(HeaderFields, NDS, "I5", 0, 3,
              "is no mode of device modelling: it acts as 1, without fluxes at the nodes",
              "device modelling: 0 none, 1, 2 or 3"),
    ZURT_CODE(HeaderFields, NANOCH, "I5", 0, 3,
              "is no nanochannel: above 3 it acts as 1, below 0 as none whose time functions are left out",
              "nanochannel: 0 none, 1 without, 2 with left, 3 with both reservoirs"),
    ZURT_CODE(HeaderFields, SolverSelector, "I5", 0, 2,
              "selects no solver of its own: the skyline solver runs",
              "2 selects the sparse solver, any other value the skyline"),
};

constexpr CardField kFirstDeviceFields[] = {
    ZURT_AMOUNT(HeaderFields, ELFIB, "D10.4", "length of the domain, X"),
    ZURT_AMOUNT(HeaderFields, DFIB, "D10.4", "depth of the domain, Y"),
    ZURT_AMOUNT(HeaderFields, WFIB, "D10.4", "width of the domain, Z"),
    ZURT_DORMANT(HeaderFields, ELPCL, "D10.4", "length of the second domain, X", "echoed only"),
    ZURT_CODE(HeaderFields, AMOLAR, "D10.4", 0.0, HUGE_VAL, "is no molar mass: the factor is 1",
              "molar mass: factor on nodal mass fluxes"),
    ZURT_AMOUNT(HeaderFields, DMOLECULE, "D10.4", "diameter of the diffusing molecules"),
};

constexpr CardField kSecondDeviceFields[] = {
    ZURT_CODE(HeaderFields, NXFIB, "I5", 0, HUGE_VAL, "counts nothing: the outlet layer is passed over",
              "divisions of the first domain, X"),
    ZURT_CODE(HeaderFields, NYFIB, "I5", 0, HUGE_VAL, "counts nothing: the outlet layer is passed over",
              "divisions, Y"),
    ZURT_CODE(HeaderFields, NZFIB, "I5", 0, HUGE_VAL, "counts nothing: the outlet layer is passed over",
              "divisions, Z"),
    ZURT_CODE(HeaderFields, NXPCL, "I5", 0, HUGE_VAL, "counts nothing: the outlet layer is passed over",
              "divisions of the second domain, X"),
    ZURT_CODE(HeaderFields, INDDEGR, "I5", 0, 1, "acts as 0: no degradation card is read",
              "1: a degradation card follows"),
};

constexpr CardField kDegradationFields[] = {
    ZURT_AMOUNT(HeaderFields, DEGALPHA, "D10.4", "coefficient alpha"),
    ZURT_RANGE(HeaderFields, DEGIPOR, "D10.4", 0.0, 1.0, "initial porosity of the solid"),
    ZURT_AMOUNT(HeaderFields, DEGPART, "D10.4", "liquid-solid partitioning"),
    ZURT_AMOUNT(HeaderFields, DEGRATEK, "D10.4", "degradation rate constant k"),
    ZURT_AMOUNT(HeaderFields, DEGRATEKW, "D10.4", "degradation rate constant kw"),
    ZURT_AMOUNT(HeaderFields, DIFFCDS, "D10.4", "diffusion coefficient in the solid"),
    ZURT_AMOUNT(HeaderFields, DIFFCDL, "D10.4", "diffusion coefficient in the liquid"),
};

constexpr CardField kBasicDataFields[] = {
    ZURT_INTEGER(HeaderFields, NP, "I10", "number of nodes; must be positive"),
    ZURT_COUNT(HeaderFields, NGET, "I5", "number of element groups, at most 10; 0 becomes 1"),
    ZURT_COUNT(HeaderFields, NMATT, "I5", "number of materials; 0 becomes 1"),
    ZURT_CODE(HeaderFields, NSTAC, "I5", 0, 1, "is not 0: the problem is transient",
              "0 steady, any other value transient"),
    ZURT_AMOUNT(HeaderFields, NPER, "I5", "number of periods of constant step; 0 becomes 1"),
    ZURT_INTEGER(HeaderFields, NPRINT, "I5", "printing interval in steps; 0 becomes 1, negative: no results"),
    ZURT_CODE(HeaderFields, IANIZ, "I5", 0, 1, "acts as 0: isotropic", "0 isotropic, 1 anisotropic"),
    ZURT_CODE(HeaderFields, NULAZ, "I5", -HUGE_VAL, 3, "asks for nothing: no input is printed",
              "input printout: 1 cards and data, 2 cards, 3 data; 0 becomes 1"),
    ZURT_CODE(HeaderFields, ITOR, "I5", 0, 3, "is no analogue: it acts as 0",
              "analogue problems: 1 torsion, 2, 3 potential flow"),
    ZURT_INTEGER(HeaderFields, IGRAF, "I5", "graphics interval in steps; 0 becomes 1, negative: no file"),
    ZURT_CODE(HeaderFields, IDIRECTD, "I5", 0, 1, "acts as 0: no direct calculation",
              "1: direct calculation of the effective coefficient"),
};

constexpr CardField kControlFields[] = {
    ZURT_CODE(HeaderFields, INTEB, "I5", 0, 1, "is not built: quadrilaterals and bricks are not formed",
              "time integration: 1 Euler backward; 0 becomes 1"),
    ZURT_DORMANT(HeaderFields, INDSC, "I5", "print of results in prescribed nodes", "echoed only"),
    ZURT_CODE(HeaderFields, IFORM, "I5", 0, 1, "acts as 0: values in E13.5",
              "listed values: 0 in E13.5, 1 in F10.3"),
    ZURT_CODE(HeaderFields, MAXIT, "I5", 0, HUGE_VAL,
              "sets no limit: a step that does not converge goes on for ever",
              "largest iteration number of a step; 0 becomes 15"),
    ZURT_CODE(HeaderFields, EPSTA, "F10.2", 0.0, HUGE_VAL, "takes no part",
              "absolute accuracy; takes part above 1e-10"),
    ZURT_CODE(HeaderFields, EPSTR, "F10.2", 0.0, HUGE_VAL, "is met by no step that changes",
              "relative accuracy; 1e-3 when both accuracies are below 1e-10"),
    ZURT_DORMANT(HeaderFields, NJRAP, "I5", "iteration method; 0 becomes 1",
                 "echoed only: the iteration is the same for every value"),
    ZURT_CODE(HeaderFields, IPASSPRINT, "I5", 0, 2, "prints no pass of a direct calculation",
              "pass to be written; stored as the card's value plus one"),
};

constexpr CardField kExecutionFields[] = {
    ZURT_CODE(HeaderFields, IREST, "I5", 0, 2, "acts as 1: execution",
              "0 check of input data, any other value execution"),
    ZURT_CODE(HeaderFields, NCZK, "I5", 0, HUGE_VAL, "acts as 0: all steps are kept",
              "last steps to keep in the step file; 0 all"),
    ZURT_DORMANT(HeaderFields, NCZR, "I5", "steps on the disk before a restart",
                 "echoed only: nothing restarts"),
    ZURT_DORMANT(HeaderFields, VREM0, "E15.8", "time of a restart", "echoed only: nothing restarts"),
    ZURT_COUNT(HeaderFields, PotentialFunctionSize, "I5", "words for the potential under ITOR 2"),
};

constexpr CardField kMaterialHeaderFields[] = {
    ZURT_COUNT(CurveCounts, NANLK, "I5", "analytic functions of the diffusion coefficient"),
    ZURT_COUNT(CurveCounts, NTABK, "I5", "tabular functions of the diffusion coefficient; 0: all analytic"),
    ZURT_COUNT(CurveCounts, MAXTK, "I5", "most points of one of them; 1: constant coefficients"),
    ZURT_COUNT(CurveCounts, NANLC, "I5", "analytic functions of the capacity"),
    ZURT_COUNT(CurveCounts, NTABC, "I5", "tabular functions of the capacity"),
    ZURT_COUNT(CurveCounts, MAXTC, "I5", "most points of one of them"),
};

// Under NDS the first of the six fields is the largest number of points of a diffusion curve; the others are read and
// replaced.
constexpr CardField kDeviceMaterialHeaderFields[] = {
    ZURT_COUNT(CurveCounts, MAXPMAT, "I5", "most pairs of concentration and coefficient of one curve"),
    ZURT_DORMANT(CurveCounts, NTABK, "I5", "", "replaced by NMATT"),
    ZURT_DORMANT(CurveCounts, MAXTK, "I5", "", "replaced by MAXPMAT"),
    ZURT_DORMANT(CurveCounts, NANLC, "I5", "", "replaced by 0"),
    ZURT_DORMANT(CurveCounts, NTABC, "I5", "", "replaced by 0"),
    ZURT_DORMANT(CurveCounts, MAXTC, "I5", "", "replaced by 0"),
};

constexpr CardField kBoundaryFields[] = {
    ZURT_CODE(CurveCounts, NPOC, "I5", 0, HUGE_VAL, "acts as 1: one value for all nodes",
              "groups of initial values; 0 or 1: one value for all nodes"),
    ZURT_COUNT(CurveCounts, NQP, "I5", "surface flux functions"),
    ZURT_COUNT(CurveCounts, MAXTQP, "I5", "most points of one of them"),
    ZURT_COUNT(CurveCounts, NHP, "I5", "convection functions"),
    ZURT_COUNT(CurveCounts, MAXTHP, "I5", "most points of one of them"),
    ZURT_COUNT(CurveCounts, NTOK, "I5", "environment functions"),
    ZURT_COUNT(CurveCounts, MAXTOK, "I5", "most points of one of them"),
    ZURT_COUNT(CurveCounts, NQE, "I5", "volume source functions"),
    ZURT_COUNT(CurveCounts, MAXTQE, "I5", "most points of one of them"),
    ZURT_COUNT(CurveCounts, NHR, "I5", "radiation functions"),
    ZURT_COUNT(CurveCounts, MAXTHR, "I5", "most points of one of them"),
};

} // namespace

const CardLayout kFormatCard = Layout("Format card", kFormatFields);
const CardLayout kFirstDeviceCard = Layout("First device card", kFirstDeviceFields);
const CardLayout kSecondDeviceCard = Layout("Second device card", kSecondDeviceFields);
const CardLayout kDegradationCard = Layout("Degradation card", kDegradationFields);
const CardLayout kBasicDataCard = Layout("Basic data card", kBasicDataFields);
const CardLayout kControlCard = Layout("Control card", kControlFields);
const CardLayout kExecutionCard = Layout("Execution card", kExecutionFields);
const CardLayout kMaterialHeaderCard = Layout("Material header card", kMaterialHeaderFields);
const CardLayout kDeviceMaterialHeaderCard =
    Layout("Material header card under NDS", kDeviceMaterialHeaderFields);
const CardLayout kBoundaryCard = Layout("General boundary card", kBoundaryFields);

void ReadTitle(Run& run) {
    CardBuffer card;
    run.control.header.INDFOR = 2; // keeps the card, without a step back
    ReadCard(run.deck, 2, "Title card", card);
    std::memcpy(run.control.header.title, card.text, kTitleLength);
}

void ReadFormatCard(Run& run) {
    HeaderFields& header = run.control.header;
    header.INDFOR = 1; // always list-directed
    ReadCardFields(run.deck, 1, kFormatCard, &header);
    if (header.INDFOR == 0)
        header.INDFOR = 1;
    SetSolver(run, header.SolverSelector);
    header.IPASSPRINT = 1;
}

void ReadDeviceCards(Run& run) {
    HeaderFields& header = run.control.header;
    ReadImageFields(run.deck, header.INDFOR, kFirstDeviceCard, &header);
    ReadImageFields(run.deck, header.INDFOR, kSecondDeviceCard, &header);
    if (header.INDDEGR == 1)
        ReadImageFields(run.deck, header.INDFOR, kDegradationCard, &header);
}

void ReadBasicData(Run& run) {
    HeaderFields& header = run.control.header;
    ReadCardFields(run.deck, header.INDFOR, kBasicDataCard, &header);
    run.job.BasicDataLine = run.deck.cardLine;
    if (header.NP <= 0) {
        TextUnit& unit = BeginMessage(run);
        Write(unit, "(A)", Say(run, " GRESKA U ULAZNIM PODACIMA :", " ERROR IN INPUT DATA :"));
        Write(unit, "(A,I5)", Say(run, " BROJ CVOROVA =", " NUMBER OF NODAL POINT - NP ="), header.NP);
        Write(unit, "(A)", Say(run, " A MORA BITI VECI OD NULE |", " MUST BE GREATER THAN ZERO!"));
        StopRun(unit);
    }
    if (header.NSTAC != 0 && header.NPER < 0)
        DeckError(run.deck, kBasicDataCard.group, "NPER", std::to_string(header.NPER),
                  "a transient problem needs a count of periods");
    for (std::int32_t* field :
         {&header.NGET, &header.NMATT, &header.NPER, &header.NPRINT, &header.NULAZ, &header.IGRAF})
        if (*field == 0)
            *field = 1;
}

void ReadControlCard(Run& run) {
    HeaderFields& header = run.control.header;
    // Under another INDFOR no field is read, and the shift of IPASSPRINT must not be made twice.
    header.IPASSPRINT -= 1;
    ReadCardFields(run.deck, header.INDFOR, kControlCard, &header);
    if (header.IPASSPRINT < std::numeric_limits<std::int32_t>::max())
        header.IPASSPRINT += 1;
    if (header.INTEB == 0)
        header.INTEB = 1;
    if (header.MAXIT == 0)
        header.MAXIT = kDefaultMAXIT;
    if (header.NJRAP == 0)
        header.NJRAP = 1;
    if (std::fabs(header.EPSTA) < kSmallestTolerance && std::fabs(header.EPSTR) < kSmallestTolerance)
        header.EPSTR = kDefaultEPSTR;
}

void ReadExecutionCard(Run& run) {
    ReadCardFields(run.deck, run.control.header.INDFOR, kExecutionCard, &run.control.header);
}

void NoteKindOfGroup(Run& run, const ElementGroup& group) {
    if (group.IZIP > 0)
        run.job.SourcePresent = 1;
    if (group.IZIP == 2)
        run.job.ConcentrationSource = 1;
    if (group.ISUB4 > 0)
        run.job.SubstructurePresent = 1;
    run.job.LastISUB4 = group.ISUB4;
}

void ReadMaterialHeader(Run& run) {
    CurveCounts& counts = run.control.counts;
    const HeaderFields& header = run.control.header;
    if (header.NDS == 0) {
        ReadCardFields(run.deck, header.INDFOR, kMaterialHeaderCard, &counts);
        return;
    }
    ReadCardFields(run.deck, header.INDFOR, kDeviceMaterialHeaderCard, &counts);
    counts.NTABK = header.NMATT;
    counts.MAXTK = counts.MAXPMAT;
    counts.NANLK = counts.NANLC = counts.NTABC = counts.MAXTC = 0;
}

void ReadBoundaryCard(Run& run) {
    CurveCounts& counts = run.control.counts;
    ReadCardFields(run.deck, run.control.header.INDFOR, kBoundaryCard, &counts);
    if (counts.NPOC == 0 && run.control.header.NDS != 0)
        counts.NPOC = 1;
    if (run.job.SourcePresent != 0 && counts.NQE == 0) {
        TextUnit& unit = BeginMessage(run);
        Write(unit, "(2A)", " ERROR IN INPUTE DATA:", " THERE IS SOURCE TERM FOR ELEMENT GROUP, IZIP.GT.0");
        Write(unit, "(A)", " TIME FUNCTIONS MUST BE INPUT AND NQE MUST BE GT.0");
        Write(unit, "(A,I5)", " INPUT DATA FOR NQE IS NQE=", counts.NQE);
        Write(unit, "(A)", " S T O P");
        StopRun(unit);
    }
}

} // namespace zurt
