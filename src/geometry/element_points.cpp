#include "geometry/element_points.h"

#include <algorithm>

namespace zurt {

namespace {

// The next point of the rule in `number` (from 1 in each direction), the last direction running fastest; false behind the
// last point.
template <int Dimension> bool NextPoint(const std::int32_t* orders, std::int32_t (&number)[Dimension]) {
    for (int d = Dimension - 1; d >= 0; --d) {
        if (++number[d] <= orders[d])
            return true;
        number[d] = 1;
    }
    return false;
}

} // namespace

template <int Dimension>
void SetElementPoints(const ActiveNodes& active, const std::int32_t* orders,
                      ElementPoints<Dimension>& points) {
    points.active = active;
    points.count = 0;
    std::int32_t number[Dimension];
    std::fill(number, number + Dimension, 1);
    do {
        ElementPoint<Dimension>& point = points.point[points.count++];
        point.weight = 1.0;
        for (int d = 0; d < Dimension; ++d) {
            point.place[d] = XG(orders[d], number[d]);
            point.weight *= WGT(orders[d], number[d]);
        }
        ShapeFunctionsAt(point.place, active, point.shape);
    } while (NextPoint(orders, number));
}

template void SetElementPoints(const ActiveNodes&, const std::int32_t*, ElementPoints<1>&);
template void SetElementPoints(const ActiveNodes&, const std::int32_t*, ElementPoints<2>&);
template void SetElementPoints(const ActiveNodes&, const std::int32_t*, ElementPoints<3>&);

bool ServesNodes(const ActiveNodes& table, const ActiveNodes& active) {
    return table.ND == active.ND &&
           std::equal(active.midSide, active.midSide + active.midSideCount, table.midSide);
}

} // namespace zurt
