#include "solver/system_rows.h"

#include "core/format.h"
#include "core/stop.h"
#include "solver/conjugate_gradients.h"
#include "solver/solver_storage.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <string>

namespace zurt {

namespace {

constexpr std::int32_t kMostIterations = 10000;

constexpr std::int32_t kNoEquation = std::numeric_limits<std::int32_t>::min(); // in no LM

// Elements of a group, a row for each: LM, by which it is known that the places hold, and the places of the packed matrix in
// `rows.value`.
struct NumberedElements {
    std::size_t columns = 0, entries = 0; // of a row
    std::vector<std::int32_t> equation;
    std::vector<std::uint32_t> place;
};

struct RowLayout {
    SymmetricRows rows;
    ElementEquations elements; // while the layout is formed
    std::vector<std::unique_ptr<NumberedElements>>
        groups; // in the order in which they are visited, which stays
    // The same of elements that come without numbers, in their order, which stays too.
    std::vector<std::int32_t> equation;
    std::vector<std::uint32_t> place;
    RowOrder order; // of `rows`
};

struct RowStorage {
    RowLayout layout, aside;
    std::size_t groupInHand = 0;                     // the next group's
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

// Of an element's packed matrix.
void FindPlaces(const RowLayout& layout, ConstIntArray LM, Word ND, std::uint32_t* place) {
    for (Word i = 1; i <= ND; ++i)
        for (Word j = i; j <= ND; ++j)
            *place++ = PlaceOf(layout, LM(i), LM(j));
}

// An element that has not come at this turn before: what was known from here on is forgotten.
void FindPlaces(RowStorage& storage, ConstIntArray LM, Word ND) {
    RowLayout& layout = storage.layout;
    layout.equation.resize(storage.equationInHand);
    layout.place.resize(storage.placeInHand + static_cast<std::size_t>(ND * (ND + 1) / 2));
    layout.equation.insert(layout.equation.end(), LM.data, LM.data + ND);
    FindPlaces(layout, LM, ND, layout.place.data() + storage.placeInHand);
}

// A dropped entry has no word that workers side by side would all write to.
void AddAtPlaces(SymmetricRows& rows, const std::uint32_t* place, ConstRealArray S, Word entries) {
    double* const value = rows.value.data();
    const std::size_t dropped = rows.column.size();
    for (Word k = 0; k < entries; ++k)
        if (place[k] != dropped)
            value[place[k]] += S.data[k];
}

NumberedElements& NumberedIn(const SystemTarget& system) {
    return *static_cast<NumberedElements*>(system.numbered);
}

std::uint32_t* PlacesOf(const SystemTarget& system, Word n) {
    NumberedElements& elements = NumberedIn(system);
    return elements.place.data() + static_cast<std::size_t>(n - 1) * elements.entries;
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
    storage.groupInHand = storage.equationInHand = storage.placeInHand = 0;
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
    storage.groupInHand = storage.equationInHand = storage.placeInHand = 0;
}

void OpenRows(Run& run, SystemTarget& system) {
    system.storage = &StorageOf<RowStorage>(run);
}

void AddToRows(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND) {
    RowStorage& storage = *static_cast<RowStorage*>(system.storage);
    if (!Known(storage, LM, ND))
        FindPlaces(storage, LM, ND);
    const Word entries = ND * (ND + 1) / 2;
    AddAtPlaces(storage.layout.rows, storage.layout.place.data() + storage.placeInHand, S, entries);
    storage.equationInHand += static_cast<std::size_t>(ND);
    storage.placeInHand += static_cast<std::size_t>(entries);
    AddElementVector(system.R, FE, LM, ND);
}

void NumberInRows(SystemTarget& system, Word NET, Word NDMAX) {
    RowStorage& storage = *static_cast<RowStorage*>(system.storage);
    std::vector<std::unique_ptr<NumberedElements>>& groups = storage.layout.groups;
    if (storage.groupInHand == groups.size())
        groups.push_back(std::make_unique<NumberedElements>());
    NumberedElements& elements = *groups[storage.groupInHand++];
    const auto count = static_cast<std::size_t>(NET), columns = static_cast<std::size_t>(NDMAX);
    if (elements.equation.size() != count * columns || elements.columns != columns) {
        elements.columns = columns;
        elements.entries = columns * (columns + 1) / 2;
        elements.equation.assign(count * columns, kNoEquation);
        elements.place.resize(count * elements.entries);
    }
    system.numbered = &elements;
}

void FindInRows(const SystemTarget& system, Word n, ConstIntArray LM, Word ND) {
    NumberedElements& elements = NumberedIn(system);
    std::int32_t* const known = elements.equation.data() + static_cast<std::size_t>(n - 1) * elements.columns;
    if (std::equal(LM.data, LM.data + ND, known))
        return;
    FindPlaces(static_cast<RowStorage*>(system.storage)->layout, LM, ND, PlacesOf(system, n));
    std::copy(LM.data, LM.data + ND, known);
}

void AddNumberedToRows(const SystemTarget& system, Word n, ConstRealArray S, ConstIntArray LM, Word ND) {
    FindInRows(system, n, LM, ND);
    AddAtPlaces(static_cast<RowStorage*>(system.storage)->layout.rows, PlacesOf(system, n), S,
                ND * (ND + 1) / 2);
}

double* EntryInRows(const SystemTarget& system, Word n, Word k) {
    SymmetricRows& rows = static_cast<RowStorage*>(system.storage)->layout.rows;
    return &rows.value[PlacesOf(system, n)[k - 1]];
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
