"""How an element of each family is cut into quadrilaterals or bricks: the new points and the pieces.

Points are named by tuples: ("v", i) a corner, ("e", k) the middle of an edge, ("f", k) that of a face, ("c",) that of a solid; between
these, for pieces with mid-side nodes, ("ve", i, k), ("ef", k, l) and ("fc", l); ("vc", i) the centre of a
surface's piece; ("m", j) one of those at the tip of a pyramid. A piece stands at each corner where as many edges meet as
space has directions, between the middles of the edges, faces and the element there.

At the apex of a pyramid four edges meet. What is left there, a body of eight quadrilaterals and ten corners, is divided from a point in its
inside into eight pyramids: bricks whose upper four corners lie in that point. Each corner of the body has a node of its own there, so
no brick has a node twice, and bricks that meet share whole faces. A value that differs with the direction from which one comes to a point
has a finite energy in space, so such elements are conforming; they have a positive Jacobian at every Gauss point. The nodes lie off the
point by a part of 1e-5 and leave a pinhole there, lest they be taken for double nodes: linear fields are reproduced but for its square.
A division without such corners that leaves the faces as they are takes 36 bricks at least as known so far (K. Verhetsel,
J. Pellerin, J.-F. Remacle, Finding hexahedrizations for small quadrangulations of the sphere, 2019), of shapes too poor for use.
"""
import functools
from dataclasses import dataclass

import numpy

from .families import FAMILIES, HEXAHEDRON, QUAD

# Heights of the two inner points of a pyramid of height 1: the middle where the four bricks at its base meet, and the tip of the eight
# pyramids at its apex. About there the least Jacobian at a Gauss point is largest and hardly depends on them.
PYRAMID_MIDDLE = 0.2
PYRAMID_UPPER = 0.5
TIP_NODES = 10
TIP_SIZE = 1e-5  # of the distance from the tip to the body's corners, in which direction the node of each lies


@dataclass(frozen=True)
class SplitTable:
    """points: names of all points, and places: their natural coordinates. pieces: (s, 2, 4 or 8) columns of the points at the corners of
    the pieces in VTK's order. middles: (s, 1, 4 or 12) columns of those on their edges, -1 where an edge stays linear. centres: (s,)
    columns of those at their centres, or -1.
    """
    points: tuple
    places: numpy.ndarray
    pieces: numpy.ndarray
    middles: numpy.ndarray
    centres: numpy.ndarray


def _middle(first, second):
    """Name of the point between two named ones; None where a piece's edge stays linear."""
    first, second = sorted((first, second), key=lambda point: "vefcm".index(point[0]))
    kinds = first[0] + second[0]
    if kinds == "ve":
        return ("ve", first[1], second[1])
    if kinds == "ef":
        return ("ef", first[1], second[1])
    return ("fc", first[1]) if kinds == "fc" else None


def _place(family, point):
    corners = family.corners
    kind = point[0]
    if kind == "v":
        return corners[point[1]]
    if kind == "e":
        return corners[list(family.edges[point[1]])].mean(axis=0)
    if kind == "f":
        return corners[list(family.faces[point[1]])].mean(axis=0)
    if kind == "m":
        tip = numpy.array([0.0, 0.0, PYRAMID_UPPER])
        return tip + TIP_SIZE * (_place(family, list(_tip_nodes(family))[point[1]]) - tip)
    if kind == "c":
        return numpy.array([0.0, 0.0, PYRAMID_MIDDLE]) if family.name == "pyramid" else corners.mean(axis=0)
    if kind == "vc":
        edges = [("e", number) for number, pair in enumerate(family.edges) if point[1] in pair]
        return numpy.mean([_place(family, other) for other in [("v", point[1]), ("f", 0)] + edges], axis=0)
    ends = {"ve": lambda: (("v", point[1]), ("e", point[2])), "ef": lambda: (("e", point[1]), ("f", point[2])),
            "fc": lambda: (("f", point[1]), ("c",))}[kind]()
    return 0.5 * (_place(family, ends[0]) + _place(family, ends[1]))


def _edge(family, first, second):
    return ("e", next(k for k, pair in enumerate(family.edges) if set(pair) == {first, second}))


def _face(family, *corners):
    return ("f", next(k for k, face in enumerate(family.faces) if set(corners) <= set(face)))


def _quads(family):
    """A surface's pieces, one at each corner; its middle is that of its own face."""
    count, pieces = len(family.corners), []
    for corner in range(count):
        ahead, behind = (corner + 1) % count, (corner - 1) % count
        pieces.append([("v", corner), _edge(family, corner, ahead), ("f", 0), _edge(family, corner, behind)])
    return pieces


def _bricks(family):
    """A solid's pieces at corners of three edges."""
    pieces = []
    for corner, start in enumerate(family.corners):
        near = [sum(pair) - corner for pair in family.edges if corner in pair]
        if len(near) != 3:
            continue
        if numpy.linalg.det(family.corners[near] - start) < 0:
            near[1], near[2] = near[2], near[1]
        a, b, c = near
        pieces.append([("v", corner), _edge(family, corner, a), _face(family, corner, a, b), _edge(family, corner, b),
                       _edge(family, corner, c), _face(family, corner, a, c), ("c",), _face(family, corner, b, c)])
    return pieces


def _upper_quads(family):
    """The quadrilaterals of the body at the apex of a pyramid."""
    quads = []
    for corner in range(4):
        ahead, behind = (corner + 1) % 4, (corner - 1) % 4
        side, former = _face(family, corner, ahead, 4), _face(family, corner, behind, 4)
        quads.append([("v", 4), _edge(family, corner, 4), side, _edge(family, ahead, 4)])
        quads.append([("c",), former, _edge(family, corner, 4), side])
    return quads


def _tip_nodes(family):
    """{corner of that body: node at the tip}"""
    return {point: ("m", number) for number, point in enumerate(dict.fromkeys(point for quad in _upper_quads(family) for point in quad))}


def _pyramids(family):
    """The eight pieces at the apex of a pyramid, each a quadrilateral and the four nodes at the tip above it."""
    pieces, tip = [], _tip_nodes(family)
    for quad in _upper_quads(family):
        places = numpy.array([_place(family, point) for point in quad])
        upward = numpy.dot(numpy.cross(places[2] - places[0], places[3] - places[1]), [0.0, 0.0, PYRAMID_UPPER] - places.mean(axis=0))
        quad = quad if upward > 0 else quad[::-1]
        pieces.append(quad + [tip[point] for point in quad])
    return pieces


@functools.lru_cache(maxsize=None)
def split_table(name, quadratic, centres):
    """The SplitTable of the family `name`, with points on the edges of its pieces if `quadratic`, and then of surfaces, if `centres`, with
    points at their centres too."""
    family = FAMILIES[name]
    if family.dimension == 1:
        pieces, edges = [[("v", 0), ("e", 0)], [("e", 0), ("v", 1)]], ((0, 1),)
    elif family.dimension == 2:
        pieces, edges = _quads(family), QUAD.edges
    else:
        pieces, edges = _bricks(family) + (_pyramids(family) if name == "pyramid" else []), HEXAHEDRON.edges
    middles = [[_middle(piece[a], piece[b]) if quadratic else None for a, b in edges] for piece in pieces]
    inner = [("vc", corner) for corner in range(len(pieces))] if quadratic and centres and family.dimension == 2 else []
    points = tuple(dict.fromkeys([point for piece in pieces for point in piece] + [p for row in middles for p in row if p is not None]
                                 + inner))
    column = {point: place for place, point in enumerate(points)}
    return SplitTable(points, numpy.array([_place(family, point) for point in points]),
                      numpy.array([[column[point] for point in piece] for piece in pieces]),
                      numpy.array([[column[point] if point is not None else -1 for point in row] for row in middles]),
                      numpy.array([column[point] for point in inner] or [-1] * len(pieces)))
