"""Whether the elements of a mesh meet in whole edges and faces. The program takes that for granted: where they don't, the field is cut.

Two elements meet in a side if they have the same corners there. What is looked at are the sides that one element alone has. They are
the outside of the body, and both faces of each cut; so a node that lies on such a side without belonging to it is one that the field is cut at.
"""
import itertools

import numpy
from scipy.sparse import coo_matrix
from scipy.sparse.csgraph import connected_components
from scipy.spatial import cKDTree

from ..errors import ZurtError
from .families import FAMILIES
from .interpolation import shape_slopes, shape_values
from .sides import shapes_of_sides, sides_of_cells
from .splitting import nodes_and_kind

TOUCH = 1e-4  # of a side's size: what is nearer lies on it
ROUNDING = 1e-7  # of the mesh's size: files have so many digits
CHUNK = 5000  # sides whose surroundings are looked at together
STEPS = 8  # of Newton's method, for the place on a side that is nearest to a node
NAMES = {2: ("edges", "quadrilaterals or triangles"), 3: ("faces", "solids")}


def conformity_notes(points, parts, file=None):
    """A sentence for each thing that does not meet. points: (n, 3). parts: list of Cells, all elements of the mesh. Raises ZurtError where no
    element has a node with another one in common though they lie at the same places."""
    parts = [cells for cells in parts if len(cells)]
    marks = numpy.random.default_rng(1).integers(0, 2 ** 63, len(points), dtype=numpy.uint64)
    notes, doubles = [], 0
    for dimension in sorted({cells.dimension for cells in parts}):
        own = [cells for cells in parts if cells.dimension == dimension]
        free = own
        if dimension > 1:
            free, crowded = _free_sides(own, marks)
            notes += _notes_of_sides(points, free, crowded, marks, dimension)
        found, count = _notes_of_nodes(points, free, dimension)
        notes += found
        doubles += count
    return notes + _notes_of_parts(points, parts, doubles, file)


def _text(place):
    return "({:.6g}, {:.6g}, {:.6g})".format(*place)


def _side_keys(cells, marks):
    """(m, sides) numbers that are equal where corners are: sums of random numbers of the corners."""
    shapes = shapes_of_sides(FAMILIES[cells.family])
    return numpy.stack([sum(marks[cells.corners[:, corner]] for corner in corners) for corners in shapes], axis=1)


def _free_sides(parts, marks):
    """(list of Cells of the sides that one element alone has, the same of those that more than two have)."""
    keys = [_side_keys(cells, marks) for cells in parts]
    _, number, times = numpy.unique(numpy.concatenate([key.ravel() for key in keys]), return_inverse=True, return_counts=True)
    ends = numpy.cumsum([key.size for key in keys])[:-1]
    free, crowded = [], []
    for cells, key, count in zip(parts, keys, numpy.split(times[number], ends)):
        count = count.reshape(key.shape)
        free += sides_of_cells(cells, *numpy.nonzero(count == 1))
        crowded += sides_of_cells(cells, *numpy.nonzero(count > 2))
    return free, crowded


def _notes_of_sides(points, free, crowded, marks, dimension):
    """Sides of more than two elements, and quadrilaterals with triangles against them."""
    sides, elements = NAMES[dimension]
    notes = []
    if crowded:
        count = len(numpy.unique(numpy.concatenate([_corner_sums(cells, marks) for cells in crowded])))
        notes.append(f"{sides} that belong to more than two {elements}: {count}, the first about {_text(points[crowded[0].corners[0]].mean(axis=0))}; "
                     "elements overlap there")
    quads = [cells.corners for cells in free if cells.family == "quad"]
    triangles = [_corner_sums(cells, marks) for cells in free if cells.family == "triangle"]
    if quads and triangles:
        corners = numpy.concatenate(quads)
        halves = marks[corners].sum(axis=1, dtype=numpy.uint64)[:, None] - marks[corners]
        cut = numpy.isin(halves, numpy.concatenate(triangles)).sum(axis=1) > 1
        if cut.any():
            notes.append(f"faces of four corners against two triangles: {int(cut.sum())}, the first about "
                         f"{_text(points[corners[cut.argmax()]].mean(axis=0))}; the field is cut there: such elements meet through pyramids alone")
    return notes


def _corner_sums(cells, marks):
    return marks[cells.corners].sum(axis=1, dtype=numpy.uint64)


def _notes_of_nodes(points, sides, dimension):
    """Notes of double and of hanging nodes on `sides`, a list of Cells; and the number of double ones."""
    node, other, distance = touching_nodes(points, sides)
    notes, where = [], {1: "a line", 2: "an edge", 3: "an edge or a face"}[dimension]
    twice = numpy.unique(node[(other >= 0) & (other < node)])
    if len(twice):
        size = numpy.ptp(points[node], axis=0).max()
        reach = 10.0 ** numpy.ceil(numpy.log10(max(2.0 * distance[other >= 0].max(), 1e-9 * size, 1e-300)))
        notes.append(f"nodes at the place of another one: {len(twice)}, the first at {_text(points[twice[0]])}; what they belong to is not joined "
                     f"there: merge = {reach:.0e} joins it")
    hanging = numpy.unique(node[other < 0])
    if len(hanging):
        notes.append(f"nodes that lie on {where} of an element without being one of its nodes: {len(hanging)}, the first at "
                     f"{_text(points[hanging[0]])}; the field is cut there. Elements have to meet in whole edges and faces: fragment the geometry ahead "
                     "of meshing (gmsh: BooleanFragments), or mesh both sides alike")
    return notes, len(twice)


def touching_nodes(points, sides):
    """What of the nodes of `sides`, a list of Cells, lies on one of them without belonging to it.

    Returns (k,) rows of points, (k,) rows of that side's own node at the same place or -1, (k,) distances from the side. A point comes once for
    each side that it lies on.
    """
    if not sides:
        return numpy.empty(0, numpy.int64), numpy.empty(0, numpy.int64), numpy.empty(0)
    every = [nodes_and_kind(cells) for cells in sides]
    rows = numpy.unique(numpy.concatenate([nodes.ravel() for nodes, _ in every]))
    slack = ROUNDING * numpy.ptp(points[rows], axis=0).max()
    tree = cKDTree(points[rows])
    found = [(numpy.empty(0, numpy.int64), numpy.empty(0, numpy.int64), numpy.empty(0))]
    for cells, (nodes, kind) in zip(sides, every):
        for start in range(0, len(nodes), CHUNK):
            found.append(_touching(points, rows, tree, cells.family, kind, nodes[start:start + CHUNK], slack))
    return tuple(numpy.concatenate(column) for column in zip(*found))


def _touching(points, rows, tree, family, kind, nodes, slack):
    """touching_nodes of some sides of one shape, whose nodes are (m, k) rows of points."""
    places = points[nodes]
    centre = places.mean(axis=1)
    size = numpy.linalg.norm(places - centre[:, None], axis=2).max(axis=1)
    near = tree.query_ball_point(centre, 1.01 * size + slack)
    count = numpy.fromiter(map(len, near), numpy.int64, len(near))
    side = numpy.repeat(numpy.arange(len(nodes)), count)
    node = rows[numpy.fromiter(itertools.chain.from_iterable(near), numpy.int64, int(count.sum()))]
    foreign = (nodes[side] != node[:, None]).all(axis=1)
    side, node = side[foreign], node[foreign]
    if not len(node):
        return node, node, numpy.empty(0)
    within = TOUCH * size[side] + slack
    apart = numpy.linalg.norm(places[side] - points[node][:, None], axis=2)
    distance, nearest = apart.min(axis=1), apart.argmin(axis=1)
    double = distance <= within
    rest = numpy.flatnonzero(~double)
    distance[rest] = distances_to_sides(family, kind, places[side[rest]], points[node[rest]])
    on = distance <= within
    return node[on], numpy.where(double, nodes[side, nearest], -1)[on], distance[on]


def distances_to_sides(family, kind, places, at):
    """(p,) distances of points (p, 3) from lines, triangles or quadrilaterals whose nodes lie at places (p, k, 3), by Newton's method within the
    element. family, kind: as interpolation.shape_values takes them."""
    natural = numpy.repeat(FAMILIES[family].corners.mean(axis=0)[None], len(at), axis=0)
    for _ in range(STEPS):
        away = at - numpy.einsum("pk,pki->pi", shape_values(family, kind, natural), places)
        tangent = numpy.einsum("dpk,pki->pdi", shape_slopes(family, kind, natural), places)
        metric = numpy.einsum("pdi,pei->pde", tangent, tangent)
        metric += (1e-12 * numpy.trace(metric, axis1=1, axis2=2) + 1e-300)[:, None, None] * numpy.eye(natural.shape[1])
        natural = _clip(family, natural + numpy.linalg.solve(metric, numpy.einsum("pdi,pi->pd", tangent, away)[..., None])[..., 0])
    return numpy.linalg.norm(at - numpy.einsum("pk,pki->pi", shape_values(family, kind, natural), places), axis=1)


def _clip(family, natural):
    """Natural coordinates brought into the element."""
    if family != "triangle":
        return numpy.clip(natural, -1.0, 1.0)
    natural = natural - 0.5 * numpy.maximum(natural.sum(axis=1) - 1.0, 0.0)[:, None]
    return numpy.clip(natural, 0.0, 1.0)


def _notes_of_parts(points, parts, doubles, file):
    """A note where the elements fall into parts without a common node."""
    pairs = numpy.concatenate([numpy.stack([cells.corners[:, :-1].ravel(), cells.corners[:, 1:].ravel()]) for cells in parts], axis=1)
    graph = coo_matrix((numpy.ones(pairs.shape[1], numpy.int8), pairs), (len(points),) * 2)
    label = connected_components(graph, directed=False)[1]
    first = numpy.concatenate([cells.corners[:, 0] for cells in parts])
    _, place, count = numpy.unique(label[first], return_index=True, return_counts=True)
    if len(count) == 1:
        return []
    if doubles and len(count) == len(first) > 10:
        raise ZurtError(f"no two of the {len(first)} elements have a node in common, though {doubles} nodes lie at the place of another one: merge them "
                        "(option merge)", file)
    least = count.argmin()
    return [f"the elements fall into {len(count)} parts without a common node; the smallest has {count[least]} of {len(first)}, about "
            f"{_text(points[first[place[least]]])}"]
