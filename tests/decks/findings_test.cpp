// Decks that once ended without a word on what is wrong with them, by name.
#include "support/run_deck.h"

#include <cmath>
#include <filesystem>

namespace zurt_test {
namespace {

namespace fs = std::filesystem;

// Faults: a value without a meaning, a number that is none, an overflow or an empty result that passes in silence.
TEST(Findings, EndAsTheyShould) {
    const struct {
        const char* name;
        int status;
        const char* words; // on standard error; "": nothing is wrong any more
    } findings[] = {
        {"memory_medium_without_curve", 2, "material 2 (NMATT) has no diffusion curve"},
        {"norm_overflow_1e155", 0, ""},
        {"norm_overflow_torsion", 0, ""},
        {"silent_ITOR2_stale_memory", 0, ""},
        {"silent_IZIP_7_drops_source", 0, "field IZIP: 7 asks for no source: the group has none"},
        {"silent_NDS_99", 0, "field NDS: 99 is no mode of device modelling"},
        {"silent_NDS_minus1", 0, "field NDS: -1 is no mode of device modelling"},
        {"silent_correction_concentrations_fall", 0, "do not rise from column 1 to column 2"},
        {"silent_curve_not_rising", 0, "the arguments of function 1 do not rise from point 2 to point 3"},
        {"silent_decimal_comma", 0, "numbers are left over behind the last field"},
        {"silent_infinity_fluxes_amolar", 2,
         "the mass flux in x at node 1 is minus infinity; look for absurd sizes in the deck: AMOLAR"},
        {"silent_infinity_linear", 2, "the concentration of equation 1, node 9, is infinite"},
        {"silent_infinity_time", 2, "step 18, iteration 0: the time at the end of the step is infinite"},
        {"silent_negative_shape_factor", 2, "Shape factor cards, field FO: \"-1\": a negative value"},
        {"silent_negative_time_step", 2, "field DTDT: \"-1.000000\": the step of period 1 must be above 0"},
        {"silent_no_steps_steady_negative_NPER", 2, "field NPER: \"-1\": a negative value"},
        {"silent_no_steps_transient", 2, "field NKDT: \"0\": a transient problem has at least one step"},
        {"silent_radial_negative_D", 2, "field D: \"-0.0001\": a negative value"},
        {"silent_radial_negative_partition", 2, "field PARTITION: \"-0.01\": a negative value"},
        {"silent_radial_negative_radius", 2, "field RADIUS: \"-0.0001\": a negative value"},
        {"silent_sparse_negative_area", 2, "field AREA: \"-1\": values below"},
        {"silent_sparse_negative_density", 2, "field DENS: \"-1\": a negative value"},
        {"silent_sparse_negative_diffusion", 2, "a negative coefficient at concentration 0 of material 1"},
        {"ub_sparse_pointer_before_array", 0, ""},
    };
    for (const auto& finding : findings) {
        const std::string deck =
            ReadFile(ZURT_SOURCE_DIR "/tests/decks/findings/" + std::string(finding.name) + ".dat");
        ASSERT_FALSE(deck.empty()) << finding.name;
        const RunResult run = RunDeck(deck);
        EXPECT_EQ(run.status, finding.status) << finding.name << run.errors;
        EXPECT_TRUE(Contains(run.errors, finding.words)) << finding.name << run.errors;
        EXPECT_FALSE(Contains(ResultsOfListing(run.listing), "Infinity") ||
                     Contains(ResultsOfListing(run.listing), "NaN"))
            << finding.name;
    }
    int files = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(ZURT_SOURCE_DIR "/tests/decks/findings"))
        ++files;
    EXPECT_EQ(files, static_cast<int>(std::size(findings)) + 1); // and the one below
}

// Fault: a step without a limit of iterations that fills the disk with its lines.
TEST(Findings, NoLimitOfIterationsStaysQuiet) {
    const std::string folder = MakeTemporaryFolder();
    Invocation invocation = {
        {"-"}, ReadFile(ZURT_SOURCE_DIR "/tests/decks/findings/hang_MAXIT_negative_fills_disk.dat")};
    invocation.interruptAfterLines = 100;
    const RunResult run = RunProgram(folder, invocation);
    EXPECT_EQ(run.status, 3) << run.errors;
    EXPECT_TRUE(Contains(run.errors, "field MAXIT: -1 sets no limit")) << run.errors;
    EXPECT_LT(CountOf(run.console, "\n"), 1000);
    EXPECT_LT(CountOf(run.listing, "\n"), 2000);
}

} // namespace
} // namespace zurt_test
