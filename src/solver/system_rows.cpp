#include "solver/system_rows.h"

#include "core/format.h"
#include "core/stop.h"
#include "solver/conjugate_gradients.h"
#include "solver/solver_storage.h"

#include <algorithm>
#include <limits>
#include <string>

namespace zurt {

namespace {

constexpr std::int32_t kMostIterations = 10000;

struct RowLayout {
    SymmetricRows rows;
    ElementEquations elements; // while the layout is formed
    // Of the elements in the order in which they are added, which is the same in every system: their LM, by which they are
    // known again, and the places of their packed matrices in `rows.value`.
    std::vector<std::int32_t> equation;
    std::vector<std::uint32_t> place;
    RowOrder order; // of `rows`
};

struct RowStorage {
    RowLayout layout, aside;
    std::size_t equationInHand = 0, placeInHand = 0; // where the next element's stand
    GradientsWork work;
    double shiftTold = 0.0; // the largest that a note has told of
};

bool Known(const RowStorage& storage, ConstIntArray LM, Word ND) {
    const std::vector<std::int32_t>& known = storage.layout.equation;
    const std::size_t first = storage.equationInHand;
    return first + static_cast<std::size_t>(ND) <= known.size() &&
           std::equal(LM.data, LM.data + ND, known.begin() + static_cast<std::ptrdiff_t>(first));
}

std::uint32_t PlaceOf(const RowLayout& layout, std::int32_t i, std::int32_t j) {
    if (i <= 0 || j <= 0)
        return static_cast<std::uint32_t>(layout.rows.column.size()); // the word for what is dropped
    const std::vector<std::int32_t>& row = layout.order.row;
    const Word place = PlaceOfEntry(layout.rows, row[static_cast<std::size_t>(i - 1)] + 1,
                                    row[static_cast<std::size_t>(j - 1)] + 1);
    if (place < 0)
        StopWithLibraryError("equations " + std::to_string(i) + " and " + std::to_string(j) +
                             " couple, and the layout of the system does not know it");
    return static_cast<std::uint32_t>(place);
}

// An element that has not come at this turn before: what was known from here on is forgotten.
void FindPlaces(RowStorage& storage, ConstIntArray LM, Word ND) {
    RowLayout& layout = storage.layout;
    layout.equation.resize(storage.equationInHand);
    layout.place.resize(storage.placeInHand);
    layout.equation.insert(layout.equation.end(), LM.data, LM.data + ND);
    for (Word i = 1; i <= ND; ++i)
        for (Word j = i; j <= ND; ++j)
            layout.place.push_back(PlaceOf(layout, LM(i), LM(j)));
}

void NoteShift(RowStorage& storage, const GradientsReport& report) {
    if (report.factored && report.shift <= storage.shiftTold)
        return;
    if (report.factored)
        WriteNote("conjugate gradients: the incomplete factor of the matrix needs a diagonal larger by " +
                  std::to_string(report.shift) + " of itself; more iterations, the same solution");
    else if (storage.shiftTold <= 1.0)
        WriteNote("conjugate gradients: the matrix has no incomplete factor, its diagonal stands in; more "
                  "iterations, "
                  "the same solution");
    storage.shiftTold = report.factored ? report.shift : 2.0;
}

[[noreturn]] void StopOnGradients(Run& run, const GradientsReport& report) {
    TextUnit& unit = BeginMessage(run);
    if (report.end == GradientsEnd::NotConverged) {
        Write(unit, "(A,I10)",
              Say(run, " KONJUGOVANI GRADIJENTI NE KONVERGIRAJU, BROJ ITERACIJA =",
                  " CONJUGATE GRADIENTS DO NOT CONVERGE, NUMBER OF ITERATIONS ="),
              report.iterations);
        Write(unit, "(A,1PE12.5)", Say(run, " RELATIVNI OSTATAK =", " RELATIVE RESIDUAL ="), report.residual);
        Write(unit, "(A,1PE12.5)", Say(run, " DOZVOLJENI OSTATAK =", " ALLOWED RESIDUAL ="),
              run.options.tolerance);
    } else {
        Write(unit, "(A)",
              Say(run, " MATRICA SISTEMA NIJE POZITIVNO DEFINITNA (KONJUGOVANI GRADIJENTI)",
                  " THE SYSTEM MATRIX IS NOT POSITIVE DEFINITE (CONJUGATE GRADIENTS)"));
        if (report.equation != 0)
            Write(unit, "(A,I10)", Say(run, " JEDNACINA BROJ", " EQUATION NO."), report.equation);
    }
    StopRun(unit, report.end == GradientsEnd::NotConverged ? kNoSystem : report.equation);
}

} // namespace

void BeginRows(Run& run) {
    RowStorage& storage = StorageOf<RowStorage>(run);
    storage.layout = {};
    storage.equationInHand = storage.placeInHand = 0;
}

void CoupleRows(Run& run, const Numbering& numbering, ConstIntTable NEL, Word NDIM, ConstIntArray marks) {
    ElementEquations& elements = StorageOf<RowStorage>(run).layout.elements;
    std::int32_t LM[kMostLayoutNodes];
    for (Word n = 1; n <= NEL.rows; ++n) {
        if (marks.length > 0 && marks(n) == 0)
            continue;
        for (Word k = 1; k <= NDIM; ++k)
            LM[k - 1] = NEL(n, k) > 0 ? numbering.ID(NEL(n, k)) : 0;
        AddElementEquations(elements, ConstIntArray(LM, NDIM), NDIM);
    }
}

void FinishRows(Run& run, const Numbering& numbering) {
    RowLayout& layout = StorageOf<RowStorage>(run).layout;
    layout.order = MakeRowOrder(layout.elements, numbering.JEDN);
    RenumberEquations(layout.elements, layout.order);
    MakePattern(layout.rows, layout.elements, numbering.JEDN);
    layout.elements = {};
    if (layout.rows.column.size() >= std::numeric_limits<std::uint32_t>::max())
        StopWithLibraryError("the matrix has " + std::to_string(layout.rows.column.size()) +
                             " entries, more than conjugate gradients can count");
}

void SetRowsAside(Run& run) {
    RowStorage& storage = StorageOf<RowStorage>(run);
    storage.aside = std::move(storage.layout);
}

void PutRowsBack(Run& run) {
    RowStorage& storage = StorageOf<RowStorage>(run);
    storage.layout = std::move(storage.aside);
    storage.aside = {};
}

void ReportRows(Run& run) {
    TextUnit& listing = run.units.listing;
    Write(listing, "(///11X,A)",
          Say(run, "RESAVANJE: KONJUGOVANI GRADIJENTI, MATRICA VAN RADNOG VEKTORA",
              "SOLUTION BY CONJUGATE GRADIENTS, MATRIX OUTSIDE WORKING VECTOR"));
    Write(listing, "(///11X,A,I10)",
          Say(run, "BROJ NENULTIH ELEMENATA DONJEG TROUGLA ............ =",
              "NUMBER OF NONZERO ELEMENTS OF LOWER TRIANGLE ....... ="),
          static_cast<Word>(StorageOf<RowStorage>(run).layout.rows.column.size()));
}

void ClearRows(Run& run) {
    RowStorage& storage = StorageOf<RowStorage>(run);
    std::fill(storage.layout.rows.value.begin(), storage.layout.rows.value.end(), 0.0);
    storage.equationInHand = storage.placeInHand = 0;
}

void OpenRows(Run& run, SystemTarget& system) {
    system.storage = &StorageOf<RowStorage>(run);
}

void AddToRows(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND) {
    RowStorage& storage = *static_cast<RowStorage*>(system.storage);
    if (!Known(storage, LM, ND))
        FindPlaces(storage, LM, ND);
    const std::uint32_t* const place = storage.layout.place.data() + storage.placeInHand;
    double* const value = storage.layout.rows.value.data();
    const Word entries = ND * (ND + 1) / 2;
    for (Word k = 0; k < entries; ++k)
        value[place[k]] += S.data[k];
    storage.equationInHand += static_cast<std::size_t>(ND);
    storage.placeInHand += static_cast<std::size_t>(entries);
    AddElementVector(system.R, FE, LM, ND);
}

void SolveRows(Run& run) {
    RowStorage& storage = StorageOf<RowStorage>(run);
    const GradientsReport report =
        SolveByGradients(run.workers, storage.layout.rows, storage.layout.order, RightHandSide(run),
                         {run.options.tolerance, kMostIterations}, storage.work);
    if (report.end == GradientsEnd::NoNumbers)
        return; // whoever asked for the solution looks for these
    if (report.end != GradientsEnd::Converged)
        StopOnGradients(run, report);
    NoteShift(storage, report);
}

} // namespace zurt
