// Surface records: their cards, and what they add to matrix and load.
#include "elements/form_model.h"
#include "elements/surfaces/surface_cards.h"
#include "elements/surfaces/surface_terms.h"
#include "support/bar_deck.h"
#include "support/small_run.h"

#include <numeric>

namespace zurt {
namespace {

using Place = std::array<double, 3>;
using Curves = std::vector<testmodel::Curve>;
using zurt_test::Contains;
using zurt_test::Print;
using zurt_test::RunPointer;

// One group for each entry of `dimensions`, of three full elements each, and some functions of every kind. Node k of element
// n is 100 n + k.
RunPointer MakeGroups(const std::string& deck, std::int32_t INDFOR,
                      const std::vector<std::int32_t>& dimensions) {
    RunPointer run = zurt_test::MakeRun(deck, INDFOR, 1000);
    run->control.header.NGET = static_cast<std::int32_t>(dimensions.size());
    CurveCounts& counts = run->control.counts;
    counts.NQP = counts.NHP = counts.NTOK = counts.NHR = 9;
    for (std::size_t i = 0; i < dimensions.size(); ++i) {
        ElementGroup& group = run->groups[i + 1];
        group.NGE = static_cast<std::int32_t>(i) + 1;
        group.NETIP = dimensions[i];
        group.NET = 3;
        group.NDMAX = 1 << dimensions[i];
        group.LNEL = TakeWords(run->A, "NEL", Word{group.NDMAX} * group.NET);
        for (std::int32_t n = 1; n <= group.NET; ++n)
            for (std::int32_t k = 1; k <= group.NDMAX; ++k)
                Connectivity(*run, group)(n, k) = 100 * n + k;
    }
    return run;
}

using Fields = std::vector<std::int32_t>;

// The five numbers of side `side` of element NE; zeros when it has no record.
Fields FieldsOf(const Run& run, const ElementGroup& group, std::int32_t NE, int side) {
    const Word rows = 10 * Word{group.NETIP};
    const std::int32_t record = SurfaceRecordNumbers(run, group)(NE);
    Fields fields(5, 0);
    for (Word f = 1; f <= 5 && record != 0; ++f)
        fields[static_cast<std::size_t>(f) - 1] =
            IntTableSection(run.A, group.surfaces.LISURF, rows, group.NET)(5 * (side - 1) + f, record);
    return fields;
}

// Faces by their corners as documented for the brick; edges and ends are those parts of them that lie in r, s and in r.
const std::vector<std::vector<std::int32_t>> kSidesOf[4] = {
    {},
    {{1}, {2}},
    {{1, 4}, {2, 3}, {1, 2}, {4, 3}},
    {{1, 4, 8, 5}, {2, 6, 7, 3}, {1, 5, 6, 2}, {4, 3, 7, 8}, {1, 2, 3, 4}, {5, 8, 7, 6}}};

// Faults: a side stored under another's number, a side that is found in one order of its corners alone.
TEST(SurfaceCards, EverySideIsFoundInEveryOrderOfItsCorners) {
    for (std::int32_t dimension = 1; dimension <= 3; ++dimension)
        for (std::size_t side = 0; side < kSidesOf[dimension].size(); ++side) {
            std::vector<std::int32_t> corners = kSidesOf[dimension][side];
            std::sort(corners.begin(), corners.end());
            do {
                std::string card = "2";
                for (std::int32_t corner : corners)
                    card += " " + std::to_string(200 + corner);
                RunPointer run = MakeGroups(card + " 1 2 3 4 5\n0/\n", 1, {dimension});
                testing::internal::CaptureStderr(); // the note about records without effect
                ReadSurfaceData(*run);
                const std::string note = testing::internal::GetCapturedStderr();
                EXPECT_EQ(Contains(note, "no effect"), dimension != 2);
                const ElementGroup& group = run->groups[1];
                for (std::size_t other = 0; other < kSidesOf[dimension].size(); ++other)
                    EXPECT_EQ(FieldsOf(*run, group, 2, static_cast<int>(other) + 1),
                              other == side ? Fields({1, 2, 3, 4, 5}) : Fields(5, 0))
                        << dimension << "D, card " << card << ", side " << other + 1;
            } while (std::next_permutation(corners.begin(), corners.end()));
        }
}

// Faults: numbers that are not carried, carried into the next group, or carried from the card instead of the record; a
// record for each card instead of each element; a second card that does not overwrite.
TEST(SurfaceCards, NumbersAreCarriedAndRecordsCounted) {
    const std::string deck = "3 301 302 0 0 0 0 0\n"   // the first card has nothing to carry
                             "1 101 104 1 0 2 0 7\n"   //
                             "1 102 103 0 -4 0 0 -1\n" // takes 1 0 2 0 7
                             "3 303 302 0 0 0 0 3\n"   // the last field alone is enough
                             "2 201 202 0 0 0 0 0\n"   //
                             "1 104 101 0 9 0 0 0\n"   // again, the other way round
                             "0 0 0 0 0 0 0 0\n"
                             "2 201 204 0 0 0 0 0\n"
                             "0/\n";
    RunPointer run = MakeGroups(deck, 1, {2, 2});
    ReadSurfaceData(*run);
    const ElementGroup& group = run->groups[1];
    EXPECT_EQ(group.surfaces.records, 3);
    const ConstIntArray records = SurfaceRecordNumbers(*run, group);
    EXPECT_EQ((Fields{records(3), records(1), records(2)}), (Fields{1, 2, 3}));
    const std::vector<std::tuple<int, int, Fields>> expected = {{3, 3, {0, 0, 0, 0, 0}},
                                                                {1, 1, {0, 9, 0, 0, 0}},
                                                                {1, 2, {1, 0, 2, 0, 7}},
                                                                {3, 2, {0, 0, 0, 0, 3}},
                                                                {2, 3, {0, 0, 0, 0, 3}}};
    for (const auto& [element, side, fields] : expected)
        EXPECT_EQ(FieldsOf(*run, group, element, side), fields) << element << ' ' << side;
    EXPECT_EQ(run->groups[2].surfaces.records, 1);
    EXPECT_EQ(FieldsOf(*run, run->groups[2], 2, 1), Fields(5, 0));
}

// Faults: columns of the fixed card, a blank card that does not end the group, a blank line that ends it in free format.
TEST(SurfaceCards, BlankCardsEndFixedDecksAlone) {
    const std::string fixed = Print("%5d%5d%5d%5d%5d%5d%5d%5d%5d%5d\n", 3, 305, 308, 307, 306, 1, 2, 3, 4, 5);
    testing::internal::CaptureStderr();
    RunPointer run = MakeGroups(fixed + "\n" + Print("%5d%5d%5d\n", 1, 102, 8) + "\n", 2, {3, 1});
    ReadSurfaceData(*run);
    EXPECT_EQ(FieldsOf(*run, run->groups[1], 3, 6), Fields({1, 2, 3, 4, 5}));
    EXPECT_EQ(FieldsOf(*run, run->groups[2], 1, 2), Fields({8, 0, 0, 0, 0}));
    run = MakeGroups("1 101 1 0 0 0 0\n\n2 202 0 3 0 0 0\n0/\n", 1, {1});
    ReadSurfaceData(*run);
    EXPECT_EQ(FieldsOf(*run, run->groups[1], 2, 2), Fields({0, 3, 0, 0, 0}));
    testing::internal::GetCapturedStderr();
}

// One element, all of whose sides may have a record; functions of the four kinds.
struct Model {
    Curves flux, convection, environment, emissivity;
    std::vector<double> shapeFactors;
    double SBC = 1.0;
    int INDAX = 0;
    std::array<int, 3> NGAUS = {2, 2, 2};
};

void TakeCurves(Run& run, const Curves& curves, std::int32_t& functions, std::int32_t& largest,
                Word& countsAt, Word& tableAt) {
    functions = static_cast<std::int32_t>(curves.size());
    largest = testmodel::MostPoints(curves);
    TakeFunctionTable(run, "curves", functions, largest, countsAt, tableAt);
    const FunctionTable table = FunctionTableAt(run, functions, largest, countsAt, tableAt);
    testmodel::SetPairs(curves, table.points, table.pairs);
}

template <int Dimension> struct Terms {
    RunPointer run;
    ActiveNodes active;
    ElementNodes<Dimension> element{};
    double K[kMaxNodes<Dimension> * (kMaxNodes<Dimension> + 1) / 2] = {};
    double FE[kMaxNodes<Dimension>] = {};

    explicit Terms(const Model& model) : run(zurt_test::MakeRun("", 1)) {
        CurveCounts& counts = run->control.counts;
        Pointers& at = run->control.at;
        TakeCurves(*run, model.flux, counts.NQP, counts.MAXTQP, at.LQP1, at.LQP2);
        TakeCurves(*run, model.convection, counts.NHP, counts.MAXTHP, at.LHP1, at.LHP2);
        TakeCurves(*run, model.environment, counts.NTOK, counts.MAXTOK, at.LTOK1, at.LTOK2);
        TakeCurves(*run, model.emissivity, counts.NHR, counts.MAXTHR, at.LHR1, at.LHR2);
        counts.SBC = model.SBC;
        counts.NFO = static_cast<std::int32_t>(model.shapeFactors.size());
        TakeShapeFactors(*run);
        for (std::size_t i = 0; i < model.shapeFactors.size(); ++i)
            ShapeFactors (*run)(static_cast<Word>(i) + 1) = model.shapeFactors[i];
        run->job.NonlinearFlag = 1;
        ElementGroup& group = run->groups[1];
        group.NET = 1;
        group.INDAX = model.INDAX;
        std::copy(model.NGAUS.begin(), model.NGAUS.end(), group.NGAUS);
        group.surfaces.LNSURF = TakeWords(run->A, "NSURF", 1);
        group.surfaces.LISURF = TakeWords(run->A, "ISURF", 10 * Dimension);
        ClearWords(run->A, group.surfaces.LNSURF, run->A.LMAX - 1);
        SurfaceRecordNumbers(*run, group)(1) = 1;
        active.ND = kCorners<Dimension>;
    }
    void SetSide(int side, const std::array<std::int32_t, 5>& fields) {
        for (std::size_t f = 0; f < 5; ++f)
            SurfaceRecords<Dimension>(*run, run->groups[1])(5 * (side - 1) + static_cast<Word>(f) + 1, 1) =
                fields[f];
    }
    // Node k where the point of the reference element goes, by its natural signs.
    template <class Map> void SetCorners(Map place, double value) {
        static const int r[] = {1, -1, -1, 1, 1, -1, -1, 1}, s[] = {1, 1, -1, -1, 1, 1, -1, -1};
        for (int k = 0; k < kCorners<Dimension>; ++k) {
            const Place x = place(r[k], Dimension > 1 ? s[k] : 0, k < 4 ? 1 : -1);
            for (std::size_t c = 0; c < 3; ++c)
                element.CORE[c][k] = x[c];
            element.TE1[k] = value;
        }
    }
    // With a record of this side alone.
    void Add(int side, const std::array<std::int32_t, 5>& fields) {
        for (int other = 1; other <= kSides<Dimension>; ++other)
            SetSide(other, {});
        SetSide(side, fields);
        Add();
    }
    void Add() {
        const int ND = active.ND;
        std::fill(std::begin(K), std::end(K), 0.0);
        std::fill(std::begin(FE), std::end(FE), 0.0);
        ElementGroup& group = run->groups[1];
        ElementWalk<Dimension> walk{*run, group};
        BeginWalk(walk, group.NGAUS, {});
        walk.number = 1;
        walk.points.active = active;
        walk.element = element;
        SurfaceTerms(walk, SurfaceTablesOf<Dimension>(*run, group), run->visits.held[1],
                     RealArray(K, ND * (ND + 1) / 2), RealArray(FE, ND));
    }
    double Load() const { return std::accumulate(FE, FE + active.ND, 0.0); }
    double MatrixSum() const {
        double sum = 0.0;
        for (int i = 0, entry = 0; i < active.ND; ++i)
            for (int j = i; j < active.ND; ++j, ++entry)
                sum += (i == j ? 1.0 : 2.0) * K[entry];
        return sum;
    }
};

Place Skewed(double r, double s, double t) {
    return {1.5 * r + 0.5 * s + 7.0, 2.0 * s + 0.25 * t, t};
}

// The length or area of the sides 2d-1 and 2d of the skewed element, by the edges of its parallelepiped.
const double kEdges[] = {std::sqrt(0.25 + 4.0) * 2.0, 3.0};
const double kFaces[] = {4.0 * std::sqrt(4.0 + 0.25 + 0.0625 * 0.25),
                         4.0 * std::sqrt(1.5 * 1.5 * (1.0 + 0.0625)), 4.0 * 3.0};

// Loads all sides one by one with a flux, whose loads tell the extents of the sides. Faults: a side's points on another
// side, a scale other than the side's, a load beside its corners, a value of another function or time.
template <int Dimension> void ExpectFluxOnSides(const std::vector<double>& extents) {
    Model model;
    model.flux = {{{0.0, 99.0}}, {{0.0, 0.0}, {10.0, 25.0}}};
    model.NGAUS = {1, 2, 3};
    for (int side = 1; side <= kSides<Dimension>; ++side) {
        Terms<Dimension> terms(model);
        terms.SetCorners(Skewed, 5.0);
        terms.run->clock.TIME = 1.0;
        terms.run->job.NonlinearFlag = side % 2; // a flux acts in linear problems, too
        terms.Add(side, {2, 0, 0, 0, 0});
        EXPECT_EQ(std::count(terms.FE, terms.FE + terms.active.ND, 0.0),
                  terms.active.ND - kSideCorners<Dimension>)
            << "side " << side;
        EXPECT_EQ(terms.MatrixSum(), 0.0);
        EXPECT_NEAR(terms.Load() / 2.5, extents[static_cast<std::size_t>(side - 1) / 2], 1e-6) << side;
    }
}

TEST(SurfaceTerms, FluxGivesItsIntegralToTheNodesOfTheSide) {
    ExpectFluxOnSides<1>({1.0}); // ends of lines have no extent
    ExpectFluxOnSides<2>({kEdges[0], kEdges[1]});
    ExpectFluxOnSides<3>({kFaces[0], kFaces[1], kFaces[2]}); // weights in single precision
}

// Faults: the order of another direction (one point would give 0, 1, 0), mid-side nodes left out.
TEST(SurfaceTerms, ParabolicEdgeUnderConstantFlux) {
    Model model;
    model.flux = {{{0.0, 6.0}}};
    model.NGAUS = {1, 3, 1};
    Terms<2> terms(model);
    terms.SetCorners([](double r, double s, double) { return Place{r, s, 0.0}; }, 0.0);
    terms.active.ND = 5;
    terms.active.midSideCount = 1;
    terms.active.midSide[0] = 8;
    terms.element.CORE[0][4] = 1.0;
    terms.Add(1, {1, 0, 0, 0, 0});
    const double expected[] = {2.0, 0.0, 0.0, 2.0, 8.0};
    for (int k = 0; k < 5; ++k)
        EXPECT_NEAR(terms.FE[k], expected[k], 1e-6) << k + 1;
}

// Faults: a tangent instead of the secant, a shape factor chosen by its own field, radiation in a linear problem, a
// radiation matrix that is left out without convection.
TEST(SurfaceTerms, RadiationByTheSecant) {
    Model model;
    model.emissivity = {{{0.0, 0.5}}, {{0.0, 0.0}, {1000.0, 1.0}}};
    model.environment = {{{0.0, 300.0}}};
    model.SBC = 5.67e-8;
    for (const bool factors : {false, true}) {
        if (factors)
            model.shapeFactors = {0.1, 0.75, 0.2};
        const double F = factors ? 0.75 : 1.0, e = 0.4, T = 400.0, E = 300.0;
        Terms<3> terms(model);
        terms.SetCorners(Skewed, T);
        terms.Add(3, {0, 0, 1, 2, 3});
        const double scale = e * model.SBC * F * kFaces[1];
        EXPECT_NEAR(terms.Load(), scale * (std::pow(E, 4) - std::pow(T, 4)), 1e-9);
        EXPECT_NEAR(terms.MatrixSum(), scale * (T * T + E * E) * (T + E), 1e-11);
        terms.run->job.NonlinearFlag = 0;
        terms.Add();
        EXPECT_EQ(terms.Load(), 0.0);
        EXPECT_EQ(terms.MatrixSum(), 0.0);
    }
}

// Faults: a radius from the second coordinate, or of one point for the whole edge.
TEST(SurfaceTerms, EdgesOfAxisymmetricElementsTakeTheFirstCoordinateAsRadius) {
    Model model;
    model.flux = {{{0.0, 2.0}}};
    model.INDAX = 1;
    const auto place = [](double r, double s, double t) { return Place{r + 3.0, 5.0 * s + 50.0, t}; };
    Terms<2> plane(model);
    plane.SetCorners(place, 0.0);
    plane.Add(1, {1, 0, 0, 0, 0}); // x = 4, 10 long
    EXPECT_NEAR(plane.Load(), 2.0 * 10.0 * 4.0, 1e-12);
    plane.Add(3, {1, 0, 0, 0, 0}); // x from 4 to 2, 2 long; node 1 lies outside
    EXPECT_NEAR(plane.FE[0], 2.0 * (3.0 + 1.0 / 3.0), 1e-6);
    EXPECT_NEAR(plane.FE[1], 2.0 * (3.0 - 1.0 / 3.0), 1e-6);
}

// Faults: values that are reset from side to side. A side without environment takes that of the side before, a curve at
// its exact end the value before; both for a later element too.
TEST(SurfaceTerms, ValuesOfTheSideBefore) {
    Model model;
    model.flux = {{{0.0, 5.0}, {8.0, 5.0}}};
    model.convection = {{{0.0, 3.0}}};
    model.emissivity = {{{0.0, 1.0}}};
    model.environment = {{{0.0, 7.0}}};
    Terms<1> terms(model);
    terms.SetCorners(Skewed, 4.0);
    terms.Add(2, {0, 1, 0, 0, 0});
    EXPECT_EQ(terms.FE[1], 3.0 * (0.0 - 4.0)); // nothing came before
    terms.SetSide(1, {0, 1, 1, 1, 0});
    terms.SetSide(2, {0, 1, 0, 1, 0});
    terms.element.TE1[1] = 2.0;
    terms.Add();
    EXPECT_EQ(terms.FE[1], (3.0 + 65.0 * 11.0) * (7.0 - 2.0)); // radiation's coefficient, too
    terms.SetSide(1, {1, 0, 0, 0, 0});
    terms.SetSide(2, {0, 0, 0, 0, 0});
    terms.run->clock.TIME = 8.0;
    terms.Add();
    EXPECT_EQ(terms.FE[0], 0.0);
    terms.run->clock.TIME = 4.0;
    terms.Add();
    terms.run->clock.TIME = 8.0;
    terms.Add();
    EXPECT_EQ(terms.FE[0], 5.0);
}

} // namespace
} // namespace zurt
