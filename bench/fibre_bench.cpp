// Fibres over a mesh: classification of the Gauss points of 40 x 40 x 40 bricks (their records included) among a thousand
// fibres, the plain visit of all fibres for comparison, and one set of factors from a record.
#include "../tests/elements/form_model.h"

#include "microscale/fibre_geometry.h"
#include "microscale/gauss_factors.h"
#include "microscale/gauss_records.h"

#include <benchmark/benchmark.h>

#include <random>

namespace zurt {
namespace {

using namespace testmodel;

constexpr int kSide = 40;
constexpr int kFibres = 1000;

enum Network { kCrossing, kShort, kTwoSets };

CorrectionTable EightByFour() {
    CorrectionTable table;
    table.NDIST = 8;
    table.NCONC = 4;
    for (int i = 0; i < 8; ++i)
        table.distance.push_back(0.01 * i);
    for (int j = 0; j < 4; ++j)
        table.concentration.push_back(0.3 * j);
    for (int j = 0; j < 4; ++j)
        for (int i = 0; i < 8; ++i)
            table.factor.push_back(0.1 + 0.1 * i + 0.02 * j);
    return table;
}

// Lines across the whole unit cube, short lines in it, or short lines of two diameters.
FibreModel MakeNetwork(int network) {
    std::mt19937 engine(1);
    std::uniform_real_distribution<double> any(0.0, 1.0);
    FibreModel model;
    const int sets = network == kTwoSets ? 2 : 1;
    for (int s = 0; s < sets; ++s) {
        FibreSet set;
        set.DIAM = 0.01 * (s + 1);
        set.table = set.tableY = EightByFour();
        set.IANISY = 1;
        std::fill(set.high, set.high + 3, 1.0);
        for (int i = 0; i < kFibres / sets; ++i) {
            Fibre fibre;
            fibre.NPOINTS = 2;
            for (int k = 0; k < 6; ++k)
                fibre.points.push_back(any(engine));
            for (std::size_t k = 3; k < 6 && network != kCrossing; ++k)
                fibre.points[k] = fibre.points[k - 3] + 0.2 * (fibre.points[k] - 0.5);
            set.fibres.push_back(fibre);
        }
        model.sets.push_back(set);
    }
    const double size[3] = {1.0, 1.0, 1.0};
    ClipFibresToBox(model, size, kSpaceFibres);
    model.groups.resize(2);
    return model;
}

void MakeCube(Run& run) {
    Problem problem;
    problem.SparseMode = 1;
    problem.NDS = 1;
    problem.size = kWorkingVectorSize;
    BuildModel(run,
               BlockOfBricks(kSide, kSide, kSide,
                             [](int i, int j, int k) {
                                 return Point{1.0 * i / kSide, 1.0 * j / kSide, 1.0 * k / kSide};
                             }),
               problem);
}

FibreSearch MakeSearch(const FibreModel& model, Word points) {
    FibreSearch search = SearchOfAllSets(model, 3, LineEnds::Count);
    MakeFibreCells(search, {0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}, points);
    return search;
}

void Classify(benchmark::State& state) {
    Run run;
    MakeCube(run);
    FibreModel model = MakeNetwork(static_cast<int>(state.range(0)));
    std::vector<std::int32_t> marks(static_cast<std::size_t>(run.control.header.NP));
    for (auto _ : state) {
        const FibreSearch search = MakeSearch(model, 8 * Word{run.groups[1].NET});
        ClassifyGaussPoints<3>(run, model, search, run.groups[1],
                               IntArray(marks.data(), run.control.header.NP));
    }
    state.counters["points"] = 8.0 * run.groups[1].NET;
    DestroyWorkingVector(run.A);
}
BENCHMARK(Classify)->Arg(kCrossing)->Arg(kShort)->Arg(kTwoSets)->Unit(benchmark::kMillisecond);

template <class Search> void SearchPoints(benchmark::State& state, const Search& nearest) {
    const FibreModel model = MakeNetwork(static_cast<int>(state.range(0)));
    const FibreSearch search = MakeSearch(model, 500000);
    std::mt19937 engine(2);
    std::uniform_real_distribution<double> any(0.0, 1.0);
    double X[1024][3];
    for (auto& point : X)
        for (double& x : point)
            x = any(engine);
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(nearest(search, X[++i % 1024]));
}

void PlainSearch(benchmark::State& state) {
    SearchPoints(state, SearchAllFibres);
}
BENCHMARK(PlainSearch)->Arg(kCrossing)->Arg(kShort)->Arg(kTwoSets);

void CellSearch(benchmark::State& state) {
    SearchPoints(state, SearchNearestFibre);
}
BENCHMARK(CellSearch)->Arg(kCrossing)->Arg(kShort)->Arg(kTwoSets);

// Records of neighbouring points one after the other, as the element loops ask for them.
void CachedFactor(benchmark::State& state) {
    const FibreModel model = MakeNetwork(kCrossing);
    const FibreSearch search = MakeSearch(model, 500000);
    std::vector<GaussFibreRecord> records(4096);
    for (std::size_t i = 0; i < records.size(); ++i) {
        const double X[3] = {(0.5 + static_cast<double>(i % 64)) / 64.0,
                             (0.5 + static_cast<double>(i / 64)) / 64.0, 0.5};
        FillGaussRecord(search, SearchNearestFibre(search, X), X, records[i]);
    }
    std::size_t i = 0;
    for (auto _ : state) {
        double factor[3] = {1.0, 1.0, 1.0};
        GaussFactorCached(model, records[++i % 4096], true, 0.4, factor);
        benchmark::DoNotOptimize(factor);
    }
}
BENCHMARK(CachedFactor);

} // namespace
} // namespace zurt
