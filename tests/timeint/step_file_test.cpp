#include "timeint/step_file.h"

#include "timeint/solution_pass.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

namespace zurt {
namespace {

struct StepFile {
    std::FILE* file = std::tmpfile();
    std::int32_t NCZZ = 0;
    ~StepFile() { std::fclose(file); }
};

// Saves step KOR of a problem with two equations: TIME is KOR/2, the solution (KOR, -KOR).
void Save(StepFile& steps, std::int32_t KOR, std::int32_t NCZK) {
    const double solution[2] = {static_cast<double>(KOR), static_cast<double>(-KOR)};
    SaveStep(KOR, 0.5 * KOR, ConstRealArray(solution, 2), NCZK, steps.NCZZ, steps.file);
}

// The steps that stand on the file, read back record by record; -1 where a record is damaged.
std::vector<int> StepsOn(StepFile& steps) {
    std::vector<int> found;
    const long place = std::ftell(steps.file);
    std::rewind(steps.file);
    std::int64_t length = 0;
    while (std::fread(&length, sizeof length, 1, steps.file) == 1) {
        double items[3] = {};
        std::int64_t again = 0;
        const bool good = length == 24 && std::fread(items, sizeof items, 1, steps.file) == 1 &&
                          std::fread(&again, sizeof again, 1, steps.file) == 1 && again == length &&
                          items[0] == 0.5 * items[1] && items[2] == -items[1];
        found.push_back(good ? static_cast<int>(items[1]) : -1);
    }
    std::fseek(steps.file, place, SEEK_SET);
    return found;
}

// Faults: a rewind at the step that fills the ring, none at the next multiples, old records left behind a rewind,
// NCZZ set back by it.
TEST(StepFile, RingOfThreeOverTenSteps) {
    const std::vector<std::vector<int>> after = {
        {1}, {1, 2}, {1, 2, 3}, {1, 2, 3, 4}, {1, 2, 3, 4, 5}, {1, 2, 3, 4, 5, 6},
        {7}, {7, 8}, {7, 8, 9}, {10}};
    StepFile steps;
    for (int KOR = 1; KOR <= 10; ++KOR) {
        Save(steps, KOR, 3);
        EXPECT_EQ(StepsOn(steps), after[static_cast<std::size_t>(KOR - 1)]) << KOR;
        EXPECT_EQ(steps.NCZZ, KOR < 3 ? KOR : 3);
    }
}

// Faults: steps lost with NCZK 0; a negative NCZK that divides or rewinds; a second pass written behind the first.
TEST(StepFile, KeepsAllWithoutALimit) {
    for (const std::int32_t NCZK : {0, -2, 100}) {
        StepFile steps;
        for (int KOR = 1; KOR <= 6; ++KOR)
            Save(steps, KOR, NCZK);
        EXPECT_EQ(StepsOn(steps), (std::vector<int>{1, 2, 3, 4, 5, 6}));
        EXPECT_EQ(steps.NCZZ, 6);
        Save(steps, 1, NCZK);
        Save(steps, 2, NCZK);
        EXPECT_EQ(StepsOn(steps), (std::vector<int>{1, 2}));
        EXPECT_EQ(steps.NCZZ, 8); // runs on over passes
    }
    StepFile single;
    for (int KOR = 1; KOR <= 4; ++KOR)
        Save(single, KOR, 1);
    EXPECT_EQ(StepsOn(single), std::vector<int>{4});
}

// Faults: nodes outside the model given the outlet value, the last matching prescribed value taken, or one put upon a
// node that has an equation; old values kept.
TEST(NodalExpansion, EquationOutletAndPrescribedNodes) {
    std::int32_t ID[6] = {2, 0, 0, -1, 1, -1};
    double solution[2] = {10.0, 20.0};
    double prescribed[5] = {1.0, 2.0, 3.0, 4.0, 5.0};
    std::int32_t nodes[5] = {3, 3, 5, 6, 99};
    double values[6] = {9, 9, 9, 9, 9, 9};
    ExpandToNodes(IntArray(ID, 6), RealArray(values, 6), RealArray(solution, 2), RealArray(prescribed, 5),
                  IntArray(nodes, 5), 7.0);
    const double expected[6] = {20.0, 7.0, 1.0, 0.0, 10.0, 4.0};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(values[i], expected[i]) << i + 1;
}

} // namespace
} // namespace zurt
