// The linear system of zurt-mpi: what linear_system.cpp is in zurt. Compiled for zurt-mpi alone.
//
// Every rank forms its share of the elements into rows of its own (solver/shared_rows.h); PETSc gets the entries, sends each
// to the rank that keeps its row, and solves. Ranks keep consecutive equations: those that ShareOf(JEDN) gives them. The
// right-hand side is summed the same way, and the solution comes back to all ranks. Solver and preconditioner are chosen by
// PETSc's options; kTolerance and what DefaultOptions sets holds where they say nothing.
#include "core/format.h"
#include "core/ranks_mpi.h"
#include "core/stop.h"
#include "solver/linear_system.h"
#include "solver/shared_rows.h"
#include "solver/solver_storage.h"

#include <algorithm>
#include <petscksp.h>
#include <string>
#include <vector>

namespace zurt {

namespace {

// Of the residual, relative to the right-hand side.
constexpr double kTolerance = 1e-12;
constexpr PetscInt kMostIterations = 10000;

struct PetscSystem {
    SharedRows shared;
    std::vector<double> entries; // as PETSc takes them
    Mat A = nullptr;
    Vec b = nullptr, x = nullptr;
    KSP solver = nullptr;
    bool optionsChecked = false;
    std::string fault; // the first text of the error in hand, from PETSc
    // Of PETSc's log, which -log_view prints.
    PetscLogStage forming = 0, solving = 0;
    bool forms = false;

    PetscSystem();
    ~PetscSystem();
    PetscSystem(const PetscSystem&) = delete;
    PetscSystem& operator=(const PetscSystem&) = delete;
};

PetscErrorCode KeepFault(MPI_Comm /*ranks*/, int /*line*/, const char* /*function*/, const char* /*file*/,
                         PetscErrorCode code, PetscErrorType type, const char* text, void* fault) {
    if (type == PETSC_ERROR_INITIAL)
        *static_cast<std::string*>(fault) = text;
    return code;
}

void ForgetObjects(PetscSystem& system) {
    KSPDestroy(&system.solver);
    VecDestroy(&system.x);
    VecDestroy(&system.b);
    MatDestroy(&system.A);
}

PetscSystem::PetscSystem() {
    PetscPushErrorHandler(KeepFault, &fault);
    if (PetscLogStageGetId("Forming", &forming) != 0 || forming < 0)
        PetscLogStageRegister("Forming", &forming);
    if (PetscLogStageGetId("Solving", &solving) != 0 || solving < 0)
        PetscLogStageRegister("Solving", &solving);
}

PetscSystem::~PetscSystem() {
    ForgetObjects(*this);
    PetscPopErrorHandler();
}

PetscSystem& SystemOf(Run& run) {
    return StorageOf<PetscSystem>(run);
}

void Require(const PetscSystem& system, PetscErrorCode code) {
    if (code == 0)
        return;
    std::string text = system.fault.empty() ? "error " + std::to_string(code) : system.fault;
    std::replace(text.begin(), text.end(), '\n', ' ');
    StopInJointWork("PETSc: " + text);
}

// --- options ------------------------------------------------------------------------------------------------------

bool IsGiven(const char* option) {
    PetscBool given = PETSC_FALSE;
    PetscOptionsHasName(nullptr, nullptr, option, &given);
    return given == PETSC_TRUE;
}

// Where the user names no preconditioner: an incomplete Cholesky factor of each rank's rows.
void ChoosePreconditioner(const PetscSystem& system) {
    if (IsGiven("-pc_type"))
        return;
    PC preconditioner = nullptr;
    Require(system, KSPGetPC(system.solver, &preconditioner));
    Require(system, PCSetType(preconditioner, PCBJACOBI));
    if (!IsGiven("-sub_pc_type"))
        Require(system, PetscOptionsSetValue(nullptr, "-sub_pc_type", "icc"));
}

// Conjugate gradients can measure the residual itself; what others measure is their own affair.
void ChooseNorm(const PetscSystem& system) {
    PetscBool gradients = PETSC_FALSE;
    Require(system, PetscObjectTypeCompare(reinterpret_cast<PetscObject>(system.solver), KSPCG, &gradients));
    if (gradients == PETSC_TRUE && !IsGiven("-ksp_norm_type"))
        Require(system, KSPSetNormType(system.solver, KSP_NORM_UNPRECONDITIONED));
}

bool IsOnCommandLine(const std::string& option) {
    int count = 0;
    char** arguments = nullptr;
    PetscGetArgs(&count, &arguments);
    return std::find(arguments, arguments + count, option) != arguments + count;
}

// Options that PETSc asks for when it ends, so that nothing has used them before.
bool IsForTheEnd(const std::string& option) {
    for (const char* head : {"-log_", "-options_", "-memory_", "-malloc", "-objects_"})
        if (option.rfind(head, 0) == 0)
            return true;
    return false;
}

// Behind the first solution whatever acts on it has been asked for.
void CheckOptions(PetscSystem& system) {
    if (system.optionsChecked)
        return;
    system.optionsChecked = true;
    PetscInt count = 0;
    char **names = nullptr, **values = nullptr;
    Require(system, PetscOptionsLeftGet(nullptr, &count, &names, &values));
    std::string given, other;
    for (PetscInt i = 0; i < count; ++i) {
        const std::string option = std::string("-") + names[i];
        if (!IsForTheEnd(option))
            (IsOnCommandLine(option) ? given : other) += " " + option;
    }
    Require(system, PetscOptionsLeftRestore(nullptr, &count, &names, &values));
    if (!other.empty())
        WriteNote("PETSc has no use for these options of its environment:" + other);
    if (!given.empty())
        StopWithLibraryError("PETSc has no use for" + given +
                             ": misspelt, or of another solver or preconditioner than the one chosen");
}

// --- matrix and vectors -------------------------------------------------------------------------------------------

void MakeMatrix(PetscSystem& system, std::int32_t JEDN) {
    const Share own = ShareOf(JEDN);
    const auto length = static_cast<PetscInt>(own.last - own.first + 1);
    std::vector<std::int32_t> row, column;
    ListEntries(system.shared, row, column);
    system.entries.resize(row.size());
    Require(system, MatCreate(PETSC_COMM_WORLD, &system.A));
    Require(system, MatSetSizes(system.A, length, length, JEDN, JEDN));
    Require(system, MatSetType(system.A, MATAIJ));
    Require(system, MatSetOption(system.A, MAT_SPD, PETSC_TRUE));
    Require(system,
            MatSetPreallocationCOO(system.A, static_cast<PetscCount>(row.size()), row.data(), column.data()));
    Require(system, MatCreateVecs(system.A, &system.x, &system.b));
}

void MakeSolver(PetscSystem& system) {
    Require(system, KSPCreate(PETSC_COMM_WORLD, &system.solver));
    Require(system, KSPSetType(system.solver, KSPCG));
    Require(system,
            KSPSetTolerances(system.solver, kTolerance, PETSC_DEFAULT, PETSC_DEFAULT, kMostIterations));
    ChoosePreconditioner(system);
    Require(system, KSPSetFromOptions(system.solver));
    ChooseNorm(system);
}

// The matrix of all ranks from the rows of each.
void GatherMatrix(PetscSystem& system, std::int32_t JEDN) {
    std::int32_t renewed = FinishSharedRows(system.shared, JEDN) ? 1 : 0;
    SumOverRanks(IntArray(&renewed, 1));
    if (renewed > 0) {
        ForgetObjects(system);
        MakeMatrix(system, JEDN);
        MakeSolver(system);
    }
    ListValues(system.shared, system.entries);
    Require(system, MatSetValuesCOO(system.A, system.entries.data(), INSERT_VALUES));
    Require(system, KSPSetOperators(system.solver, system.A, system.A));
}

// An equation whose diagonal is not above zero has no element, or one with an absurd coefficient.
void RequirePositiveDiagonal(Run& run, PetscSystem& system) {
    Require(system, MatGetDiagonal(system.A, system.x));
    const Share own = ShareOf(run.sizes.JEDN);
    const PetscScalar* diagonal = nullptr;
    Require(system, VecGetArrayRead(system.x, &diagonal));
    const PetscScalar* const end = diagonal + (own.last - own.first + 1);
    const PetscScalar* const found = std::find_if(diagonal, end, [](double d) { return 0.0 >= d; });
    if (found != end) {
        TextUnit& unit = BeginMessage(run);
        Write(unit, "(/A//A,I10//A,E20.12)",
              Say(run, " MATRICA SISTEMA NIJE POZITIVNO DEFINITNA",
                  " MATRIX OF SYSTEM IS NOT POSITIVE DEFINITE"),
              Say(run, " DIJAGONALNI ELEMENT NIJE POZITIVAN ZA JEDNACINU BR.",
                  " DIAGONAL IS NOT POSITIVE IN EQUATION NO."),
              own.first + (found - diagonal), Say(run, " DIJAGONALNI ELEMENT=", " DIAGONAL="), *found);
        StopRun(unit);
    }
    Require(system, VecRestoreArrayRead(system.x, &diagonal));
    StopWithOtherRanks();
}

void SumRightHandSide(PetscSystem& system, ConstRealArray R) {
    PetscScalar* own = nullptr;
    Require(system, VecGetArray(system.b, &own));
    SumToShares(R, own);
    Require(system, VecRestoreArray(system.b, &own));
}

void SpreadSolution(PetscSystem& system, RealArray R) {
    const Share share = ShareOf(R.length);
    const PetscScalar* own = nullptr;
    Require(system, VecGetArrayRead(system.x, &own));
    std::copy(own, own + (share.last - share.first + 1), R.data + (share.first - 1));
    Require(system, VecRestoreArrayRead(system.x, &own));
    GatherShares(RealTable(R.data, 1, R.length));
}

void StopIfNotConverged(Run& run, const PetscSystem& system) {
    KSPConvergedReason reason = KSP_CONVERGED_ITERATING;
    PetscInt iterations = 0;
    PetscReal residual = 0.0;
    Require(system, KSPGetConvergedReason(system.solver, &reason));
    if (reason > 0)
        return;
    Require(system, KSPGetIterationNumber(system.solver, &iterations));
    Require(system, KSPGetResidualNorm(system.solver, &residual));
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(/A,A)",
          Say(run, " PETSC NIJE RESIO SISTEM JEDNACINA: ", " PETSC HAS NOT SOLVED THE SYSTEM OF EQUATIONS: "),
          KSPConvergedReasons[reason]);
    Write(unit, "(A,I10,A,1PE12.5)", Say(run, " BROJ ITERACIJA =", " NUMBER OF ITERATIONS ="),
          static_cast<std::int32_t>(iterations), Say(run, ", OSTATAK =", ", RESIDUAL ="), residual);
    Write(unit, "(A)", " Another -pc_type or -ksp_type may, or more iterations (-ksp_max_it)");
    StopRun(unit);
}

// --- stages of PETSc's log ----------------------------------------------------------------------------------------

void BeginForming(PetscSystem& system) {
    if (!system.forms)
        PetscLogStagePush(system.forming);
    system.forms = true;
}

void EndForming(PetscSystem& system) {
    if (system.forms)
        PetscLogStagePop();
    system.forms = false;
}

} // namespace

Numbering NumberingOf(const Run& run) {
    return {EquationNumbers(run), run.sizes.JEDN};
}

void BeginLayout(Run& run, const Numbering& /*numbering*/) {
    SystemOf(run).shared = {};
}

void LayOutElements(Run& /*run*/, const Numbering& /*numbering*/, ConstIntTable /*NEL*/, Word /*NDIM*/,
                    ConstIntArray /*marks*/) {}

Word FinishLayout(Run& /*run*/, const Numbering& /*numbering*/) {
    return 0;
}

void SetLayoutAside(Run& /*run*/, std::int32_t /*JEDN*/) {}

void PutLayoutBack(Run& /*run*/) {}

void ReportSystem(Run& run) {
    Write(run.units.listing, "(///11X,A)",
          Say(run, "RESAVANJE: PETSC, MATRICA VAN RADNOG VEKTORA",
              "SOLUTION BY PETSC, MATRIX OUTSIDE WORKING VECTOR"));
}

ElementLimit ElementLimitOf(const Run& /*run*/) {
    return {0, "PETSc"};
}

void ClearMatrix(Run& run) {
    ClearSharedRows(SystemOf(run).shared);
}

void ClearSystem(Run& run) {
    BeginForming(SystemOf(run));
    ClearMatrix(run);
    Fill(RightHandSide(run), 0.0);
}

SystemTarget SystemTargetOf(Run& run) {
    SystemTarget system;
    system.storage = &SystemOf(run);
    system.R = RightHandSide(run);
    system.matrixFlag = run.clock.FactorFlag;
    return system;
}

void AddElement(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND) {
    if (system.matrixFlag != 0)
        AddToSharedRows(static_cast<PetscSystem*>(system.storage)->shared, S, LM, ND);
    AddElementVector(system.R, FE, LM, ND);
}

void LocateElement(const SystemTarget& /*system*/, ConstIntArray /*LM*/, Word /*ND*/, ElementPlaces& places) {
    places.count = 0;
}

void AddLocatedElement(const SystemTarget& system, ElementPlaces& /*places*/, ConstRealArray S,
                       ConstRealArray FE, ConstIntArray LM, Word ND) {
    AddElement(system, S, FE, LM, ND);
}

// Processes share the elements, not threads.
void NumberElements(SystemTarget& /*system*/, Word /*NET*/, Word /*NDMAX*/) {}

bool AddsSideBySide(const SystemTarget& /*system*/) {
    return false;
}

void AddElementBeside(const SystemTarget& system, ElementPlaces& /*places*/, ConstRealArray S,
                      ConstRealArray FE, ConstIntArray LM, Word ND, const bool* /*shared*/,
                      std::vector<DeferredTerm>& /*deferred*/) {
    AddElement(system, S, FE, LM, ND);
}

void SolveSystem(Run& run) {
    PetscSystem& system = SystemOf(run);
    EndForming(system);
    StopWithOtherRanks();
    PetscLogStagePush(system.solving);
    GatherMatrix(system, run.sizes.JEDN);
    RequirePositiveDiagonal(run, system);
    SumRightHandSide(system, RightHandSide(run));
    Require(system, KSPSolve(system.solver, system.b, system.x));
    StopIfNotConverged(run, system);
    SpreadSolution(system, RightHandSide(run));
    CheckOptions(system);
    PetscLogStagePop();
}

} // namespace zurt
