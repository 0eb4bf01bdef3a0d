"""Families of elements that mesh files have: corners, edges and faces of the reference element, in VTK's order."""
from dataclasses import dataclass

import numpy


@dataclass(frozen=True)
class Family:
    """corners: (k, dimension) natural coordinates. edges: pairs of corners. faces: corners of each face of a solid, seen from outside
    against the clock; a surface has its own corners as its one face, a line has none.
    """
    name: str
    dimension: int
    corners: numpy.ndarray
    edges: tuple
    faces: tuple


def _family(name, corners, edges, faces):
    places = numpy.array(corners, dtype=float)
    return Family(name, places.shape[1], places, edges, faces)


LINE = _family("line", [(-1,), (1,)], ((0, 1),), ())
TRIANGLE = _family("triangle", [(0, 0), (1, 0), (0, 1)], ((0, 1), (1, 2), (2, 0)), ((0, 1, 2),))
QUAD = _family("quad", [(-1, -1), (1, -1), (1, 1), (-1, 1)], ((0, 1), (1, 2), (2, 3), (3, 0)), ((0, 1, 2, 3),))
TETRA = _family("tetra", [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1)],
                ((0, 1), (1, 2), (2, 0), (0, 3), (1, 3), (2, 3)), ((0, 2, 1), (0, 1, 3), (1, 2, 3), (2, 0, 3)))
PYRAMID = _family("pyramid", [(-1, -1, 0), (1, -1, 0), (1, 1, 0), (-1, 1, 0), (0, 0, 1)],
                  ((0, 1), (1, 2), (2, 3), (3, 0), (0, 4), (1, 4), (2, 4), (3, 4)),
                  ((0, 3, 2, 1), (0, 1, 4), (1, 2, 4), (2, 3, 4), (3, 0, 4)))
WEDGE = _family("wedge", [(0, 0, -1), (1, 0, -1), (0, 1, -1), (0, 0, 1), (1, 0, 1), (0, 1, 1)],
                ((0, 1), (1, 2), (2, 0), (3, 4), (4, 5), (5, 3), (0, 3), (1, 4), (2, 5)),
                ((0, 2, 1), (3, 4, 5), (0, 1, 4, 3), (1, 2, 5, 4), (2, 0, 3, 5)))
HEXAHEDRON = _family("hexahedron", [(-1, -1, -1), (1, -1, -1), (1, 1, -1), (-1, 1, -1), (-1, -1, 1), (1, -1, 1), (1, 1, 1), (-1, 1, 1)],
                     ((0, 1), (1, 2), (2, 3), (3, 0), (4, 5), (5, 6), (6, 7), (7, 4), (0, 4), (1, 5), (2, 6), (3, 7)),
                     ((0, 4, 7, 3), (1, 2, 6, 5), (0, 1, 5, 4), (3, 7, 6, 2), (0, 3, 2, 1), (4, 5, 6, 7)))

FAMILIES = {family.name: family for family in (LINE, TRIANGLE, QUAD, TETRA, PYRAMID, WEDGE, HEXAHEDRON)}

# Corners of the mirrored element that stands where the element stood: an element turned inside out takes its corners in this order.
MIRRORED = {"triangle": (0, 2, 1), "quad": (0, 3, 2, 1), "tetra": (0, 2, 1, 3), "pyramid": (0, 3, 2, 1, 4), "wedge": (0, 2, 1, 3, 5, 4),
            "hexahedron": (0, 3, 2, 1, 4, 7, 6, 5), "line": (1, 0)}

# What an element of so many nodes has beyond its corners: a node on each edge, on these faces, at its centre.
NO_FACES = ()
KINDS = {
    ("line", 2): (False, NO_FACES, False), ("line", 3): (True, NO_FACES, False),
    ("triangle", 3): (False, NO_FACES, False), ("triangle", 6): (True, NO_FACES, False),
    ("quad", 4): (False, NO_FACES, False), ("quad", 8): (True, NO_FACES, False), ("quad", 9): (True, (0,), False),
    ("tetra", 4): (False, NO_FACES, False), ("tetra", 10): (True, NO_FACES, False),
    ("pyramid", 5): (False, NO_FACES, False), ("pyramid", 13): (True, NO_FACES, False), ("pyramid", 14): (True, (0,), False),
    ("wedge", 6): (False, NO_FACES, False), ("wedge", 15): (True, NO_FACES, False), ("wedge", 18): (True, (2, 3, 4), False),
    ("hexahedron", 8): (False, NO_FACES, False), ("hexahedron", 20): (True, NO_FACES, False),
    ("hexahedron", 21): (True, NO_FACES, True), ("hexahedron", 27): (True, (0, 1, 2, 3, 4, 5), True),
}


def reference_places(family, edges, faces, centre):
    """(k, dimension) natural coordinates of corners, then of the middles of edges, of those faces and of the centre where they exist."""
    corners = family.corners
    places = [corners]
    if edges:
        places.append(numpy.array([corners[list(pair)].mean(axis=0) for pair in family.edges]))
    if faces:
        places.append(numpy.array([corners[list(family.faces[face])].mean(axis=0) for face in faces]))
    if centre:
        places.append(corners.mean(axis=0)[None, :])
    return numpy.concatenate(places)
