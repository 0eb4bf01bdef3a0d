"""Sides of elements as elements of their own: edges of surfaces, faces of solids."""
import numpy

from .families import FAMILIES
from .source import Cells, has_edges


def shapes_of_sides(family):
    """Corners of each side of a Family: the edges of a surface, the faces of a solid."""
    return family.edges if family.dimension == 2 else family.faces


def sides_of_cells(cells, rows, sides):
    """Cells, one entry a shape, of those sides (numbers of edges of surfaces, of faces of solids) of the elements of the rows."""
    family, found = FAMILIES[cells.family], []
    pairs = {frozenset(pair): number for number, pair in enumerate(family.edges)}
    for side, corners in enumerate(shapes_of_sides(family)):
        own = rows[sides == side]
        if not len(own):
            continue
        ring = [pairs[frozenset(pair)] for pair in zip(corners, corners[1:] + corners[:1])]
        if family.dimension == 2:
            name, edges, faces = "line", cells.edges[own][:, [side]], numpy.empty((len(own), 0), numpy.int64)
        else:
            name, edges, faces = {3: "triangle", 4: "quad"}[len(corners)], cells.edges[own][:, ring], cells.faces[own][:, [side]]
        edges = edges if has_edges(cells) else numpy.full(edges.shape, -1, numpy.int64)
        found.append(Cells(name, cells.corners[own][:, list(corners)], edges, faces, numpy.full(len(own), -1, numpy.int64),
                           cells.number[own]))
    return found
