// Fibres over a mesh: classification of the Gauss points of 40 x 40 x 40 bricks (their records included) among a thousand
// fibres, the plain visit of all fibres for comparison, one set of factors from a record, and a forming visit with factors
// beside one without.
#include "../tests/elements/form_model.h"

#include "microscale/correction_lookup.h"
#include "microscale/fibre_geometry.h"
#include "microscale/gauss_factors.h"
#include "microscale/gauss_records.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <random>
#include <vector>

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
    table.rising = RowsAndColumnsRise(table);
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

double ProcessorTime() {
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double Median(std::vector<double>& values) {
    std::nth_element(values.begin(), values.begin() + static_cast<Word>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

// Forming of 20 x 20 x 20 bricks, transient with a diffusion curve, in turns without fibres and with short ones, two
// tables (argument 2) or one (1) to a set; nearly all points lie in fluid.
void FormUnderFibres(benchmark::State& state) {
    constexpr int side = 20;
    Run run;
    Problem problem;
    problem.NSTAC = problem.NonlinearFlag = problem.NDS = 1;
    problem.conduction = {{{0.0, 1.0}, {0.3, 1.5}, {0.6, 1.8}, {1.0, 2.0}}};
    problem.size = kWorkingVectorSize;
    BuildModel(run,
               BlockOfBricks(side, side, side,
                             [](int i, int j, int k) {
                                 return Point{1.0 * i / side, 1.0 * j / side, 1.0 * k / side};
                             }),
               problem);
    const RealArray T = StepSolution(run);
    for (Word i = 1; i <= T.length; ++i)
        T(i) = 0.2 + 0.6 * static_cast<double>(i) / static_cast<double>(T.length);
    run.fibres = MakeNetwork(kShort);
    for (FibreSet& set : run.fibres.sets) {
        set.DIAM = 0.001; // hardly a point in a fibre: nearly all pay for the tables
        set.IANISY = state.range(0) == 2 ? 1 : 0;
    }
    std::vector<std::int32_t> marks(static_cast<std::size_t>(run.control.header.NP));
    const FibreSearch search = MakeSearch(run.fibres, 8 * Word{run.groups[1].NET});
    ClassifyGaussPoints<3>(run, run.fibres, search, run.groups[1],
                           IntArray(marks.data(), run.control.header.NP));
    std::vector<double> plain, fibres;
    for (auto _ : state)
        for (const std::int32_t NSETS : {0, 1}) {
            run.fit.card.NSETS = NSETS;
            const double start = ProcessorTime();
            FormElementGroup(run, run.groups[1]);
            (NSETS == 0 ? plain : fibres).push_back(ProcessorTime() - start);
        }
    const double elements = run.groups[1].NET;
    state.counters["plain_ns"] = 1e9 * Median(plain) / elements;
    state.counters["fibres_ns"] = 1e9 * Median(fibres) / elements;
    state.counters["ratio"] = Median(fibres) / Median(plain);
    DestroyWorkingVector(run.A);
}
BENCHMARK(FormUnderFibres)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace
} // namespace zurt
