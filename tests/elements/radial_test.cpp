// The radial fibre by itself: a ring's matrices, the release of one fibre, and the law of a degrading polymer.
#include "elements/radial/radial_kernel.h"
#include "microscale/degradation.h"
#include "support/orders.h"

namespace zurt {
namespace {

using zurt_test::ExpectOrder;

constexpr double kPi = 3.14159265358979;

struct Release {
    double amount, centre;
};

// A fibre of radius 1 that starts with 1 everywhere; the surface is set to 0 at once. D t is Fo.
Release ReleaseOf(int rings, int steps, double Fo) {
    std::vector<double> c(static_cast<std::size_t>(rings) + 1, 1.0), c0;
    const double D = 0.25, dt = Fo / D / steps;
    const RadialScales scales = ScalesOfFibre(D, 2.0, 1.0, rings, true, dt);
    TextUnit none;
    double amount = 0.0;
    for (int step = 0; step < steps; ++step) {
        c0 = c;
        c.back() = 0.0;
        amount += dt * SolveFibre(scales, RealArray(c.data(), rings + 1),
                                  ConstRealArray(c0.data(), rings + 1), none);
    }
    return {amount / (2.0 * kPi), c[0]};
}

// Amounts released and centre values of the series for a cylinder held at zero (Crank 1975). Prints the tables of
// docs/verification.md: second order in the rings, first in the step.
TEST(Radial, ReleaseConvergesToTheCylinderSeries) {
    const double series[4][3] = {{0.05, 0.452121, 0.987099},
                                 {0.1, 0.605824, 0.848355},
                                 {0.2, 0.782148, 0.501487},
                                 {0.5, 0.961621, 0.088890}};
    for (const auto& [Fo, amount, centre] : series) {
        const Release release = ReleaseOf(10, 2000, Fo);
        EXPECT_NEAR(release.amount, amount, 7e-4) << Fo;
        EXPECT_NEAR(release.centre, centre, 0.009) << Fo;
    }
    const auto released = [](int rings, int steps) { return ReleaseOf(rings, steps, 0.1); };
    ExpectOrder({"rings", 2, 3, 2.0, 0.15}, [&](int n) { return released(n, 100000).amount - 0.605824; });
    ExpectOrder({"rings, axis", 2, 3, 1.7, 0.2},
                [&](int n) { return released(n, 100000).centre - 0.848355; });
    const double converged = released(10, 400000).amount;
    ExpectOrder({"steps", 25, 4, 1.0, 0.02}, [&](int n) { return released(10, n).amount - converged; });
}

// Faults: the two rates or the two phases exchanged, the partitioning on the wrong phase, a power on the wrong factor.
TEST(Radial, DegradationRunsFromTheSolidToTheLiquid) {
    HeaderFields header;
    header.DEGALPHA = 3.0;
    header.DEGIPOR = 0.2;
    header.DEGPART = 5.0;
    header.DEGRATEK = 0.4;
    header.DEGRATEKW = 0.1;
    header.DIFFCDS = 0.01;
    header.DIFFCDL = 2.0;
    const DegradedCoefficient start = DegradedDiffusion(header, 0.0), end = DegradedDiffusion(header, 200.0);
    EXPECT_NEAR(start.phi, 0.8, 1e-15);
    EXPECT_NEAR(start.D, (0.01 * 0.8 + 2.0 * 5.0 * 0.2) / (0.8 + 5.0 * 0.2), 1e-15);
    EXPECT_NEAR(end.phi, 0.0, 1e-12);
    EXPECT_NEAR(end.D, 2.0, 1e-12);
    const double t = 1.7, e = std::exp(-0.4 * t), P = 0.2 + 0.8 * (1.0 - e) * (1.0 - e);
    const double S = 0.01 * std::exp(-0.1 * 3.0 * t);
    EXPECT_NEAR(DegradedDiffusion(header, t).phi, 1.0 - P, 1e-14);
    EXPECT_NEAR(DegradedDiffusion(header, t).D, (S * (1.0 - P) + 10.0 * P) / (1.0 - P + 5.0 * P), 1e-14);
    header.DEGPART = 0.0; // nothing enters the liquid
    EXPECT_NEAR(DegradedDiffusion(header, t).D, S, 1e-15);
}

} // namespace
} // namespace zurt
