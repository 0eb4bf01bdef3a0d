// The searches of a fit alone, driven with made-up masses: which runs follow one another, in which state, which values
// they try, where they end.
#include "homogenization/fit_notes.h"
#include "homogenization/run_homogenization.h"
#include "run/partition.h"
#include "support/small_run.h"

#include <array>
#include <cmath>

namespace zurt_test {
namespace {

using namespace zurt;

/// One node, a curve from 1 to 2 over 0..1, porosity one half; HEQ begins at 1.
struct Fit {
    SmallRun small;
    FittedCurve curve;

    explicit Fit(std::int32_t IDCC, std::int32_t IHEQ) {
        Run& run = small;
        run.control.header.NP = run.control.header.NMATT = run.control.header.NDS = 1;
        run.control.counts.MAXPMAT = 2;
        run.sizes.JEDN = 1;
        run.sizes.SparseMode = 1;
        run.fibres.POROSITY = 0.5;
        run.fit.card.NFIT = run.fit.card.NSETS = run.fit.INDDEG = 1;
        run.fit.card.IDCC = IDCC;
        run.fit.card.IHEQ = IHEQ;
        run.fit.card.NFITMAX = 30;
        run.fit.card.FITERR = 0.02;
        run.fit.card.D1D = 3.0;
        run.fit.card.D2D = 5.0;
        run.fit.HEQ = 1.0;
        run.fit.ISFOFF = IDCC;
        TakeNodeArrays(run);
        TakeDiffusionCurves(run);
        TakeFitColumn(run);
        TakeSolutionVectors(run);
        TakeSolverVectors(run);
        EquationNumbers(run)(1) = 1;
        IntSection(run.A, run.control.at.LNPMAT, 1)(1) = 2;
        RealSection(run.A, run.control.at.LFIT, 2)(1) = 1.0;
        RealSection(run.A, run.control.at.LFIT, 2)(2) = 2.0;
        curve = FittedCurveOf(run);
        curve.table(1, 3) = 1.0;
        RestoreBulkCurve(curve);
    }
};

struct RunState {
    bool fibres, factors;
    double HEQ, first, last; // wall distance, ends of the curve
};

/// All runs of one direction; the equivalent medium passes mass(fit, first value of the curve).
template <class Mass> std::vector<RunState> Drive(Fit& fit, double target, const Mass& mass) {
    FitState& state = fit.small.fit;
    std::vector<RunState> runs;
    BeginFitRun(fit.small, fit.curve);
    while (state.IFITEND == 0 && runs.size() < 100) {
        EXPECT_EQ(state.IEHM, state.IPHASE);
        const double first = CoefficientOf(fit.curve, 1);
        runs.push_back({state.IEHM == 0, state.ISFOFF == 0, state.HEQ, first, CoefficientOf(fit.curve, 2)});
        (state.IPHASE == 0 ? state.MASSFIB : state.MASSEHM) = state.IPHASE == 0 ? target : mass(state, first);
        EndFitRun(fit.small, fit.curve);
        BeginFitRun(fit.small, fit.curve);
    }
    return runs;
}

const auto kMassIsHeq = [](const FitState& fit, double) { return fit.HEQ; };
const auto kMassIsFirst = [](const FitState&, double first) { return first; };

std::vector<double> HeqOf(const std::vector<RunState>& runs) {
    std::vector<double> values(runs.size());
    std::transform(runs.begin(), runs.end(), values.begin(), [](const RunState& run) { return run.HEQ; });
    return values;
}

// Faults: a wrong first step, growth, bisection or end of the search; a curve that does not begin between the card's ends.
TEST(FitLoop, DistanceStepsGrowAndThenHalveTheBracket) {
    Fit fit(0, 0);
    const std::vector<RunState> runs = Drive(fit, 2.0, kMassIsHeq);
    // -DMASS/MASSFIB is 0.5, then 2.5; the bracket is 1.5 to 5.25
    EXPECT_EQ(HeqOf(runs), (std::vector<double>{1.0, 1.0, 1.5, 5.25, 3.375, 2.4375, 1.96875}));
    EXPECT_TRUE(runs[0].fibres && runs[0].factors && runs[1].factors && !runs[1].fibres);
    EXPECT_EQ(runs[0].first, 1.0);
    EXPECT_EQ(runs[1].first, 3.0);
    EXPECT_EQ(runs[1].last, 5.0);
    const FitState& state = fit.small.fit;
    EXPECT_EQ(state.HEQDIR[1], 1.96875);
    EXPECT_EQ(state.ERRFIT, -0.015625);
    const std::string console = Written(fit.small.units.console);
    EXPECT_TRUE(Contains(console, "running FIB model - with prescribed SF"));
    EXPECT_TRUE(Contains(console, "running EHM model - Calculation of HEQ..."));
    EXPECT_TRUE(Contains(console, "    6  -0.156250E-01")) << console;
}

// Faults: a curve that is not lowered by porosity first; ends that move apart; a fit that leaves the curve changed.
TEST(FitLoop, CurveIsSearchedFromItsPorousStartAndPutBack) {
    Fit fit(1, 0);
    fit.small.fit.card.FITERR = 0.04;
    const std::vector<RunState> runs = Drive(fit, 0.4, kMassIsFirst);
    const double expected[] = {1.0, 0.5, 0.475, 0.35625, 0.415625};
    ASSERT_EQ(runs.size(), std::size(expected));
    for (std::size_t i = 0; i < runs.size(); ++i) {
        EXPECT_NEAR(runs[i].first, expected[i], 1e-15) << i;
        EXPECT_NEAR(runs[i].last, expected[i] + 1.0, 1e-15) << i;
        EXPECT_FALSE(runs[i].factors);
    }
    const FitState& state = fit.small.fit;
    EXPECT_NEAR(state.D1DIR[1], 0.415625, 1e-15);
    EXPECT_NEAR(state.D2DIR[1], 1.415625, 1e-15);
    EXPECT_EQ(CoefficientOf(fit.curve, 1), 1.0);
    EXPECT_EQ(CoefficientOf(fit.curve, 2), 2.0);
}

// Faults: stages out of order; flags or signs of the first stage that live on in the second; the second stage's medium
// without the fitted ends.
TEST(FitLoop, DistanceFollowsTheCurve) {
    Fit fit(1, 1);
    fit.small.fit.card.FITERR = 0.04;
    const auto mass = [](const FitState& state, double first) {
        return state.ISFOFF == 1 ? first : 0.4 * state.HEQ;
    };
    const std::vector<RunState> runs = Drive(fit, 0.4, mass);
    ASSERT_GT(runs.size(), 7U);
    EXPECT_TRUE(runs[5].fibres && runs[5].factors);
    EXPECT_EQ(runs[5].first, 1.0) << "the model with fibres has the curve as read";
    EXPECT_FALSE(runs[6].fibres);
    EXPECT_NEAR(runs[6].first, 0.415625, 1e-15);
    EXPECT_NEAR(runs[6].last, 1.415625, 1e-15);
    EXPECT_EQ(runs[6].HEQ, 1.0);
    EXPECT_EQ(runs[7].HEQ, 1.0)
        << "a mass that is met at once counts as too small and waits for the other sign";
    const std::string console = Written(fit.small.units.console);
    EXPECT_TRUE(
        Contains(console, "Calculation of D-C curve finished!\n\n running FIB model - with prescribed SF\n"));
}

// Faults: a limit that counts runs with fibres, or one iteration too many.
TEST(FitLoop, LimitOfIterationsEndsTheFit) {
    for (const std::int32_t NFITMAX : {0, 1, 3}) {
        Fit fit(0, 0);
        fit.small.fit.card.NFITMAX = NFITMAX;
        fit.small.fit.HEQDIR[1] = 7.0;
        EXPECT_EQ(Drive(fit, 2.0, kMassIsHeq).size(), static_cast<std::size_t>(1 + NFITMAX));
        EXPECT_EQ(fit.small.fit.HEQDIR[1], 7.0);
        EXPECT_TRUE(Contains(Written(fit.small.units.console),
                             "Max number of iterations for Homogenization reached"));
    }
}

// Faults: other literals; a search that ends with one sign alone; molecules that do not bound it.
TEST(FitLoop, DistanceHasALowestStepAndALowestValue) {
    Fit fit(0, 0);
    fit.small.fit.card.NFITMAX = 6;
    const auto tooMuch = [](const FitState&, double) { return 3.0; };
    const std::vector<double> values = HeqOf(Drive(fit, 2.0, tooMuch));
    // DMASS/MASSFIB is 0.5; five times that is held at -0.99
    const double lowest = static_cast<double>(-0.99F), bound = static_cast<double>(0.0006F);
    EXPECT_EQ(values[2], 0.5);
    EXPECT_EQ(values[3], 0.5 * (lowest + 1.0));
    EXPECT_EQ(values[4], bound);
    EXPECT_EQ(values[6], bound);

    Fit molecules(0, 0);
    molecules.small.fit.card.IDIAM = 1;
    molecules.small.fit.card.NFITMAX = 4;
    molecules.small.control.header.DMOLECULE = 0.2;
    const double radius = 0.1;
    EXPECT_EQ(HeqOf(Drive(molecules, 2.0, tooMuch))[3], radius * static_cast<double>(0.01F) + radius);
}

// Faults: ends below 0 left in the curve, or one held for the other; the reader not told that an end was held.
TEST(FitLoop, EndsOfACurveStayAboveZero) {
    Fit fit(1, 0);
    FitState& state = fit.small.fit;
    const auto expectEnds = [&](double first, double last) {
        EXPECT_NEAR(CoefficientOf(fit.curve, 1), first, 1e-14);
        EXPECT_NEAR(CoefficientOf(fit.curve, 2), last, 1e-14);
    };
    const auto setCurve = [&](double first, double last) {
        const RealArray bulk = RealSection(fit.small.A, fit.small.control.at.LFIT, 2);
        bulk(1) = state.D1 = first;
        bulk(2) = state.D2 = last;
        RestoreBulkCurve(fit.curve);
    };
    for (const auto& [first, last, lowered] : {std::array{0.5, 1.5, 1.25}, {4.0, 1.0, 0.001}}) {
        setCurve(first, last);
        RescaleEquivalentCurve(fit.curve, 0.5, fit.small.fibres, state);
        expectEnds(first / 2, lowered);
    }
    setCurve(1.0, 4.0);
    state.DCTRY = 0.5;
    ApplyTriedCurve(fit.curve, state);
    expectEnds(0.5, 3.5);
    EXPECT_FALSE(state.clampedCurve);
    state.DCTRY = -1.0;
    ApplyTriedCurve(fit.curve, state);
    expectEnds(0.001, 2.0);
    setCurve(4.0, 1.0);
    state.DCTRY = 2.0;
    ApplyTriedCurve(fit.curve, state);
    expectEnds(2.0, 0.001);
    EXPECT_TRUE(state.clampedCurve);
    state.ITERFIT = 5;
    state.MASSFIB = 1.0;
    for (const bool clamped : {true, false}) {
        state.clampedCurve = clamped;
        testing::internal::CaptureStderr();
        NoteSearchWithoutResult(fit.small);
        const std::string note = testing::internal::GetCapturedStderr();
        EXPECT_TRUE(Contains(note, "IDIRECTD 1")) << note; // not constant, and errors of one sign alone
        EXPECT_EQ(Contains(note, "would fall below 0 and is held"), clamped) << note;
    }
}

// Faults: a sign seen before that is forgotten at the second iteration; a masses' ratio of none by none that runs away.
TEST(FitLoop, OddMassesAreTaken) {
    Fit both(0, 0);
    both.small.fit.SEENPOS = 1;
    both.small.fit.card.NFITMAX = 2;
    EXPECT_EQ(HeqOf(Drive(both, 2.0, kMassIsHeq)), (std::vector<double>{1.0, 1.0, 1.0}));
    EXPECT_EQ(both.small.fit.HEQPOS, 1.0);
    EXPECT_EQ(both.small.fit.SEENNEG, 1);

    for (const std::int32_t IDCC : {0, 1}) {
        Fit none(IDCC, 0);
        none.small.fit.card.NFITMAX = 5;
        EXPECT_EQ(Drive(none, 0.0, kMassIsFirst).size(), 6U);
    }
}

} // namespace
} // namespace zurt_test
