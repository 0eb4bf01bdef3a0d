"""What a mesh must be for the program: elements with a positive Jacobian at their Gauss points, surfaces in the plane x-y."""
import itertools

import numpy

from ..errors import ZurtError
from .elements import BRICK_CORNERS, BRICK_EDGES, family_of_dimension
from .interpolation import shape_slopes

SMALLEST_JACOBIAN = 1e-15  # the program stops at a smaller one
FLAT = 1e-6  # of the mesh's size: places in single precision count as flat
CHUNK = 50000


def _gauss_points(dimension, order):
    places, weights = numpy.polynomial.legendre.leggauss(order)
    return (numpy.array(list(itertools.product(places, repeat=dimension))),
            numpy.array([numpy.prod(row) for row in itertools.product(weights, repeat=dimension)]))


def _whole_nodes(points, dimension, elements):
    """(m, 2, 8 or 20 (3, 4 or 8) nodes, 3) places in VTK's order: a middle that is absent lies halfway between its ends. And the amount by which
    the centre lies elsewhere than these put it, or None."""
    family = family_of_dimension(dimension)
    corner_columns = BRICK_CORNERS if dimension == 3 else range(len(family.corners))
    edge_columns = BRICK_EDGES if dimension == 3 else range(len(family.edges))
    count, edges = len(family.corners), len(family.edges)
    corners = numpy.empty((len(elements), count, 3))
    corners[:, list(corner_columns)] = points[elements[:, :count]]
    if elements.shape[1] == count:
        return corners, None
    ends = numpy.array(family.edges)
    middles = corners[:, ends].mean(axis=2)
    for column, edge in enumerate(edge_columns):
        own = elements[:, count + column]
        there = own >= 0
        middles[there, edge] = points[own[there]]
    shift = None
    if dimension > 1 and elements.shape[1] == count + edges + 1:
        own = elements[:, -1]
        at_centre = {2: (-0.25, 0.5), 3: (-0.25, 0.25)}[dimension]
        shift = points[own] - at_centre[0] * corners.sum(axis=1) - at_centre[1] * middles.sum(axis=1)
        shift[own < 0] = 0.0
    return numpy.concatenate([corners, middles], axis=1), shift


def jacobians(points, block):
    """Yields (first element, (m, points) determinants, (points,) weights) of parts of a block at its Gauss points: 2 in a direction, with
    middles 3. Lengths of lines, areas in x-y of quadrilaterals, volumes of bricks by natural coordinates."""
    dimension, family = block.dimension, family_of_dimension(block.dimension)
    curved = block.elements.shape[1] > len(family.corners)
    places, weights = _gauss_points(dimension, 3 if curved else 2)
    slopes = shape_slopes(family.name, (curved, (), False), places)
    bubble = numpy.stack([-2.0 * places[:, axis] * numpy.prod(1.0 - numpy.delete(places, axis, axis=1) ** 2, axis=1)
                          for axis in range(dimension)])
    for start in range(0, len(block.elements), CHUNK):
        nodes, shift = _whole_nodes(points, dimension, block.elements[start:start + CHUNK])
        table = numpy.einsum("dpk,mki->mpdi", slopes, nodes, optimize=True)
        if shift is not None:
            table += bubble.T[None, :, :, None] * shift[:, None, None, :]
        if dimension == 1:
            values = numpy.linalg.norm(table[:, :, 0], axis=2)
        elif dimension == 2:
            values = table[:, :, 0, 0] * table[:, :, 1, 1] - table[:, :, 0, 1] * table[:, :, 1, 0]
        else:
            values = numpy.einsum("mpi,mpi->mp", numpy.cross(table[:, :, 0], table[:, :, 1]), table[:, :, 2])
        yield start, values, weights


def block_size(points, block):
    """Length of lines, area of quadrilaterals, volume of bricks of a block, by its Gauss points."""
    return float(sum((values @ weights).sum() for _, values, weights in jacobians(points, block)))


def check_elements(points, blocks, numbers, file=None):
    """Raises ZurtError at elements that the program stops at. numbers: (k,) numbers in the file by the blocks' source."""
    for block in blocks:
        least = numpy.concatenate([values.min(axis=1) for _, values, _ in jacobians(points, block)])
        bad = numpy.flatnonzero(~(least > SMALLEST_JACOBIAN))
        if not len(bad):
            continue
        worst = bad[numpy.argmin(least[bad])]
        place = points[block.elements[worst, :2 ** block.dimension]].mean(axis=0)
        where = f"element {numbers[block.source[worst]]} of the file, about ({place[0]:.6g}, {place[1]:.6g}, {place[2]:.6g})"
        which = f'{len(bad)} of {len(least)} elements of the group "{block.name}"'
        if least[worst] >= 0 and numpy.median(least) < 1e3 * SMALLEST_JACOBIAN:
            raise ZurtError(f"{which} are too small for the program, which wants determinants above {SMALLEST_JACOBIAN:g}, not "
                            f"{least[worst]:.3g}: take a unit of length in which they are larger numbers (option scale)", file)
        raise ZurtError(f"{which} are turned inside out or have no extent at a Gauss point; the worst is {where}, with a determinant of "
                        f"{least[worst]:.3g}: improve the mesh (gmsh: -optimize, -optimize_ho)", file)


def check_plane(points, pieces, file=None):
    """Raises ZurtError when elements of surfaces that make blocks lie elsewhere than in the plane z = 0."""
    for piece in pieces:
        if piece.role != "block" or piece.cells.dimension != 2:
            continue
        places = points[piece.cells.corners.ravel()]
        low, high = places.min(axis=0), places.max(axis=0)
        slack = FLAT * max((high - low).max(), 1e-300)
        if max(abs(low[2]), abs(high[2])) <= slack:
            continue
        flat = [axis for axis in range(3) if high[axis] - low[axis] <= slack]
        if 2 in flat:
            raise ZurtError(f'the surface "{piece.name}" lies in the plane z = {low[2]:.6g}; quadrilaterals of this program lie in z = 0: '
                            f"move it by {-low[2]:.6g} (option move)", file)
        if flat:
            name = "xyz"[flat[0]]
            raise ZurtError(f'the surface "{piece.name}" lies in the plane {name} = {low[flat[0]]:.6g}; quadrilaterals of this program lie '
                            f'in the plane x-y at z = 0: exchange the axes (option axes = "{dict(x="yzx", y="zxy")[name]}")', file)
        raise ZurtError(f'the surface "{piece.name}" lies in space, z goes from {low[2]:.6g} to {high[2]:.6g}; quadrilaterals of this program '
                        "lie in the plane x-y at z = 0. There are no shells: mesh the solid itself (gmsh: a mesh of dimension 3)", file)
