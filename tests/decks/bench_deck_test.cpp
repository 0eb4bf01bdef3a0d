// The scripts of bench/ are run by hand and seldom: here what they stand on is run at a tiny size.
#include "../support/run_deck.h"

#include <cstdlib>

namespace {

using namespace zurt_test;

std::string Script(const std::string& name, const std::string& arguments) {
    return "PYTHONDONTWRITEBYTECODE=1 python3 '" ZURT_SOURCE_DIR "/bench/" + name + "' " + arguments;
}

RunResult RunBlock(const std::string& options) {
    const std::string folder = MakeTemporaryFolder();
    EXPECT_EQ(std::system(Script("make_block_deck.py", folder + "/zurt.dat " + options).c_str()), 0);
    return RunInFolder(folder, "\n\n\n");
}

// A card that the program has come to read otherwise would make the benchmarks time something else, or nothing.
TEST(BenchDeck, AllKindsRunToTheirEndAndBothSolversAgree) {
    EXPECT_EQ(RunBlock("3 2 4 --cards rows").status, 0); // a card that can't be read would make it 2
    const std::string cube = "4 4 4 --format fixed --steps 3 --step-size 0.02 --hold 4 --results last ";
    const RunResult one = RunBlock(cube + "--device 1 --cards nodes");
    const RunResult two = RunBlock(cube + "--device 2 --held-from-start --accuracy 1e-6 --cards rows");
    const RunResult sparse = RunBlock(cube + "--device 2 --held-from-start --accuracy 1e-6 --solver sparse");
    for (const RunResult& run : {one, two, sparse})
        EXPECT_EQ(CountOf(run.listing, "END OF JOB"), 1) << run.console << run.errors;
    ASSERT_EQ(LastConcentrations(two.listing).size(), 125U);
    EXPECT_EQ(LastConcentrations(two.listing), LastConcentrations(sparse.listing));
    // Without the share of the held faces in the first step the inside has less.
    EXPECT_LT(LastConcentrations(two.listing)[62], LastConcentrations(one.listing)[62]);
}

TEST(BenchDeck, ScriptsLoad) {
    for (const char* name : {"run_benchmarks", "compare_calculix.py"})
        EXPECT_EQ(std::system(Script(name, "--help >/dev/null").c_str()), 0) << name;
}

} // namespace
