// Gauss-Legendre rules on (-1, 1), orders 1 to 5.
//
// Abscissae and weights are single-precision numbers widened to double precision; results are required to carry
// these values, so they must not be "improved". Called by the Gauss loops of all isoparametric families.
#pragma once

#include "core/array_view.h"

#include <cstdint>

namespace zurt {

/// The largest order in the tables. No card checks its order by itself, so a reader refuses what lies above.
constexpr std::int32_t kMaxGaussOrder = 5;

/// Orders of the rule of the fluxes in each direction.
constexpr std::int32_t kFluxOrders[3] = {2, 2, 2};

/// The order of a rule as a card means it: 0 becomes 2. A negative order stands for a rule without points.
constexpr std::int32_t GaussOrderOfCard(std::int32_t order) {
    return order == 0 ? 2 : order;
}

namespace gauss_tables {

// Where the run of each order begins.
constexpr std::int32_t kOffsets[kMaxGaussOrder] = {0, 1, 3, 6, 10};
constexpr Word kLength = 15;
extern const double kAbscissae[kLength];
extern const double kWeights[kLength];

inline Word Place(std::int32_t order, std::int32_t k) {
    return ConstIntArray(kOffsets, kMaxGaussOrder)(order) + k;
}

} // namespace gauss_tables

/// Abscissa k = 1..order of the rule of `order` = 1..5 points, ascending.
inline double XG(std::int32_t order, std::int32_t k) {
    return ConstRealArray(gauss_tables::kAbscissae, gauss_tables::kLength)(gauss_tables::Place(order, k));
}

/// Weight k = 1..order of the rule of `order` = 1..5 points.
inline double WGT(std::int32_t order, std::int32_t k) {
    return ConstRealArray(gauss_tables::kWeights, gauss_tables::kLength)(gauss_tables::Place(order, k));
}

} // namespace zurt
