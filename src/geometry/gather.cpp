#include "geometry/gather.h"

namespace zurt {

NodalViews NodalPlacesOf(const Run& run) {
    NodalViews views;
    views.ID = EquationNumbers(run);
    views.X = CoordinateColumn(run, 1);
    views.Y = CoordinateColumn(run, 2);
    views.Z = CoordinateColumn(run, 3);
    return views;
}

NodalViews NodalViewsOf(const Run& run) {
    const Pointers& at = run.control.at;
    const Word NZADC = run.control.counts.NZADC;
    NodalViews views = NodalPlacesOf(run);
    views.T = StepSolution(run);
    views.T0 = StepStart(run);
    views.outletStart = run.clock.OutletStart;
    views.outletEnd = run.control.outlet.OutletEnd;
    views.byPrescribedValue = run.control.counts.IGATH == 1;
    const bool transient =
        views.byPrescribedValue ? run.control.header.NSTAC != 0 : run.control.header.NSTAC > 0;
    views.solutionRead = transient || run.job.NonlinearFlag == 1;
    views.nodeValues = NodeCardValues(run);
    if (NZADC > 0) {
        views.prescribedEntry =
            ConstIntArray(run.prescribedEntry.data(), static_cast<Word>(run.prescribedEntry.size()));
        views.prescribedStart = RealSection(run.A, at.LZAD1, NZADC);
        views.prescribedEnd = RealSection(run.A, at.LZAD2, NZADC);
    }
    return views;
}

void GatherNodeValue(const NodalViews& views, std::int32_t node, double& TE1, double& TE0) {
    TE1 = 0.0;
    TE0 = 0.0;
    const std::int32_t equation = views.ID(node);
    if (equation > 0) {
        if (views.solutionRead) {
            TE1 = views.T(equation);
            TE0 = views.T0(equation);
        }
        return;
    }
    const std::int32_t entry = views.prescribedEntry.length > 0 ? views.prescribedEntry(node) : 0;
    if (views.byPrescribedValue) {
        TE1 = TE0 = entry > 0 ? views.prescribedEnd(entry) : views.nodeValues(node);
    } else if (entry > 0) {
        if (views.solutionRead) {
            TE1 = views.prescribedEnd(entry);
            TE0 = views.prescribedStart(entry);
        }
    } else if (equation == 0) {
        TE1 = views.outletEnd;
        TE0 = views.outletStart;
    }
}

template <int Family>
void GatherElement(const NodalViews& views, ConstIntTable NEL, Word n, const ActiveNodes& active,
                   ElementNodes<Family>& element) {
    constexpr int corners = kCorners<Family>;
    for (int k = 0; k < active.ND; ++k) {
        const std::int32_t node = NEL(n, k < corners ? k + 1 : active.midSide[k - corners]);
        element.node[k] = node;
        element.LM[k] = views.ID(node);
        element.CORE[0][k] = views.X(node);
        element.CORE[1][k] = views.Y(node);
        element.CORE[2][k] = views.Z(node);
        GatherNodeValue(views, node, element.TE1[k], element.TE0[k]);
    }
}

#define ZURT_GATHER(FAMILY)                                                                                  \
    template void GatherElement(const NodalViews&, ConstIntTable, Word, const ActiveNodes&,                  \
                                ElementNodes<FAMILY>&);
ZURT_FOR_ALL_FAMILIES(ZURT_GATHER)
#undef ZURT_GATHER

} // namespace zurt
