// The mesh as viewers see it: points, cells and what each of them is.
//
// Points are the NP nodes; then, fibre by fibre, the nodes of substructured radial fibres from the axis to the surface; then
// those that a viewer's element has and ours has not. Elements of these families may lack single mid-side nodes, and bricks have a
// centre without middles of faces. A viewer knows full sets of nodes alone, so missing ones are added where the element has
// them, with the value that it has there: the field in the cell is the element's own, exactly.
// Lengths are in the mesh's unit. Called by the writer of .vtu files, once a problem.
#pragma once

#include "run/run.h"

#include <cstdint>
#include <vector>

namespace zurt {

/// A point between others: of 2 in the middle, or of the 8 around a side (corners, then the middles of its edges) in the
/// side's centre.
struct AddedPoint {
    std::int32_t count = 0;
    std::int32_t from[8] = {}; // points, from 0
};

/// All arrays begin with index 0.
struct VtuMesh {
    std::int32_t points = 0, cells = 0;
    std::vector<double> places;     // x, y, z of each point
    std::vector<std::int32_t> node; // its number in listing and graphics file, 0 where it has none there
    std::int32_t radialPoints = 0;  // of substructured fibres, behind the nodes
    std::vector<AddedPoint> added;  // the last points
    std::vector<std::uint8_t>
        fluid; // by point: 0 where it lies in a fibre under the mesh, and its value has no meaning
    std::vector<double>
        wallDistance; // by point: to the nearest fibre under the mesh, NaN where none is seen; empty without

    std::vector<std::int32_t> connectivity; // points of the cells, cell by cell
    std::vector<std::int64_t> offsets;      // where the points of each cell end
    std::vector<std::uint8_t> types;        // of the cells, by VTK's numbers
    std::vector<std::int32_t> group, element, material;
    std::vector<std::uint8_t>
        fibreMark; // by cell: 0 in fibres whole (it takes no part), 1 partly, 2 in fluid
};

/// The mesh of the problem in work, and what the model in work makes of its fibres.
VtuMesh MakeVtuMesh(const Run& run);

/// The values at the added points, behind those of the points ahead of them.
///   values  rows of `components` values, point by point (in and out)
void ValuesAtAddedPoints(const VtuMesh& mesh, int components, std::vector<double>& values);

} // namespace zurt
