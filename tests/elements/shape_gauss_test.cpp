#include "elements/gauss_rules.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace zurt {
namespace {

struct Rule {
    std::vector<double> abscissae; // the ones above 0, descending, then 0 for odd orders
    std::vector<double> weights;
};

// Closed forms (Abramowitz and Stegun 1964, 25.4.29).
Rule ExactRule(int order) {
    const double r65 = std::sqrt(6.0 / 5.0), r30 = std::sqrt(30.0);
    const double r107 = std::sqrt(10.0 / 7.0), r70 = std::sqrt(70.0);
    switch (order) {
    case 1:
        return {{0.0}, {2.0}};
    case 2:
        return {{std::sqrt(1.0 / 3.0)}, {1.0}};
    case 3:
        return {{std::sqrt(0.6), 0.0}, {5.0 / 9.0, 8.0 / 9.0}};
    case 4:
        return {{std::sqrt((3.0 + 2.0 * r65) / 7.0), std::sqrt((3.0 - 2.0 * r65) / 7.0)},
                {(18.0 - r30) / 36.0, (18.0 + r30) / 36.0}};
    default:
        return {{std::sqrt(5.0 + 2.0 * r107) / 3.0, std::sqrt(5.0 - 2.0 * r107) / 3.0, 0.0},
                {(322.0 - 13.0 * r70) / 900.0, (322.0 + 13.0 * r70) / 900.0, 128.0 / 225.0}};
    }
}

double Widened(double exact) {
    return static_cast<double>(static_cast<float>(exact));
}

// Faults: a digit lost or "improved" to double precision, an offset of one order pointing into another.
TEST(GaussRules, AreTheClosedFormsRoundedToSinglePrecision) {
    for (int order = 1; order <= kMaxGaussOrder; ++order) {
        const Rule exact = ExactRule(order);
        for (int k = 1; k <= (order + 1) / 2; ++k) {
            EXPECT_EQ(XG(order, k), -Widened(exact.abscissae[k - 1])) << order << " " << k;
            EXPECT_EQ(XG(order, order + 1 - k), Widened(exact.abscissae[k - 1])) << order << " " << k;
            EXPECT_EQ(WGT(order, k), Widened(exact.weights[k - 1])) << order << " " << k;
            EXPECT_EQ(WGT(order, order + 1 - k), Widened(exact.weights[k - 1])) << order << " " << k;
        }
    }
    // What single precision leaves of them, so that the rounding itself is held fast.
    EXPECT_EQ(XG(2, 2), 0.5773502588272095);
    EXPECT_EQ(WGT(3, 1), 0.5555555820465088);
}

} // namespace
} // namespace zurt
