#include "elements/radial/radial_kernel.h"

#include "run/element_group.h"
#include "solver/skyline_assembly.h"
#include "solver/skyline_solve.h"

namespace zurt {

namespace {

constexpr double kTwoPi = 6.283185307179586;

// The system of the inner nodes: each couples with its neighbours alone.
struct InnerSystem {
    double store[2 * kMaxSubElements - 1] = {};
    double right[kMaxSubElements] = {};
    std::int32_t pointers[kMaxSubElements + 1];
};

// The diagonal of column i stands at 1, 2, 4, 6 ...
void SetPointers(InnerSystem& system, int count) {
    system.pointers[0] = 1;
    for (int i = 1; i <= count; ++i)
        system.pointers[i] = 2 * i;
}

void AddRings(const RadialScales& scales, ConstRealArray c, ConstRealArray c0, InnerSystem& system) {
    const RealArray store(system.store, 2 * scales.count - 1), right(system.right, scales.count);
    const ConstIntArray MAXA(system.pointers, scales.count + 1);
    double r = 0.0;
    for (int i = 1; i <= scales.count; ++i, r += scales.dr) {
        const RadialRing ring = RingAt(scales, r);
        double S[3], F[2];
        RingMatrix(ring, S);
        RingLoad(ring, &c(i), &c0(i), F);
        const std::int32_t LM[2] = {i, i < scales.count ? i + 1 : 0}; // the surface has no equation
        SkylineAddElement(store, MAXA, right, ConstRealArray(S, 3), ConstRealArray(F, 2),
                          ConstIntArray(LM, 2), 2, 1);
    }
}

} // namespace

RadialScales ScalesOfFibre(double D, double length, double radius, int count, bool transient, double dt) {
    RadialScales scales;
    scales.count = count;
    scales.dr = radius / count;
    scales.cK = kTwoPi * length * D / scales.dr;
    scales.cC = transient ? (kTwoPi / dt) * length * scales.dr : 0.0;
    return scales;
}

RadialRing RingAt(const RadialScales& scales, double r) {
    RadialRing ring;
    ring.k = scales.cK * (r + scales.dr / 2.0);
    ring.C11 = scales.cC * (scales.dr / 12.0 + r / 3.0);
    ring.C12 = scales.cC * (scales.dr / 12.0 + r / 6.0);
    ring.C22 = scales.cC * (scales.dr / 4.0 + r / 3.0);
    return ring;
}

void RingLoad(const RadialRing& ring, const double c[2], const double c0[2], double F[2]) {
    const double change[2] = {c[0] - c0[0], c[1] - c0[1]};
    F[0] = -(ring.k * c[0] + ring.C11 * change[0] + (-ring.k * c[1] + ring.C12 * change[1]));
    F[1] = -(-ring.k * c[0] + ring.C12 * change[0] + (ring.k * c[1] + ring.C22 * change[1]));
}

void RingMatrix(const RadialRing& ring, double S[3]) {
    S[0] = ring.k + ring.C11;
    S[1] = -ring.k + ring.C12;
    S[2] = ring.k + ring.C22;
}

double SolveFibre(const RadialScales& scales, RealArray c, ConstRealArray c0, TextUnit& listing) {
    const int n = scales.count;
    InnerSystem system;
    SetPointers(system, n);
    AddRings(scales, c, c0, system);
    const RealArray store(system.store, 2 * n - 1), right(system.right, n);
    const ConstIntArray MAXA(system.pointers, n + 1);
    Workers alone; // for a few rings
    SkylineSolve(store, right, MAXA, n, 2 * n - 1, kFactorMode, listing, alone);
    SkylineSolve(store, right, MAXA, n, 2 * n - 1, kSubstituteMode, listing, alone);
    for (int i = 1; i <= n; ++i)
        c(i) += right(i);
    // Equilibrium leaves no load at the inner nodes; what is left is that of the outermost ring at the surface.
    double r = 0.0;
    for (int i = 1; i < n; ++i)
        r += scales.dr;
    double F[2];
    RingLoad(RingAt(scales, r), &c(n), &c0(n), F);
    return F[1];
}

} // namespace zurt
