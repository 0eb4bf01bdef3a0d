"""The mesh as decks have it: what readers of meshes make and writers of decks take."""
from dataclasses import dataclass, field

import numpy


@dataclass
class ElementBlock:
    """Elements of one group of the mesh and of one shape.

    name: the mesh's physical group. dimension: 1, 2 or 3. elements: (m, nodes of the shape), rows of nodes from zero in the order of the
    manual's figures; -1 where an optional node is absent. source: (m,) place of each element in the mesh it was made from.
    """
    name: str
    dimension: int
    elements: numpy.ndarray
    source: numpy.ndarray


@dataclass
class Mesh:
    """points: (n, 3). node_sets: name to rows of points, of each physical group. faces: name to (m, nodes) corners and mid-side nodes of the
    edges or faces of such a group, as the elements of blocks have them, for surface data. notes: what was dropped, turned, merged or split,
    a sentence each.
    """
    points: numpy.ndarray
    blocks: list = field(default_factory=list)
    node_sets: dict = field(default_factory=dict)
    faces: dict = field(default_factory=dict)
    notes: list = field(default_factory=list)
