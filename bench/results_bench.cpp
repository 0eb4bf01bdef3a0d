// Records of results a second, written to a unit that keeps nothing: what forming the text costs, without the disk. A step for
// viewers, of a million nodes, goes to the temporary folder, disk and all.
#include "results/listing.h"
#include "results/nodal_values.h"
#include "results/unv_mesh.h"
#include "results/unv_results.h"
#include "results/vtu_results.h"

#include "../tests/elements/form_model.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <ctime>
#include <filesystem>

namespace zurt {
namespace {

using namespace testmodel;

constexpr int kSide = 30;

// Values of both signs over ten powers of ten: none is short in decimals.
double ValueAt(Word i, int component) {
    const double phase = 0.7 * static_cast<double>(i) + component;
    return std::sin(phase) * std::pow(10.0, 5.0 * std::cos(1.3 * phase));
}

// A block of bricks with a value of each kind at every node.
void BuildResults(Run& run, int side) {
    Problem problem;
    problem.size = kWorkingVectorSize;
    problem.NDS = 1;
    BuildModel(run,
               BlockOfBricks(side, side, side,
                             [](int i, int j, int k) {
                                 return Point{i / 7.0, j / 7.0, k / 7.0};
                             }),
               problem);
    run.control.header.IGRAF = 1;
    for (Word i = 1; i <= run.control.header.NP; ++i) {
        NodalValues(run)(i) = ValueAt(i, 0);
        for (int component = 1; component <= 9; ++component)
            NodalResultVector(run, component)(i) = ValueAt(i, component);
    }
}

void WriteAllNodes(benchmark::State& state, void (*write)(Run&), int rowsPerNode) {
    Run run;
    BuildResults(run, kSide);
    OpenTextUnit(run.units.listing, "/dev/null");
    OpenTextUnit(run.units.graphics, "/dev/null");
    const Word NP = run.control.header.NP;
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

// Ahead of the loop the first step, which has the mesh to make.
void WriteVtuMillion(benchmark::State& state) {
    const auto folder = std::filesystem::temp_directory_path() / "zurt_vtu_bench";
    std::filesystem::create_directories(folder);
    Run run;
    BuildResults(run, 99);
    run.control.header.AMOLAR = state.range(0) != 0 ? 2.0 : 0.0;
    run.units.Folder = folder.string() + "/";
    run.units.DefaultListingName = run.units.Folder + "block.lst";
    run.job.ProblemNumber = 1;
    run.clock.KOR = 1;
    const auto start = std::clock();
    WriteVtuStep(run);
    state.counters["first_seconds"] = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    for (auto _ : state) {
        ++run.clock.KOR;
        WriteVtuStep(run);
    }
    state.counters["megabytes"] =
        static_cast<double>(std::filesystem::file_size(folder / "block-0001.vtu")) / 1e6;
    std::filesystem::remove_all(folder);
    DestroyWorkingVector(run.A);
}

// Without and with mass fluxes of their own.
BENCHMARK(WriteVtuMillion)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();

} // namespace
} // namespace zurt
