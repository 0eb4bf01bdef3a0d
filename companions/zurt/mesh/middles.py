"""Which node of an element of second order lies on which edge or face: told by where the nodes lie.

Formats disagree on the order of these nodes (the twelve edges of a brick have at least four orders in use), and files are not always true
to their own format. Corners are in one order everywhere, but for the sense of rotation. So each further node is given to the edge, face
or centre whose middle lies next to it, in the mean over all elements, each of them once.
"""
import numpy
from scipy.optimize import linear_sum_assignment

from ..errors import ZurtError
from .families import FAMILIES, KINDS
from .source import Cells

SAMPLE = 20000  # elements that are looked at


def _targets(family, kind):
    """Corners whose mean is the middle of each place that has a node."""
    edges, faces, centre = kind
    targets = [list(pair) for pair in family.edges] if edges else []
    targets += [list(family.faces[face]) for face in faces]
    return targets + ([list(range(len(family.corners)))] if centre else [])


def _order_of_middles(points, nodes, corner_count, targets):
    """For each target the column of `nodes` behind the corners that lies nearest, by squares: where elements are thinner than their sides bulge
    a middle may lie nearer to the edge across, and sums of distances are as small with both exchanged, sums of squares are not."""
    step = max(1, len(nodes) // SAMPLE)
    places = points[nodes[::step]]
    corners, middles = places[:, :corner_count], places[:, corner_count:]
    size = numpy.linalg.norm(corners.max(axis=1) - corners.min(axis=1), axis=1)
    size = numpy.where(size > 0, size, 1.0)
    costs = numpy.empty((len(targets), middles.shape[1]))
    for row, target in enumerate(targets):
        away = middles - corners[:, target].mean(axis=1)[:, None, :]
        costs[row] = ((away ** 2).sum(axis=2) / size[:, None] ** 2).mean(axis=0)
    return linear_sum_assignment(costs)[1]


def cells_of_nodes(family_name, points, nodes, number, file=None):
    """Cells from (m, k) rows of points, corners first and the others in any order; number: (m,) numbers in the file."""
    family = FAMILIES[family_name]
    kind = KINDS.get((family_name, nodes.shape[1]))
    if kind is None:
        raise ZurtError(f"there are elements of the shape {family_name} with {nodes.shape[1]} nodes; those of first and second order "
                        "are read: export the mesh with order 1 or 2", file)
    edges, faces, centre = kind
    count, corners = len(nodes), len(family.corners)
    cells = Cells(family_name, nodes[:, :corners], numpy.full((count, len(family.edges)), -1, numpy.int64),
                  numpy.full((count, len(family.faces)), -1, numpy.int64), numpy.full(count, -1, numpy.int64), number)
    targets = _targets(family, kind)
    if not targets or not count:
        return cells
    middles = nodes[:, corners:][:, _order_of_middles(points, nodes, corners, targets)]
    if edges:
        cells.edges = middles[:, :len(family.edges)]
    for place, face in enumerate(faces):
        cells.faces[:, face] = middles[:, len(family.edges) + place]
    if centre:
        cells.centre = middles[:, -1].copy()
    return cells
