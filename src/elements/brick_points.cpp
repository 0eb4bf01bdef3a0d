#include "elements/brick_points.h"

#include <algorithm>

namespace zurt {

void SetBrickPoints(const ActiveNodes& active, const std::int32_t (&NGAUS)[3], BrickPoints& points) {
    points.active = active;
    points.count = 0;
    for (std::int32_t i = 1; i <= NGAUS[0]; ++i)
        for (std::int32_t j = 1; j <= NGAUS[1]; ++j)
            for (std::int32_t k = 1; k <= NGAUS[2]; ++k) {
                BrickPoint& point = points.point[points.count++];
                point.place[0] = XG(NGAUS[0], i);
                point.place[1] = XG(NGAUS[1], j);
                point.place[2] = XG(NGAUS[2], k);
                point.weight = WGT(NGAUS[0], i) * WGT(NGAUS[1], j) * WGT(NGAUS[2], k);
                ShapeFunctions3D(point.place[0], point.place[1], point.place[2], active, point.shape);
            }
}

bool ServesNodes(const BrickPoints& points, const ActiveNodes& active) {
    return points.active.ND == active.ND &&
           std::equal(active.midSide, active.midSide + active.midSideCount, points.active.midSide);
}

} // namespace zurt
