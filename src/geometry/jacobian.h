// Jacobian, global derivatives and surface scale of the isoparametric families at one point.
//
// The shape values of the point come from geometry/shape_functions.h, either made for the point (ShapeAndJacobian3D
// and its like) or kept in a table by a Gauss loop (JacobianVolume and its like); both ways give the same bits. CORE
// holds the coordinates of the element's active nodes in compressed order, one row for x, y and z, in the mesh's
// unit of length; the plane family reads x and y alone, the line lies in space and reads all three.
// Every function returns whether the point is sound. When it is not, the caller ends the run with the message of
// geometry/element_walk.h (StopOnJacobian). A determinant that is not a number never counts as sound.
#pragma once

#include "geometry/shape_functions.h"

#include <cstdint>

namespace zurt {

/// Determinants and surface scales must lie above this. Note the unit: the limit is absolute, so a sound element
/// in a very small unit of length is refused like an inverted one.
constexpr double kSmallestJacobian = 1.0e-15;

/// Columns of the Jacobian: the line's one row is a tangent in space, the other matrices are square.
template <int Family> constexpr int kJacobianColumns = kDimension<Family> == 2 ? 2 : 3;

/// Coordinates of the active nodes, rows x, y, z; columns as in ShapeValues.
template <int Family> using NodeCoordinates = double[3][kMaxNodes<Family>];

/// Results at one point; columns of HX as in ShapeValues. Each function below says which fields it sets.
template <int Family> struct JacobianValues {
    double HX[kDimension<Family>][kMaxNodes<Family>]; // derivatives by x, y, z; by arc length for the line
    double XJ[kDimension<Family>]
             [kJacobianColumns<Family>]; // XJ[d][c]: derivative of coordinate c by natural direction d
    double inverse[kDimension<Family>][kDimension<Family>]; // of XJ, [c][d]; for the line 1 over its length
    double DET;   // determinant of XJ; for the line the length of its row
    double DETS;  // surface scale: area of a face, length of an edge
    double VN[3]; // unit normal of a face, its sign that of the crossed rows
};

/// Volume point (for the plane family an area, for the line a length): sets XJ, DET, the inverse and HX; the last
/// two are of use only if the point is sound, DET above kSmallestJacobian. ND is the number of active nodes.
template <int Family>
bool JacobianVolume(const ShapeValues<Family>& shape, const NodeCoordinates<Family>& CORE, std::int32_t ND,
                    JacobianValues<Family>& out);

/// Point of a side on which r, s or t is held: KFIX 1, 2, 3; any other, or one beyond the family's directions, acts as 1.
/// Sets XJ and DETS, which is 1 for the end of a line. With NDS not 0 a sound point of a face also gets DET, the inverse,
/// HX, and VN, which is the cross product of the two free rows in ascending order over its length DETS. DET decides
/// nothing here: the element's volume points have judged it.
template <int Family>
bool JacobianSide(const ShapeValues<Family>& shape, const NodeCoordinates<Family>& CORE, std::int32_t ND,
                  std::int32_t KFIX, std::int32_t NDS, JacobianValues<Family>& out);

/// Shape values and Jacobian at `place`, the natural coordinates: a volume point for KFIX below 1, otherwise one of a side.
template <int Family>
bool ShapeAndJacobian(const double* place, std::int32_t KFIX, std::int32_t NDS, const ActiveNodes& active,
                      const NodeCoordinates<Family>& CORE, ShapeValues<Family>& shape,
                      JacobianValues<Family>& out) {
    ShapeFunctionsAt(place, active, shape);
    return KFIX < 1 ? JacobianVolume(shape, CORE, active.ND, out)
                    : JacobianSide(shape, CORE, active.ND, KFIX, NDS, out);
}

/// The same for the brick at (r, s, t).
inline bool ShapeAndJacobian3D(double r, double s, double t, std::int32_t KFIX, std::int32_t NDS,
                               const ActiveNodes& active, const NodeCoordinates<3>& CORE,
                               ShapeValues<3>& shape, JacobianValues<3>& out) {
    const double place[3] = {r, s, t};
    return ShapeAndJacobian(place, KFIX, NDS, active, CORE, shape, out);
}

/// For the quadrilateral.
inline bool ShapeAndJacobian2D(double r, double s, std::int32_t KFIX, const ActiveNodes& active,
                               const NodeCoordinates<2>& CORE, ShapeValues<2>& shape,
                               JacobianValues<2>& out) {
    const double place[2] = {r, s};
    return ShapeAndJacobian(place, KFIX, 0, active, CORE, shape, out);
}

/// And for the line, inside it.
inline bool ShapeAndJacobian1D(double r, const ActiveNodes& active, const NodeCoordinates<1>& CORE,
                               ShapeValues<1>& shape, JacobianValues<1>& out) {
    return ShapeAndJacobian(&r, 0, 0, active, CORE, shape, out);
}

} // namespace zurt
