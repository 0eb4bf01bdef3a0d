#include "results/listing.h"

#include "job/partition.h"
#include "support/small_run.h"

namespace zurt {
namespace {

// Six nodes with values 1.5, 2.5 ...; under NDS mass fluxes too.
void Prepare(zurt::Run& run) {
    run.control.header.NP = 6;
    run.control.header.NDS = 1;
    TakeNodeArrays(run);
    TakeSolverVectors(run);
    for (int i = 1; i <= 6; ++i) {
        NodalValues(run)(i) = i + 0.5;
        RealSection(run.A, run.control.at.LNDS[1], 6)(i) = 10.0 * i;
        RealSection(run.A, run.control.at.LNDS[2], 6)(i) = -i;
    }
}

// Faults: IFORM without effect, or a form of its own for other values; flux y in the place of flux x; the Serbian head torn apart.
TEST(NodalListing, FixedFormAndFluxes) {
    zurt_test::SmallRun run;
    Prepare(run);
    run.control.header.IFORM = 1;
    PrintNodalResults(run);
    const std::string listing = ListingOf(run);
    for (const char* lines :
         {"       1         1.500       2         2.500       3         3.500       4         4.500\n"
          "       5         5.500       6         6.500\n",
          "       3      0.30000E+02   -0.30000E+01       4      0.40000E+02   -0.40000E+01\n"})
        EXPECT_TRUE(zurt_test::Contains(listing, lines)) << listing;
    run.control.header.IFORM = 2;
    PrintNodalResults(run);
    EXPECT_EQ(zurt_test::CountOf(ListingOf(run), "      0.15000E+01"), 1);
    run.control.state.Language = kSerbian;
    run.control.state.NonlinearFlag = 1;
    PrintNodalResults(run);
    EXPECT_TRUE(zurt_test::Contains(
        ListingOf(run),
        "V R E M E = 0.00000E+00\n               T   E   M   P   E   R   A   T   U   R   E\n"
        " BROJ ITERACIJA ............................. ITER =    0\n                  C V O R N E"));
}

// Faults: small values printed, set to 0 in print alone, or values of 1e-15 and above set to 0; fluxes changed too.
TEST(NodalListing, SmallConcentrationsBecomeZero) {
    zurt_test::SmallRun run;
    Prepare(run);
    const double before[] = {1e-16, -0.99e-15, 1.01e-15, -1e-15}, after[] = {0.0, 0.0, 1.01e-15, -1e-15};
    std::copy(before, before + 4, NodalValues(run).data);
    const RealArray flux = RealSection(run.A, run.control.at.LNDS[1], 6);
    flux(1) = 1e-16;
    PrintNodalResults(run);
    for (int i = 1; i <= 4; ++i)
        EXPECT_EQ(NodalValues(run)(i), after[i - 1]);
    EXPECT_EQ(flux(1), 1e-16);
    EXPECT_TRUE(zurt_test::Contains(ListingOf(run), "       1      0.00000E+00       2      0.00000E+00"));
}

} // namespace
} // namespace zurt
