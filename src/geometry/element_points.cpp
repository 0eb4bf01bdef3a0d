#include "geometry/element_points.h"

#include <algorithm>

namespace zurt {

namespace {

// The next point of the rule in `number` (from 1 in each direction), the last direction running fastest; false behind the
// last point.
template <int Family> bool NextPoint(const std::int32_t* orders, std::int32_t (&number)[kDimension<Family>]) {
    for (int d = kDimension<Family> - 1; d >= 0; --d) {
        if (++number[d] <= orders[d])
            return true;
        number[d] = 1;
    }
    return false;
}

} // namespace

template <int Family>
void SetElementPoints(const ActiveNodes& active, const std::int32_t* orders, ElementPoints<Family>& points) {
    points.active = active;
    points.count = 0;
    std::int32_t number[kDimension<Family>];
    std::fill(number, number + kDimension<Family>, 1);
    do {
        ElementPoint<Family>& point = points.point[points.count++];
        point.weight = 1.0;
        for (int d = 0; d < kDimension<Family>; ++d) {
            point.place[d] = XG(orders[d], number[d]);
            point.weight *= WGT(orders[d], number[d]);
        }
        ShapeFunctionsAt(point.place, active, point.shape);
    } while (NextPoint<Family>(orders, number));
}

#define ZURT_ELEMENT_POINTS(FAMILY)                                                                          \
    template void SetElementPoints(const ActiveNodes&, const std::int32_t*, ElementPoints<FAMILY>&);
ZURT_FOR_ALL_FAMILIES(ZURT_ELEMENT_POINTS)
#undef ZURT_ELEMENT_POINTS

bool ServesNodes(const ActiveNodes& table, const ActiveNodes& active) {
    return table.ND == active.ND &&
           std::equal(active.midSide, active.midSide + active.midSideCount, table.midSide);
}

} // namespace zurt
