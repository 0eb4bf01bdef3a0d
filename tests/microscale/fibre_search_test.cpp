// Fibres clipped to their box, and the nearest fibre of a point.
#include "core/widened_constants.h"
#include "microscale/fibre_geometry.h"
#include "microscale/fibre_models.h"
#include "microscale/fibre_search.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace zurt {
namespace {

using namespace testfibres;

constexpr double kUnitBox[3] = {1.0, 1.0, 1.0};

// Faults: the shift made with its sign (a true clip) where its size is asked for; the direction updated between the two
// points; the order of the faces; a face's own coordinate shifted, too; the tolerance of 1e-9 left out or applied to the
// limit that is set.
TEST(ClipFibres, ShiftsByTheSizeOnly) {
    const auto expect = [](const Point& from, const Point& to, const std::vector<double>& clipped,
                           int dimension = kSpaceFibres) {
        FibreModel model = MakeModel({MakeSet(kLineFibres, 0.1, {FibreThrough({from, to})})});
        EXPECT_EQ(ClipFibresToBox(model, kUnitBox, dimension).set, 0);
        for (std::size_t i = 0; i < clipped.size(); ++i)
            EXPECT_NEAR(model.sets[0].fibres[0].points.at(i), clipped[i], 1e-14) << i;
    };
    // Rising in x and y: a true clip on both faces of x.
    expect({-0.2, 0.3, 0.5}, {1.2, 0.7, 0.5}, {0, 0.3 + 0.08 / 1.4, 0.5, 1, 0.7 - 0.08 / 1.4, 0.5});
    // Falling in y: low faces still shift y up, high faces down, away from the line.
    expect({-0.2, 0.7, 0.5}, {1.2, 0.3, 0.5}, {0, 0.7 + 0.08 / 1.4, 0.5, 1, 0.3 - 0.08 / 1.4, 0.5});
    // Two faces in their order: x low moves y up, then y high moves x down again, out of the box; x is not looked at again.
    expect({-0.5, 0.9, 0.5}, {0.5, 0.5, 0.5}, {-0.25, 1, 0.5, 0.5, 0.5, 0.5});
    // Both ends of the second point's clip use the direction of the card.
    expect({-1, -1, 0.5}, {1, 0.5, 0.5}, {1.0 / 3, 0, 0.5, 1, 0.5, 0.5});
    const double in = 0.9e-9, out = 1.1e-9;
    expect({-in, 0.5, 0.5}, {1.0 + in, 0.5, 0.5}, {-in, 0.5, 0.5, 1.0 + in, 0.5, 0.5});
    expect({-out, 0.5, 0.5}, {1.0 + out, 0.5, 0.5}, {0, 0.5, 0.5, 1, 0.5, 0.5});
    // In the plane z has the range [0, 0].
    expect({0.5, 0.5, 0}, {2.0, 0.5, 0}, {0.5, 0.5, 0, 1, 0.5, 0}, kPlaneFibres);
    expect({0.8, 0.5, -0.25}, {0.2, 0.5, 0.25}, {1.1, 0.5, 0, -0.1, 0.5, 0}, kPlaneFibres);
}

// Faults: the lengths of all sets in one, of unclipped lines, added up over two calls; spheres clipped.
TEST(ClipFibres, LengthsBySet) {
    FibreModel model =
        MakeModel({MakeSet(kLineFibres, 0.1,
                           {FibreThrough({{-1, 0.5, 0.5}, {0.5, 0.5, 0.5}}),
                            FibreThrough({{0.5, 0.5, 0}, {0.5, 0.5, 4}})}),
                   MakeSet(kSphereFibres, 0.2, {FibreThrough({{-1, 0.5, 0.5}}), FibreThrough({{0, 0, 0}})}),
                   MakeSet(kLineFibres, 0.3, {FibreThrough({{0, 0, 0}, {0.3, 0.4, 0}})})});
    for (int call = 0; call < 2; ++call) {
        EXPECT_EQ(ClipFibresToBox(model, kUnitBox, kSpaceFibres).set, 0);
        EXPECT_NEAR(model.sets[0].totalLength, 1.5, 1e-15);
        EXPECT_EQ(model.sets[1].totalLength, 0.0);
        EXPECT_NEAR(model.sets[2].totalLength, 0.5, 1e-15);
    }
    EXPECT_EQ(model.sets[1].fibres[0].points[0], -1.0);
    const double pi = std::acos(-1.0);
    FibreVolumes(model, kSpaceFibres);
    EXPECT_NEAR(model.sets[0].volume, pi / 4 * 0.01 * 1.5, 1e-15);
    EXPECT_DOUBLE_EQ(model.sets[1].volume,
                     2 * 0.008 * 0.5235987912027583); // pi times a single-precision sixth
    EXPECT_NEAR(model.fibreVolume, model.sets[0].volume + model.sets[1].volume + pi / 4 * 0.09 * 0.5, 1e-15);
    FibreVolumes(model, kPlaneFibres);
    EXPECT_NEAR(model.sets[0].volume, 0.15, 1e-15);
    EXPECT_NEAR(model.sets[1].volume, 2 * 0.04 * pi / 4, 1e-15);
}

// Faults: a division by a direction of zero, or a line without a length, goes on into the search.
TEST(ClipFibres, LinesOutsideTheBoxAreReported) {
    const FibreSet good = MakeSet(kLineFibres, 0.1, {FibreThrough({{0, 0, 0}, {1, 1, 1}})});
    const Point outside[][2] = {{{0.2, -1, 0.5}, {0.8, -1, 0.5}}, // along a face
                                {{-2, 0.5, 0.5}, {-1, 0.5, 0.5}}, // ahead of a face, across it
                                {{-2, 0.2, 0.2}, {-1, 0.4, 0.4}}, // oblique: both ends come to one point
                                {{0.5, 0.5, 3}, {0.6, 0.6, 3}}};
    for (const auto& ends : outside) {
        FibreModel model = MakeModel(
            {good, MakeSet(kLineFibres, 0.1,
                           {FibreThrough({{0, 0, 0}, {1, 0, 0}}), FibreThrough({ends[0], ends[1]})})});
        const FibrePlace place = ClipFibresToBox(model, kUnitBox, kSpaceFibres);
        EXPECT_EQ(place.set, 2);
        EXPECT_EQ(place.fibre, 2);
    }
}

using Real = long double;

struct Candidate {
    Real distance = 1.0e10L;
    Real radius = -1.0L; // none yet
    int number = -1;
};

Real Dot(const Real (&a)[3], const Real (&b)[3]) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Real Norm(const Real (&a)[3]) {
    return std::sqrt(Dot(a, a));
}

Real ReferenceDistance(const FibreSet& set, const Fibre& fibre, const Point& X, Real R) {
    const double* p = fibre.points.data();
    Real v[3], a[3] = {};
    for (std::size_t k = 0; k < 3; ++k) {
        v[k] = static_cast<Real>(X[k]) - p[k];
        if (set.NTYPE == kLineFibres)
            a[k] = static_cast<Real>(p[3 + k]) - p[k];
    }
    const Real toFirst = Norm(v);
    if (set.NTYPE == kSphereFibres)
        return toFirst;
    const Real length = Norm(a), s = Dot(v, a) / length;
    const Real foot[3] = {v[0] - s * a[0] / length, v[1] - s * a[1] / length, v[2] - s * a[2] / length};
    const Real last[3] = {v[0] - a[0], v[1] - a[1], v[2] - a[2]};
    const Real h = Norm(foot), toLast = Norm(last);
    if (s < 0.0L)
        return R <= h ? R + toFirst : R - s;
    if (s > length)
        return fibre.NPOINTS > 2 ? toLast : R <= h ? R + toLast : R + s - length;
    return h;
}

bool ReferenceSees(const FibreSet& set, const Point& X) {
    for (std::size_t k = 0; k < 3; ++k)
        if (X[k] < set.low[k] - set.DIAM / 2 || X[k] > set.high[k] + set.DIAM / 2)
            return false;
    return true;
}

Candidate ReferenceSearch(const FibreModel& model, const Point& X) {
    Candidate best;
    int number = 0;
    for (const FibreSet& set : model.sets)
        for (const Fibre& fibre : set.fibres) {
            const Real own = static_cast<Real>(set.DIAM) / 2;
            const Real d = ReferenceDistance(set, fibre, X, best.number < 0 ? own : best.radius);
            if (ReferenceSees(set, X) && best.distance - d > 1.0e-10L)
                best = {d, own, number};
            ++number;
        }
    return best;
}

struct Random {
    std::mt19937 engine;
    double Between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(engine);
    }
    int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(engine); }
    Point In(double low, double high) { return {Between(low, high), Between(low, high), Between(low, high)}; }
};

Fibre RandomFibre(Random& random, double length) {
    const Point p = random.In(0.0, 1.0);
    const Point q = {p[0] + random.Between(-length, length), p[1] + random.Between(-length, length),
                     p[2] + random.Between(-length, length)};
    return random.Below(4) == 0 ? FibreThrough({p, q, random.In(0.0, 1.0)}) : FibreThrough({p, q});
}

FibreSet RandomSet(Random& random, int fibres, double length) {
    std::vector<Fibre> made;
    for (int i = 0; i < fibres; ++i)
        made.push_back(RandomFibre(random, length));
    FibreSet set =
        MakeSet(random.Below(3) == 0 ? kSphereFibres : kLineFibres, random.Between(0.01, 0.08), made);
    if (random.Below(2) == 0)
        for (int axis = 0; axis < 3; ++axis) {
            set.low[axis] = random.Between(0.0, 0.3);
            set.high[axis] = random.Between(0.6, 1.0);
        }
    return set;
}

void ExpectSameBits(const NearestFibre& plain, const NearestFibre& fast) {
    EXPECT_EQ(plain.fibre, fast.fibre);
    EXPECT_EQ(std::memcmp(&plain.distance, &fast.distance, sizeof plain.distance), 0);
    EXPECT_EQ(plain.radius, fast.radius);
}

// Whether the finest cells list only a part of the fibres, so that a comparison of the two searches says something.
void ExpectShortLists(const FibreSearch& search) {
    const FibreCells& finest = search.divisions.back();
    EXPECT_LT(2 * finest.listed.size(), search.fibres.size() * finest.reach.size());
}

// Faults: a wrong branch past an end, its radius taken from the fibre in hand, a set seen outside its box, a later fibre
// of the same distance preferred.
TEST(FibreSearch, TenThousandPointsAgainstAnotherCalculation) {
    Random random{std::mt19937(11)};
    for (int round = 0; round < 100; ++round) {
        std::vector<FibreSet> sets;
        for (int s = 1 + random.Below(3); s > 0; --s)
            sets.push_back(RandomSet(random, 1 + random.Below(15), 0.4));
        const FibreModel model = MakeModel(sets);
        const FibreSearch search = SearchOfAllSets(model, 3, LineEnds::Count);
        for (int i = 0; i < 100; ++i) {
            const Point at = random.In(-0.1, 1.1);
            const NearestFibre found = SearchAllFibres(search, {at[0], at[1], at[2]});
            const Candidate expected = ReferenceSearch(model, at);
            EXPECT_EQ(found.fibre, expected.number);
            EXPECT_EQ(found.radius, static_cast<double>(std::max(expected.radius, 0.0L)));
            EXPECT_NEAR(found.distance, static_cast<double>(expected.distance), 1e-12);
        }
    }
}

// One line from (0,0,0) to (1,0,0) of radius 0.1. Faults: a tolerance of the ends that is
// left out; a point of a fibre with more than two points treated like one with two.
TEST(FibreSearch, PointsAtAndPastEnds) {
    FibreModel model = MakeModel({MakeSet(kLineFibres, 0.2, {FibreThrough({{0, 0, 0}, {1, 0, 0}})})});
    const FibreSearch line = SearchOfAllSets(model, 3, LineEnds::Count);
    // At the end itself and within the tolerance ahead of it the foot lies on the line.
    EXPECT_EQ(WallDistance(SearchAllFibres(line, {1.0, 0.4, 0.0})), 0.4 - 0.1);
    EXPECT_EQ(WallDistance(SearchAllFibres(line, {-0.9e-10, 0.4, 0.0})), 0.4 - 0.1);
    EXPECT_NEAR(WallDistance(SearchAllFibres(line, {-1.1e-10, 0.4, 0.0})), 0.4, 1e-9);
    // On the wall.
    EXPECT_LE(WallDistance(SearchAllFibres(line, {0.5, 0.0, 0.1})), kDistanceTolerance);
    model.sets[0].fibres[0] = FibreThrough({{0, 0, 0}, {1, 0, 0}, {1, 5, 5}});
    const FibreSearch more = SearchOfAllSets(model, 3, LineEnds::Count);
    EXPECT_NEAR(WallDistance(SearchAllFibres(more, {1.3, 0.4, 0.0})), 0.5 - 0.1, 1e-15);
    EXPECT_NEAR(WallDistance(SearchAllFibres(more, {-0.3, 0.4, 0.0})), 0.5, 1e-15);
}

// Faults: bounds of the box taken exclusively or not grown; the nearer fibre of a box that does not hold the point; a fibre
// that is nearer by less than 1e-10 replaces the first one, or one nearer by more does not.
TEST(FibreSearch, BoxFacesBelongToTheBoxAndTheFirstOfEqualFibresStays) {
    FibreSet near = MakeSet(kSphereFibres, 0.5, {FibreThrough({{2, 0, 0}})});
    near.low[0] = 1.0;
    near.high[0] = 3.0;
    const FibreSet far = MakeSet(kSphereFibres, 0.1, {FibreThrough({{-5, 0, 0}})});
    const FibreSearch search = SearchOfAllSets(MakeModel({near, far}), 3, LineEnds::Count);
    for (const auto& [x, fibre] : {std::pair{0.75, 0}, {3.25, 0}, {0.7499999, 1}, {3.2500001, 1}, {11.0, -1}})
        EXPECT_EQ(SearchAllFibres(search, {x, 0, 0}).fibre, fibre) << x;
    for (const double nearer : {0.9e-10, 1.1e-10}) {
        const FibreModel model = MakeModel({MakeSet(
            kSphereFibres, 0.1, {FibreThrough({{1.0, 0, 0}}), FibreThrough({{-1.0 + nearer, 0, 0}})})});
        const NearestFibre found = SearchAllFibres(SearchOfAllSets(model, 3, LineEnds::Count), {0, 0, 0});
        EXPECT_EQ(found.fibre, nearer < 1.0e-10 ? 0 : 1);
    }
}

/// The full visit and the one by cells at `count` points of a region.
template <class At>
void ExpectSameSearches(FibreSearch& search, const Point& region, int most, int count, const At& at) {
    MakeFibreCells(search, {0, 0, 0}, {region[0], region[1], region[2]}, most);
    ASSERT_FALSE(search.divisions.empty());
    for (int i = 0; i < count; ++i) {
        const Point place = at();
        const double X[3] = {place[0], place[1], place[2]};
        ExpectSameBits(SearchAllFibres(search, X), SearchNearestFibre(search, X));
    }
}

// Faults of the cells: a fibre missing from a list, a reach too far, a state of the full visit guessed. The search of one set
// has endless lines and a tolerance of any size; in the plane z does not count.
TEST(FibreSearch, CellsGiveTheSameBitsInRandomModels) {
    Random random{std::mt19937(12)};
    for (int round = 0; round < 12; ++round) {
        std::vector<FibreSet> sets;
        for (int s = 1 + round % 4; s > 0; --s)
            sets.push_back(RandomSet(random, 60 + random.Below(100), round % 3 == 0 ? 1.0 : 0.1));
        FibreSearch search = SearchOfAllSets(MakeModel(sets), 3, LineEnds::Count);
        ExpectSameSearches(search, {1, 1, round % 2 == 0 ? 1.0 : 0.2}, 20000, 2000,
                           [&] { return random.In(-0.1, 1.1); });
        ExpectShortLists(search);
    }
    for (const double tolerance : {1e-12, 1e-3, 0.2})
        for (const int dimension : {2, 3}) {
            const double depth = dimension == 2 ? 0.0 : 1.0;
            const FibreModel model = MakeModel({RandomSet(random, 200, 0.2), RandomSet(random, 200, 0.2)});
            FibreSearch search = SearchOfOneSet(model, 2, dimension, tolerance);
            ExpectSameSearches(search, {1, 1, depth}, 100000, 1000, [&] {
                const Point at = random.In(0.0, 1.0);
                return Point{at[0], at[1], depth * at[2]};
            });
        }
}

// Fibres on a lattice and points on its symmetry planes: ties everywhere, and chains of distances that differ by parts
// of the tolerance, where the order of the visits decides.
TEST(FibreSearch, CellsGiveTheSameBitsAmongTies) {
    Random random{std::mt19937(13)};
    for (int round = 0; round < 8; ++round) {
        std::vector<FibreSet> sets;
        for (int s = 0; s < 1 + round % 3; ++s) {
            std::vector<Fibre> fibres;
            for (int i = 0; i < 144; ++i) {
                const double shift = 0.3e-10 * random.Below(8);
                const double x = 0.125 * (i % 12) - 0.25 + shift, y = 0.125 * (i / 12) - 0.25;
                fibres.push_back(FibreThrough({{x, y, round % 2 == 0 ? -1.0 : 0.25}, {x, y, 0.75 + shift}}));
            }
            std::shuffle(fibres.begin(), fibres.end(), random.engine);
            sets.push_back(MakeSet(kLineFibres, 0.02 * (1 + s), fibres));
        }
        FibreSearch search = SearchOfAllSets(MakeModel(sets), 3, LineEnds::Count);
        ExpectSameSearches(search, {1, 1, 1}, 50000, 2000, [&] {
            return Point{random.Below(17) / 16.0, random.Below(17) / 16.0, random.Below(17) / 16.0};
        });
        ExpectShortLists(search);
    }
}

// Faults: an index made of a coordinate that is no number or lies far outside; a division that was given up, its lists being
// too long, and is used all the same.
TEST(FibreSearch, StrangePointsAndRegions) {
    Random random{std::mt19937(15)};
    FibreSearch search = SearchOfAllSets(MakeModel({RandomSet(random, 100, 0.2)}), 3, LineEnds::Count);
    MakeFibreCells(search, {0, 0, 0}, {1, 1, 1}, 1000);
    for (const double x : {-1e300, 1e300, 1.0, 0.0, HUGE_VAL, std::nan("")})
        ExpectSameBits(SearchAllFibres(search, {x, 0.5, 0.5}), SearchNearestFibre(search, {x, 0.5, 0.5}));
    for (const Point& region : {Point{1, 1, -1}, {1, 0, 1}}) {
        MakeFibreCells(search, {0, 0, 0}, {region[0], region[1], region[2]}, 1000);
        EXPECT_TRUE(search.divisions.empty());
    }
    FibreSearch alike = SearchOfAllSets(
        MakeModel({MakeSet(kSphereFibres, 0.1, std::vector<Fibre>(200, FibreThrough({{0.5, 0.5, 0.5}})))}), 3,
        LineEnds::Count);
    MakeFibreCells(alike, {0, 0, 0}, {1, 1, 1}, 1 << 18);
    EXPECT_EQ(alike.divisions.size(), 5U);
    for (const FibreCells& cells : alike.divisions)
        ASSERT_EQ(cells.start.size(), 1U + cells.divisions[0] * cells.divisions[1] * cells.divisions[2]);
    const FibreCells& finest = alike.divisions.back(); // every cell ends where the next one begins
    for (int i = 0; i < finest.divisions[0]; ++i)
        for (const double part : {1e-6, 1.0 - 1e-6})
            EXPECT_EQ(CellOf(finest, {(i + part) / finest.divisions[0], 0.0, 0.0}), i) << part;
    const FibreSearch none = EmptySearch();
    EXPECT_EQ(SearchNearestFibre(none, {0.5, 0.5, 0.5}).fibre, -1);
}

} // namespace
} // namespace zurt
