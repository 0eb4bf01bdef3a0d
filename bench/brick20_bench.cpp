// Elements per second of a forming visit: bricks of 20 nodes with 3 x 3 x 3 points, gather and assembly included.
#include "../tests/elements/form_model.h"

#include <benchmark/benchmark.h>

#include <map>

namespace zurt {
namespace {

using namespace testmodel;

constexpr int kSide = 10;

// Corners in half sides of the brick, from its lowest corner, and the corners that each mid-side node lies between.
constexpr int kCorner[8][3] = {{2, 2, 2}, {0, 2, 2}, {0, 0, 2}, {2, 0, 2},
                               {2, 2, 0}, {0, 2, 0}, {0, 0, 0}, {2, 0, 0}};
constexpr int kEnds[12][2] = {{1, 2}, {2, 3}, {3, 4}, {4, 1}, {5, 6}, {6, 7},
                              {7, 8}, {8, 5}, {1, 5}, {2, 6}, {3, 7}, {4, 8}};

// Bends what would be planes, so that no product is trivial.
Point PlaceOf(const std::array<int, 3>& half) {
    const double x = 0.5 * half[0], y = 0.5 * half[1], z = 0.5 * half[2];
    return {x + 0.01 * y * z, y + 0.01 * z * x, z + 0.01 * x * y};
}

int NodeAt(Mesh& mesh, std::map<std::array<int, 3>, int>& numbers, const std::array<int, 3>& half) {
    const auto [entry, added] = numbers.emplace(half, static_cast<int>(mesh.nodes.size()) + 1);
    if (added)
        mesh.nodes.push_back(PlaceOf(half));
    return entry->second;
}

std::vector<int> BrickNodes(Mesh& mesh, std::map<std::array<int, 3>, int>& numbers, int i, int j, int k) {
    std::vector<int> nodes;
    for (const auto& corner : kCorner)
        nodes.push_back(NodeAt(mesh, numbers, {2 * i + corner[0], 2 * j + corner[1], 2 * k + corner[2]}));
    for (const auto& ends : kEnds) {
        const auto &a = kCorner[ends[0] - 1], &b = kCorner[ends[1] - 1];
        nodes.push_back(
            NodeAt(mesh, numbers,
                   {2 * i + (a[0] + b[0]) / 2, 2 * j + (a[1] + b[1]) / 2, 2 * k + (a[2] + b[2]) / 2}));
    }
    nodes.push_back(0); // the column of the centre node, which is absent
    return nodes;
}

Mesh BlockOfQuadraticBricks() {
    Mesh mesh;
    std::map<std::array<int, 3>, int> numbers;
    for (int k = 0; k < kSide; ++k)
        for (int j = 0; j < kSide; ++j)
            for (int i = 0; i < kSide; ++i)
                mesh.elements.push_back(BrickNodes(mesh, numbers, i, j, k));
    return mesh;
}

void FormQuadraticBlock(benchmark::State& state) {
    Run run;
    Problem problem = TransientCurveProblem();
    problem.size = kWorkingVectorSize;
    problem.NGAUS = {3, 3, 3};
    BuildModel(run, BlockOfQuadraticBricks(), problem);
    const RealArray T = StepSolution(run);
    for (Word i = 1; i <= T.length; ++i)
        T(i) = 0.2 + 0.6 * static_cast<double>(i) / static_cast<double>(T.length);
    for (auto _ : state)
        FormElementGroup(run, run.groups[1]);
    state.counters["elements"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * run.groups[1].NET, benchmark::Counter::kIsRate);
    DestroyWorkingVector(run.A);
}
BENCHMARK(FormQuadraticBlock)->Name("TransientDiffusionCurve20Nodes");

} // namespace
} // namespace zurt
