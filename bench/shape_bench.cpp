// Time per Gauss point of the shape and Jacobian kernels. A brick of 8 nodes has 8 such points per forming.
#include "geometry/gauss_rules.h"
#include "geometry/jacobian.h"

#include <benchmark/benchmark.h>

namespace zurt {
namespace {

constexpr int kPoints = 8;

// The brick with mid-side nodes 9..8 + midSideCount, slightly distorted, and its 2 x 2 x 2 points.
struct Brick {
    ActiveNodes active;
    NodeCoordinates<3> CORE;
    double point[kPoints][3];
    ShapeValues<3> table[kPoints];
};

void SetUp(Brick& brick, int midSideCount) {
    static constexpr int sign[8][3] = {{1, 1, 1},  {-1, 1, 1},  {-1, -1, 1},  {1, -1, 1},
                                       {1, 1, -1}, {-1, 1, -1}, {-1, -1, -1}, {1, -1, -1}};
    static constexpr int ends[12][2] = {{1, 2}, {2, 3}, {3, 4}, {4, 1}, {5, 6}, {6, 7},
                                        {7, 8}, {8, 5}, {1, 5}, {2, 6}, {3, 7}, {4, 8}};
    brick.active.midSideCount = midSideCount;
    brick.active.ND = 8 + midSideCount;
    for (int i = 0; i < midSideCount; ++i)
        brick.active.midSide[i] = 9 + i;
    for (int c = 0; c < 3; ++c) {
        for (int k = 0; k < 8; ++k)
            brick.CORE[c][k] = 1.5 * sign[k][c] + 0.1 * sign[k][(c + 1) % 3] * sign[k][(c + 2) % 3];
        if (midSideCount == 13)
            brick.CORE[c][20] = 0.0;
        for (int i = 0; i < midSideCount && i < 12; ++i)
            brick.CORE[c][8 + i] = 0.5 * (brick.CORE[c][ends[i][0] - 1] + brick.CORE[c][ends[i][1] - 1]);
    }
    int n = 0;
    for (int i = 1; i <= 2; ++i)
        for (int j = 1; j <= 2; ++j)
            for (int k = 1; k <= 2; ++k, ++n) {
                brick.point[n][0] = XG(2, i);
                brick.point[n][1] = XG(2, j);
                brick.point[n][2] = XG(2, k);
                ShapeFunctions3D(XG(2, i), XG(2, j), XG(2, k), brick.active, brick.table[n]);
            }
}

void ReportPerPoint(benchmark::State& state) {
    state.counters["time_per_point"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kPoints,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// The Jacobian step alone, shape values from a table: what a forming loop pays.
void JacobianFromTable(benchmark::State& state) {
    Brick brick;
    SetUp(brick, static_cast<int>(state.range(0)));
    JacobianValues<3> values;
    for (auto _ : state)
        for (int n = 0; n < kPoints; ++n) {
            bool sound = JacobianVolume(brick.table[n], brick.CORE, brick.active.ND, values);
            benchmark::DoNotOptimize(sound);
            benchmark::DoNotOptimize(values);
        }
    ReportPerPoint(state);
}
BENCHMARK(JacobianFromTable)->ArgName("midSideNodes")->Arg(0)->Arg(12)->Arg(13);

// Shape values and Jacobian anew at every point.
void ShapesAndJacobian(benchmark::State& state) {
    Brick brick;
    SetUp(brick, static_cast<int>(state.range(0)));
    ShapeValues<3> shape;
    JacobianValues<3> values;
    for (auto _ : state)
        for (int n = 0; n < kPoints; ++n) {
            bool sound = ShapeAndJacobian3D(brick.point[n][0], brick.point[n][1], brick.point[n][2], 0, 0,
                                            brick.active, brick.CORE, shape, values);
            benchmark::DoNotOptimize(sound);
            benchmark::DoNotOptimize(shape);
            benchmark::DoNotOptimize(values);
        }
    ReportPerPoint(state);
}
BENCHMARK(ShapesAndJacobian)->ArgName("midSideNodes")->Arg(0)->Arg(12)->Arg(13);

} // namespace
} // namespace zurt
