#include "solver/system_skyline.h"

#include "run/partition.h"
#include "solver/skyline_layout.h"
#include "solver/skyline_solve.h"
#include "solver/solver_storage.h"

#include <cstring>
#include <vector>

namespace zurt {

namespace {

/// Beside `A`: the column pointers in force while others are formed for their size.
struct SkylineStorage {
    std::vector<std::int32_t> aside;
};

IntArray ColumnPointers(const Run& run, std::int32_t JEDN) {
    return IntSection(run.A, run.control.at.LMAXA, Word{JEDN} + 1);
}

} // namespace

void BeginSkyline(Run& run, const Numbering& numbering) {
    Fill(ColumnPointers(run, numbering.JEDN), 0);
}

void RaiseHeights(Run& run, const Numbering& numbering, ConstIntTable NEL, Word NDIM, ConstIntArray marks) {
    const IntArray MHT = ColumnPointers(run, numbering.JEDN);
    std::int32_t LM[kMostLayoutNodes];
    const IntArray found(LM, kMostLayoutNodes);
    if (marks.length == 0)
        ComputeColumnHeights(MHT, numbering.ID, NEL, found, NEL.rows, numbering.JEDN, false, NDIM,
                             run.sizes.NWK);
    for (Word n = 1; n <= marks.length; ++n)
        if (marks(n) != 0)
            RaiseColumnHeights(MHT, numbering.ID, NEL, n, found, NDIM, numbering.JEDN);
}

Word FinishSkyline(Run& run, const Numbering& numbering) {
    return MakeColumnPointers(ColumnPointers(run, numbering.JEDN), numbering.JEDN);
}

void SetPointersAside(Run& run, std::int32_t JEDN) {
    if (Word{JEDN} + 1 > run.sizes.DiagonalRoom)
        MoveDiagonalPositions(run, JEDN);
    const IntArray MAXA = DiagonalPositions(run);
    StorageOf<SkylineStorage>(run).aside.assign(MAXA.data, MAXA.data + MAXA.length);
}

void PutPointersBack(Run& run) {
    std::vector<std::int32_t>& aside = StorageOf<SkylineStorage>(run).aside;
    Copy<std::int32_t>(ConstIntArray(aside.data(), static_cast<Word>(aside.size())), DiagonalPositions(run));
    aside = {};
}

void ClearStore(Run& run) {
    const RealArray store = SkylineStore(run);
    std::memset(store.data, 0, static_cast<std::size_t>(store.length) * sizeof(double));
}

void OpenStore(Run& run, SystemTarget& system) {
    system.matrix = SkylineStore(run);
    system.MAXA = DiagonalPositions(run);
}

void AddToStore(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND) {
    SkylineAddElement(system.matrix, system.MAXA, system.R, S, FE, LM, ND, system.matrixFlag);
}

void LocateInStore(const SystemTarget& system, ConstIntArray LM, Word ND, ElementPlaces& places) {
    LocateSkylineElement(system.matrix, system.MAXA, LM, ND, places);
}

void SolveStore(Run& run) {
    const auto NWK = static_cast<std::int32_t>(run.sizes.NWK);
    const RealArray store = SkylineStore(run);
    const RealArray R = RightHandSide(run);
    const IntArray MAXA = DiagonalPositions(run);
    if (run.clock.FactorFlag != 0)
        SkylineSolve(store, R, MAXA, run.sizes.JEDN, NWK, kFactorNodesMode, MessageUnit(run), run.workers);
    SkylineSolve(store, R, MAXA, run.sizes.JEDN, NWK, kSubstituteMode, MessageUnit(run), run.workers);
}

} // namespace zurt
