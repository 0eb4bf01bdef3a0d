#include "geometry/jacobian.h"

#include "core/vector.h"
#include "geometry/invert_matrix.h"

#include <cmath>

namespace zurt {

namespace {

// XJ(d, c) = sum over the nodes, in their order, of HR(k, d) * CORE(c, k).
template <int Family>
inline void FormJacobian(const ShapeValues<Family>& shape, const NodeCoordinates<Family>& CORE, int ND,
                         JacobianValues<Family>& out) {
    constexpr int columns = kJacobianColumns<Family>;
    double sum[kDimension<Family>][columns] = {};
    for (int k = 0; k < ND; ++k)
        for (int d = 0; d < kDimension<Family>; ++d)
            for (int c = 0; c < columns; ++c)
                sum[d][c] += shape.HR[d][k] * CORE[c][k];
    for (int d = 0; d < kDimension<Family>; ++d)
        for (int c = 0; c < columns; ++c)
            out.XJ[d][c] = sum[d][c];
}

// HX(k, c) = sum over d of inverse(c, d) * HR(k, d).
template <int Family>
inline void FormGlobalDerivatives(const ShapeValues<Family>& shape, int ND, JacobianValues<Family>& out) {
    for (int c = 0; c < kDimension<Family>; ++c) {
        double factor[kDimension<Family>];
        for (int d = 0; d < kDimension<Family>; ++d)
            factor[d] = out.inverse[c][d];
        for (int k = 0; k < ND; ++k) {
            double sum = factor[0] * shape.HR[0][k];
            for (int d = 1; d < kDimension<Family>; ++d)
                sum += factor[d] * shape.HR[d][k];
            out.HX[c][k] = sum;
        }
    }
}

// DET, the inverse of XJ and HX, from XJ.
template <int Family>
inline void InvertJacobian(const ShapeValues<Family>& shape, int ND, JacobianValues<Family>& out) {
    if constexpr (kDimension<Family> == 1) {
        out.DET = VectorLength(out.XJ[0]);
        out.inverse[0][0] = 1.0 / out.DET;
    } else {
        for (int d = 0; d < kDimension<Family>; ++d)
            for (int c = 0; c < kDimension<Family>; ++c)
                out.inverse[d][c] = out.XJ[d][c];
        InvertMatrix(out.inverse, out.DET);
    }
    FormGlobalDerivatives(shape, ND, out);
}

template <int Family>
inline void FormVolumePoint(const ShapeValues<Family>& shape, const NodeCoordinates<Family>& CORE, int ND,
                            JacobianValues<Family>& out) {
    FormJacobian(shape, CORE, ND, out);
    InvertJacobian(shape, ND, out);
}

// The natural direction, from 0, that KFIX holds fixed.
int FixedDirection(int KFIX, int dimension) {
    return KFIX >= 1 && KFIX <= dimension ? KFIX - 1 : 0;
}

} // namespace

template <int Family>
bool JacobianVolume(const ShapeValues<Family>& shape, const NodeCoordinates<Family>& CORE, std::int32_t ND,
                    JacobianValues<Family>& out) {
    // The element without mid-side nodes is the common one: a count known beforehand lets its loops be unrolled.
    if (ND == kCorners<Family>)
        FormVolumePoint(shape, CORE, kCorners<Family>, out);
    else
        FormVolumePoint(shape, CORE, ND, out);
    return out.DET > kSmallestJacobian;
}

template <int Family>
bool JacobianSide(const ShapeValues<Family>& shape, const NodeCoordinates<Family>& CORE, std::int32_t ND,
                  std::int32_t KFIX, [[maybe_unused]] std::int32_t NDS, JacobianValues<Family>& out) {
    FormJacobian(shape, CORE, ND, out);
    [[maybe_unused]] const int fixed = FixedDirection(KFIX, kDimension<Family>);
    if constexpr (kDimension<Family> == 1) {
        out.DETS = 1.0;
    } else if constexpr (kDimension<Family> == 2) {
        const double(&tangent)[2] = out.XJ[1 - fixed];
        out.DETS = std::sqrt(tangent[0] * tangent[0] + tangent[1] * tangent[1]);
    } else {
        double normal[3];
        VectorCross(out.XJ[fixed == 0 ? 1 : 0], out.XJ[fixed == 2 ? 1 : 2], normal);
        out.DETS = VectorLength(normal);
        if (out.DETS > kSmallestJacobian && NDS != 0) {
            InvertJacobian(shape, ND, out);
            for (int c = 0; c < 3; ++c)
                out.VN[c] = normal[c] / out.DETS;
        }
    }
    return out.DETS > kSmallestJacobian;
}

#define ZURT_JACOBIAN(FAMILY)                                                                                \
    template bool JacobianVolume(const ShapeValues<FAMILY>&, const NodeCoordinates<FAMILY>&, std::int32_t,   \
                                 JacobianValues<FAMILY>&);                                                   \
    template bool JacobianSide(const ShapeValues<FAMILY>&, const NodeCoordinates<FAMILY>&, std::int32_t,     \
                               std::int32_t, std::int32_t, JacobianValues<FAMILY>&);
ZURT_FOR_ALL_FAMILIES(ZURT_JACOBIAN)
#undef ZURT_JACOBIAN

} // namespace zurt
