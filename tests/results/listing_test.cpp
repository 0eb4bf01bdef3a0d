#include "results/listing.h"

#include "job/partition.h"
#include "support/small_run.h"

#include <gtest/gtest.h>

#include <string>

namespace zurt {
namespace {

using zurt_test::SmallRun;
using zurt_test::Written;

// Six nodes with values 1.5, 2.5 ...; under NDS mass fluxes too.
void Prepare(zurt::Run& run, std::int32_t NDS) {
    run.control.header.NP = 6;
    run.control.header.NDS = NDS;
    run.control.state.KOR = 12;
    run.control.state.TIME = 0.25;
    TakeNodeArrays(run);
    TakeSolverVectors(run);
    for (int i = 1; i <= 6; ++i) {
        NodalValues(run)(i) = i + 0.5;
        if (NDS != 0) {
            RealSection(run.A, run.control.at.LNDS[1], 6)(i) = 10.0 * i;
            RealSection(run.A, run.control.at.LNDS[2], 6)(i) = -i;
        }
    }
}

// Faults: other heads, another count of nodes in a line, blanks between the columns, E13.5 with another scale; nodal
// fluxes of a model that has none read from whatever stands in the working vector.
TEST(NodalListing, FourNodesALineInExponentForm) {
    SmallRun small;
    Prepare(small.run, 0);
    PrintNodalResults(small.run);
    EXPECT_EQ(Written(small.run.units.listing),
              "\n\n\n1\n S T E P  NUMBER =    12                           T I M E = 2.50000E-01\n"
              "                 N O D A L    C O N C E N T R A T I O N S\n\n"
              " NODE  CONCENTRAT    NODE  CONCENTRAT   NODE  CONCENTRAT   NODE CONCENTRAT\n"
              "       1      0.15000E+01       2      0.25000E+01       3      0.35000E+01       4"
              "      0.45000E+01\n"
              "       5      0.55000E+01       6      0.65000E+01\n"
              "                N O D A L   M A S S   F L U X E S\n"
              " NODE          FLUX-X            FLUX-Y       NODE       FLUX-X           FLUX-Y\n"
              "       1      0.00000E+00    0.00000E+00       2      0.00000E+00    0.00000E+00\n"
              "       3      0.00000E+00    0.00000E+00       4      0.00000E+00    0.00000E+00\n"
              "       5      0.00000E+00    0.00000E+00       6      0.00000E+00    0.00000E+00\n");
}

// Faults: IFORM without effect, or a form of its own for other values; iterations not shown when they ran; flux y in
// the place of flux x; the Serbian head torn apart.
TEST(NodalListing, FixedFormIterationsAndFluxes) {
    SmallRun small;
    Prepare(small.run, 1);
    small.run.control.header.IFORM = 1;
    small.run.control.state.NonlinearFlag = 1;
    small.run.control.state.ITER = 3;
    PrintNodalResults(small.run);
    const std::string listing = Written(small.run.units.listing);
    EXPECT_NE(listing.find("2.50000E-01\n NUMBER OF ITERATIONS ....................... ITER =    3\n"
                           "                 N O D A L"),
              std::string::npos);
    EXPECT_NE(listing.find("       1         1.500       2         2.500       3         3.500       4"
                           "         4.500\n       5         5.500       6         6.500\n"),
              std::string::npos);
    EXPECT_NE(
        listing.find("       3      0.30000E+02   -0.30000E+01       4      0.40000E+02   -0.40000E+01\n"),
        std::string::npos);
    small.run.control.header.IFORM = 2;
    PrintNodalResults(small.run);
    EXPECT_EQ(zurt_test::CountOf(Written(small.run.units.listing), "      0.15000E+01"), 1);
    small.run.control.state.Language = kSerbian;
    PrintNodalResults(small.run);
    EXPECT_NE(
        Written(small.run.units.listing)
            .find("V R E M E = 2.50000E-01\n               T   E   M   P   E   R   A   T   U   R   E\n"
                  " BROJ ITERACIJA ............................. ITER =    3\n                  C V O R N E"),
        std::string::npos);
}

// Faults: small values printed, set to 0 in print alone, or values of 1e-15 and above set to 0; fluxes changed too.
TEST(NodalListing, SmallConcentrationsBecomeZero) {
    SmallRun small;
    Prepare(small.run, 1);
    const RealArray values = NodalValues(small.run);
    values(1) = 1e-16;
    values(2) = -0.99e-15;
    values(3) = 1.01e-15;
    values(4) = -1e-15;
    const RealArray flux = RealSection(small.run.A, small.run.control.at.LNDS[1], 6);
    flux(1) = 1e-16;
    PrintNodalResults(small.run);
    EXPECT_EQ(values(1), 0.0);
    EXPECT_EQ(values(2), 0.0);
    EXPECT_EQ(values(3), 1.01e-15);
    EXPECT_EQ(values(4), -1e-15);
    EXPECT_EQ(flux(1), 1e-16);
    EXPECT_NE(Written(small.run.units.listing).find("       1      0.00000E+00       2      0.00000E+00"),
              std::string::npos);
}

} // namespace
} // namespace zurt
