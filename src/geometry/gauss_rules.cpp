#include "geometry/gauss_rules.h"

#include "core/widened_constants.h"

namespace zurt::gauss_tables {

// clang-format off
constexpr double kAbscissae[kLength] = {
    0.0,
    -0.5773502588272095, 0.5773502588272095,
    -0.7745966911315918, 0.0, 0.7745966911315918,
    -0.8611363172531128, -0.3399810492992401, 0.3399810492992401, 0.8611363172531128,
    -0.9061798453330994, -0.5384693145751953, 0.0, 0.5384693145751953, 0.9061798453330994};

constexpr double kWeights[kLength] = {
    2.0,
    1.0, 1.0,
    0.5555555820465088, 0.8888888955116272, 0.5555555820465088,
    0.3478548526763916, 0.6521451473236084, 0.6521451473236084, 0.3478548526763916,
    0.2369268834590912, 0.47862866520881653, 0.5688889026641846, 0.47862866520881653, 0.2369268834590912};
// clang-format on

namespace {

// The points of positive abscissa of each order, from the largest on, in the digits of the literature.
struct Point {
    float abscissa, weight;
};
constexpr Point kPoints[] = {
    {0.0F, 2.0F},
    {0.5773502691896258F, 1.0F},
    {0.7745966692414834F, 0.5555555555555556F},
    {0.0F, 0.8888888888888889F},
    {0.8611363115940526F, 0.3478548451374538F},
    {0.3399810435848563F, 0.6521451548625461F},
    {0.9061798459386640F, 0.2369268850561891F},
    {0.5384693101056831F, 0.4786286704993665F},
    {0.0F, 0.5688888888888889F},
};

// The tables hold single-precision numbers, symmetric about 0.
constexpr bool TablesAreWidened() {
    int p = 0;
    for (std::int32_t order = 1; order <= kMaxGaussOrder; ++order)
        for (std::int32_t k = 0; k < (order + 1) / 2; ++k, ++p) {
            const std::int32_t low = kOffsets[order - 1] + k, high = kOffsets[order - 1] + order - 1 - k;
            const double X = Widened(kPoints[p].abscissa), w = Widened(kPoints[p].weight);
            if (kAbscissae[low] != -X || kAbscissae[high] != X || kWeights[low] != w || kWeights[high] != w)
                return false;
        }
    return true;
}
static_assert(TablesAreWidened());

} // namespace

} // namespace zurt::gauss_tables
