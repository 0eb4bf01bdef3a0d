"""A mesh as its file has it, in one form for all formats: what the readers of files make."""
from dataclasses import dataclass, field

import numpy

from .families import FAMILIES

# What is added to the name group-7 of the lower ones when elements of several dimensions have one number and no names.
BEHIND_NUMBER = {0: "-points", 1: "-lines", 2: "-surfaces", 3: ""}


@dataclass
class Cells:
    """Elements of one family with the same kinds of nodes; rows of points from zero, -1 where there is no node.

    corners: (m, corners). edges: (m, edges of the family), a node on each edge, or all -1. faces: (m, faces), the same on faces; that of
    a surface is its centre. centre: (m,) of a solid. number: (m,) number of each element in the file, or its place there from one.
    """
    family: str
    corners: numpy.ndarray
    edges: numpy.ndarray
    faces: numpy.ndarray
    centre: numpy.ndarray
    number: numpy.ndarray

    def __len__(self):
        return len(self.corners)

    @property
    def dimension(self):
        return FAMILIES[self.family].dimension


@dataclass
class SourceMesh:
    """points: (n, 3). cells: a list of Cells; all elements are counted on through that list from zero. groups: name to such counts, of
    elements. node_sets: name to rows of points. point_numbers: (n,) numbers of the points in the file. notes: a sentence each.
    """
    file: str
    points: numpy.ndarray
    cells: list = field(default_factory=list)
    groups: dict = field(default_factory=dict)
    node_sets: dict = field(default_factory=dict)
    notes: list = field(default_factory=list)


def take_cells(cells, rows):
    """The Cells of those rows."""
    return Cells(cells.family, cells.corners[rows], cells.edges[rows], cells.faces[rows], cells.centre[rows], cells.number[rows])


def has_edges(cells):
    """Whether the elements have nodes on their edges."""
    return len(cells) > 0 and cells.edges.size > 0 and bool((cells.edges >= 0).all())


def all_nodes(cells):
    """(m, k) rows of points of all kinds side by side, -1 where there is none."""
    return numpy.concatenate([cells.corners, cells.edges, cells.faces, cells.centre[:, None]], axis=1)


def map_nodes(cells, new_of_old):
    """Cells with rows of points replaced; what is -1 stays."""
    def mapped(rows):
        return numpy.where(rows >= 0, new_of_old[rows], -1)
    return Cells(cells.family, mapped(cells.corners), mapped(cells.edges), mapped(cells.faces), mapped(cells.centre), cells.number)


def cell_starts(cells):
    """Count of elements ahead of each entry of a list of Cells, and of all of them at the end."""
    return numpy.concatenate([[0], numpy.cumsum([len(part) for part in cells])]).astype(numpy.int64)
