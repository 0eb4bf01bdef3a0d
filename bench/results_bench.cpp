// Records of results a second, written to a unit that keeps nothing: what forming the text costs, without the disk.
#include "results/listing.h"
#include "results/nodal_values.h"
#include "results/unv_mesh.h"
#include "results/unv_results.h"

#include "../tests/elements/form_model.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace zurt {
namespace {

using namespace testmodel;

constexpr int kSide = 30;

// Values of both signs over ten powers of ten: none is short in decimals.
double ValueAt(Word i, int component) {
    const double phase = 0.7 * static_cast<double>(i) + component;
    return std::sin(phase) * std::pow(10.0, 5.0 * std::cos(1.3 * phase));
}

void WriteAllNodes(benchmark::State& state, void (*write)(Run&), int rowsPerNode) {
    Run run;
    Problem problem;
    problem.size = kWorkingVectorSize;
    problem.NDS = 1;
    BuildModel(run,
               BlockOfBricks(kSide, kSide, kSide,
                             [](int i, int j, int k) {
                                 return Point{i / 7.0, j / 7.0, k / 7.0};
                             }),
               problem);
    run.control.header.IGRAF = 1;
    OpenTextUnit(run.units.listing, "/dev/null");
    OpenTextUnit(run.units.graphics, "/dev/null");
    const Word NP = run.control.header.NP;
    for (Word i = 1; i <= NP; ++i) {
        NodalValues(run)(i) = ValueAt(i, 0);
        for (int component = 1; component <= 9; ++component)
            NodalResultVector(run, component)(i) = ValueAt(i, component);
    }
    for (auto _ : state)
        write(run);
    state.counters["rows"] = benchmark::Counter(static_cast<double>(state.iterations() * NP * rowsPerNode),
                                                benchmark::Counter::kIsRate);
    CloseTextUnit(run.units.listing);
    CloseTextUnit(run.units.graphics);
    DestroyWorkingVector(run.A);
}

// Rows are those of the documented format: a node's number and its values are one.
BENCHMARK_CAPTURE(WriteAllNodes, unv_nodes, WriteUnvNodes, 1);
BENCHMARK_CAPTURE(WriteAllNodes, unv_step, WriteUnvResults, 4);
BENCHMARK_CAPTURE(WriteAllNodes, listing_step, PrintNodalResults, 2);

} // namespace
} // namespace zurt
