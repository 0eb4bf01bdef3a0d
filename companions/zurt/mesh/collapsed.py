"""Elements with one node at several corners, as older meshers write wedges, pyramids, tetrahedra and triangles: turned into what they are."""
import numpy

from ..errors import ZurtError
from .cleaning import repeats
from .families import FAMILIES, HEXAHEDRON
from .selection import Piece
from .source import Cells, has_edges, take_cells


def _wedge_patterns():
    """[(pairs of corners of a brick that are one, corners of the wedge)]: opposite edges of one face have no length."""
    patterns = []
    for ring in HEXAHEDRON.faces:
        for a, b, c, d in (ring, ring[1:] + ring[:1]):
            near = next(face for face in HEXAHEDRON.faces if {a, b} <= set(face) and set(face) != set(ring))
            across = {}
            for first, second in HEXAHEDRON.edges:
                if (first in near) != (second in near):
                    across[first if first in near else second] = second if first in near else first
            triangle = [corner for corner in near if corner != b]
            patterns.append((((a, b), (c, d)), tuple(triangle + [across[corner] for corner in triangle])))
    return patterns


def _pyramid_patterns():
    """A face of a brick is one point, the opposite one the base."""
    patterns = []
    for ring in HEXAHEDRON.faces:
        base = next(face for face in HEXAHEDRON.faces if not set(face) & set(ring))
        patterns.append((tuple((ring[0], corner) for corner in ring[1:]), base + ring[:1]))
    return patterns


# Family, distinct nodes, family that it is, its patterns.
COLLAPSED = (("hexahedron", 6, "wedge", _wedge_patterns()), ("hexahedron", 5, "pyramid", _pyramid_patterns()),
             ("quad", 3, "triangle", [(((i, (i + 1) % 4),), tuple(j for j in range(4) if j != i)) for i in range(4)]))


def _distinct(corners):
    """(m,) count of different nodes of each row."""
    ordered = numpy.sort(corners, axis=1)
    return 1 + (ordered[:, 1:] != ordered[:, :-1]).sum(axis=1)


def _plain_cells(family, corners, number):
    count = len(corners)
    shape = FAMILIES[family]
    return Cells(family, corners, numpy.full((count, len(shape.edges)), -1, numpy.int64),
                 numpy.full((count, len(shape.faces)), -1, numpy.int64), numpy.full(count, -1, numpy.int64), number)


def _tetrahedra(corners):
    """(m, 4) different nodes of rows of eight in their order."""
    first = (corners[:, :, None] == corners[:, None, :]).argmax(axis=2) == numpy.arange(corners.shape[1])
    return corners[first].reshape(len(corners), 4)


def _replacements(cells):
    """Yields (rows, Cells) of the elements that are of another family."""
    distinct = _distinct(cells.corners)
    for family, count, other, patterns in COLLAPSED:
        if family != cells.family:
            continue
        for pairs, corners in patterns:
            same = numpy.all([cells.corners[:, a] == cells.corners[:, b] for a, b in pairs], axis=0) & (distinct == count)
            rows = numpy.flatnonzero(same)
            if len(rows):
                yield rows, _plain_cells(other, cells.corners[rows][:, list(corners)], cells.number[rows])
    if cells.family == "hexahedron":
        rows = numpy.flatnonzero(distinct == 4)
        if len(rows):
            yield rows, _plain_cells("tetra", _tetrahedra(cells.corners[rows]), cells.number[rows])


def replace_collapsed(pieces, notes, file):
    """The pieces with collapsed elements of first order as what they are. Raises ZurtError at others: the program wants different nodes."""
    found, replaced = [], 0
    for piece in pieces:
        twice = repeats(piece.cells.corners)
        if not twice.any():
            found.append(piece)
            continue
        left = numpy.ones(len(piece.cells), bool)
        for rows, cells in _replacements(piece.cells) if not has_edges(piece.cells) else ():
            found.append(Piece(piece.name, piece.role, cells, piece.source[rows]))
            left[rows] = False
            replaced += len(rows) if piece.role == "block" else 0
        bad = numpy.flatnonzero(left & twice)
        if len(bad) and piece.role == "block":
            raise ZurtError(f'{len(bad)} of {len(piece.cells)} elements of the group "{piece.name}" have a node twice, the first is element '
                            f"{piece.cells.number[bad[0]]} of the file: write collapsed elements as what they are (wedges, pyramids, "
                            "tetrahedra, triangles)", file)
        rest = numpy.flatnonzero(left & ~twice)
        if len(rest):
            found.append(Piece(piece.name, piece.role, take_cells(piece.cells, rest), piece.source[rest]))
    if replaced:
        notes.append(f"collapsed elements taken as wedges, pyramids, tetrahedra or triangles: {replaced}")
    return found
