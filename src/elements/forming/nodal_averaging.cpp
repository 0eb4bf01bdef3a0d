#include "elements/forming/nodal_averaging.h"

#include "core/ranks.h"

namespace zurt {

namespace {

// Places of the three axes among LNDS1 to LNDS9.
constexpr int kMassFlux = 1;
constexpr int kFlux = 4;
constexpr int kCoefficient = 7;

RealArray ResultVector(const Run& run, int number) {
    return RealSection(run.A, run.control.at.LNDS[number], run.control.header.NP);
}

void SumNodalResultsOverRanks(const Run& run, const NodalSums& sums) {
    for (int axis = 0; axis < 3; ++axis) {
        SumOverRanks(sums.flux[axis]);
        SumOverRanks(sums.coefficient[axis]);
    }
    SumOverRanks(IntArray(sums.contributions, run.control.header.NP));
}

} // namespace

void ClearNodalResults(Run& run) {
    if (run.control.header.NDS == 0)
        return;
    for (int number = 1; number <= 9; ++number)
        Fill(ResultVector(run, number), 0.0);
    run.averaging.contributions.assign(static_cast<std::size_t>(run.control.header.NP), 0);
}

NodalSums NodalSumsOf(Run& run) {
    NodalSums sums;
    for (int axis = 0; axis < 3; ++axis) {
        sums.flux[axis] = ResultVector(run, kFlux + axis);
        sums.coefficient[axis] = ResultVector(run, kCoefficient + axis);
    }
    sums.contributions = run.averaging.contributions.data();
    return sums;
}

void AverageNodalResults(Run& run) {
    if (run.control.header.NDS == 0)
        return;
    const double AMOLAR = run.control.header.AMOLAR > 0.0 ? run.control.header.AMOLAR : 1.0;
    const NodalSums sums = NodalSumsOf(run);
    SumNodalResultsOverRanks(run, sums);
    for (int axis = 0; axis < 3; ++axis) {
        const RealArray massFlux = ResultVector(run, kMassFlux + axis);
        for (Word node = 1; node <= massFlux.length; ++node) {
            const std::int32_t count = sums.contributions[node - 1];
            if (count > 1) {
                sums.flux[axis](node) /= count;
                sums.coefficient[axis](node) /= count;
            }
            massFlux(node) = sums.flux[axis](node) * AMOLAR;
        }
    }
}

} // namespace zurt
