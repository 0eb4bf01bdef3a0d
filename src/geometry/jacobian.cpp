#include "geometry/jacobian.h"

#include "core/vector.h"
#include "geometry/invert_matrix.h"

#include <cmath>

namespace zurt {

namespace {

// XJ(d, c) = sum over the nodes, in their order, of HR(k, d) * CORE(c, k).
template <int Dimension>
inline void FormJacobian(const ShapeValues<Dimension>& shape, const NodeCoordinates<Dimension>& CORE, int ND,
                         JacobianValues<Dimension>& out) {
    constexpr int columns = kJacobianColumns<Dimension>;
    double sum[Dimension][columns] = {};
    for (int k = 0; k < ND; ++k)
        for (int d = 0; d < Dimension; ++d)
            for (int c = 0; c < columns; ++c)
                sum[d][c] += shape.HR[d][k] * CORE[c][k];
    for (int d = 0; d < Dimension; ++d)
        for (int c = 0; c < columns; ++c)
            out.XJ[d][c] = sum[d][c];
}

// HX(k, c) = sum over d of inverse(c, d) * HR(k, d).
template <int Dimension>
inline void FormGlobalDerivatives(const ShapeValues<Dimension>& shape, int ND,
                                  JacobianValues<Dimension>& out) {
    for (int c = 0; c < Dimension; ++c) {
        double factor[Dimension];
        for (int d = 0; d < Dimension; ++d)
            factor[d] = out.inverse[c][d];
        for (int k = 0; k < ND; ++k) {
            double sum = factor[0] * shape.HR[0][k];
            for (int d = 1; d < Dimension; ++d)
                sum += factor[d] * shape.HR[d][k];
            out.HX[c][k] = sum;
        }
    }
}

// DET, the inverse of XJ and HX, from XJ.
template <int Dimension>
inline void InvertJacobian(const ShapeValues<Dimension>& shape, int ND, JacobianValues<Dimension>& out) {
    if constexpr (Dimension == 1) {
        out.DET = VectorLength(out.XJ[0]);
        out.inverse[0][0] = 1.0 / out.DET;
    } else {
        for (int d = 0; d < Dimension; ++d)
            for (int c = 0; c < Dimension; ++c)
                out.inverse[d][c] = out.XJ[d][c];
        InvertMatrix(out.inverse, out.DET);
    }
    FormGlobalDerivatives(shape, ND, out);
}

template <int Dimension>
inline void FormVolumePoint(const ShapeValues<Dimension>& shape, const NodeCoordinates<Dimension>& CORE,
                            int ND, JacobianValues<Dimension>& out) {
    FormJacobian(shape, CORE, ND, out);
    InvertJacobian(shape, ND, out);
}

// The natural direction, from 0, that KFIX holds fixed.
int FixedDirection(int KFIX, int dimension) {
    return KFIX >= 1 && KFIX <= dimension ? KFIX - 1 : 0;
}

} // namespace

template <int Dimension>
bool JacobianVolume(const ShapeValues<Dimension>& shape, const NodeCoordinates<Dimension>& CORE,
                    std::int32_t ND, JacobianValues<Dimension>& out) {
    // The element without mid-side nodes is the common one: a count known beforehand lets its loops be unrolled.
    if (ND == kCorners<Dimension>)
        FormVolumePoint(shape, CORE, kCorners<Dimension>, out);
    else
        FormVolumePoint(shape, CORE, ND, out);
    return out.DET > kSmallestJacobian;
}

template bool JacobianVolume(const ShapeValues<1>&, const NodeCoordinates<1>&, std::int32_t,
                             JacobianValues<1>&);
template bool JacobianVolume(const ShapeValues<2>&, const NodeCoordinates<2>&, std::int32_t,
                             JacobianValues<2>&);
template bool JacobianVolume(const ShapeValues<3>&, const NodeCoordinates<3>&, std::int32_t,
                             JacobianValues<3>&);

bool JacobianEdge2D(const ShapeValues<2>& shape, const NodeCoordinates<2>& CORE, std::int32_t ND,
                    std::int32_t KFIX, JacobianValues<2>& out) {
    FormJacobian(shape, CORE, ND, out);
    const double(&tangent)[2] = out.XJ[1 - FixedDirection(KFIX, 2)];
    out.DETS = std::sqrt(tangent[0] * tangent[0] + tangent[1] * tangent[1]);
    return out.DETS > kSmallestJacobian;
}

bool JacobianFace3D(const ShapeValues<3>& shape, const NodeCoordinates<3>& CORE, std::int32_t ND,
                    std::int32_t KFIX, std::int32_t NDS, JacobianValues<3>& out) {
    FormJacobian(shape, CORE, ND, out);
    const int fixed = FixedDirection(KFIX, 3);
    double normal[3];
    VectorCross(out.XJ[fixed == 0 ? 1 : 0], out.XJ[fixed == 2 ? 1 : 2], normal);
    out.DETS = VectorLength(normal);
    if (!(out.DETS > kSmallestJacobian))
        return false;
    if (NDS != 0) {
        InvertJacobian(shape, ND, out);
        for (int c = 0; c < 3; ++c)
            out.VN[c] = normal[c] / out.DETS;
    }
    return true;
}

bool ShapeAndJacobian3D(double r, double s, double t, std::int32_t KFIX, std::int32_t NDS,
                        const ActiveNodes& active, const NodeCoordinates<3>& CORE, ShapeValues<3>& shape,
                        JacobianValues<3>& out) {
    ShapeFunctions3D(r, s, t, active, shape);
    if (KFIX < 1)
        return JacobianVolume(shape, CORE, active.ND, out);
    return JacobianFace3D(shape, CORE, active.ND, KFIX, NDS, out);
}

bool ShapeAndJacobian2D(double r, double s, std::int32_t KFIX, const ActiveNodes& active,
                        const NodeCoordinates<2>& CORE, ShapeValues<2>& shape, JacobianValues<2>& out) {
    ShapeFunctions2D(r, s, active, shape);
    if (KFIX < 1)
        return JacobianVolume(shape, CORE, active.ND, out);
    return JacobianEdge2D(shape, CORE, active.ND, KFIX, out);
}

bool ShapeAndJacobian1D(double r, const ActiveNodes& active, const NodeCoordinates<1>& CORE,
                        ShapeValues<1>& shape, JacobianValues<1>& out) {
    ShapeFunctions1D(r, active, shape);
    return JacobianVolume(shape, CORE, active.ND, out);
}

} // namespace zurt
