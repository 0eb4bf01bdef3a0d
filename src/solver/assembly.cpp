#include "solver/assembly.h"

#include "core/stop.h"
#include "solver/sparse_assembler.h"

#include <algorithm>

namespace zurt {

namespace {

void AddSparseElement(ConstRealArray S, ConstIntArray LM, Word ND) {
    if (ND > kMaxSparseNodes)
        StopWithLibraryError("an element of more than 8 nodes has reached the sparse assembler");
    double dense[kMaxSparseNodes * kMaxSparseNodes];
    std::int32_t equations[kMaxSparseNodes];
    const RealTable square(dense, ND, ND);
    Word K = 0;
    for (Word i = 1; i <= ND; ++i) {
        equations[i - 1] = std::max(LM(i), 0); // the assembler drops 0 alone
        for (Word j = i; j <= ND; ++j)
            square(i, j) = square(j, i) = S(++K);
    }
    SparseAddElement(ND, ConstIntArray(equations, ND), square);
}

} // namespace

SystemTarget SystemTargetOf(const Run& run) {
    SystemTarget system;
    system.sparse = run.sizes.SparseMode == 1;
    if (!system.sparse)
        system.SkylineMatrix = SkylineStore(run);
    system.MAXA = DiagonalPositions(run);
    system.R = RightHandSide(run);
    system.matrixFlag = run.clock.FactorFlag;
    return system;
}

void AddElement(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND) {
    if (system.sparse) {
        AddSparseElement(S, LM, ND);
        AddElementVector(system.R, FE, LM, ND);
    } else {
        SkylineAddElement(system.SkylineMatrix, system.MAXA, system.R, S, FE, LM, ND, system.matrixFlag);
    }
}

void LocateElement(const SystemTarget& system, ConstIntArray LM, Word ND, SkylinePlaces& places) {
    places.count = 0;
    if (!system.sparse && system.matrixFlag != 0)
        LocateSkylineElement(system.SkylineMatrix, system.MAXA, LM, ND, places);
}

void AddLocatedElement(const SystemTarget& system, SkylinePlaces& places, ConstRealArray S, ConstRealArray FE,
                       ConstIntArray LM, Word ND) {
    if (places.count == 0) {
        AddElement(system, S, FE, LM, ND);
        return;
    }
    AddAtPlaces(places, S);
    AddElementVector(system.R, FE, LM, ND);
}

} // namespace zurt
