"""Nodes numbered for a narrow band, the size of the skyline store, and the solver that suits a mesh."""
from dataclasses import dataclass, replace

import numpy
from scipy.sparse import csr_matrix
from scipy.sparse.csgraph import reverse_cuthill_mckee


LARGEST_STORE = 2147483646  # words of the skyline store
# Seconds a pass that docs/solvers.md has for cubes of 8-node bricks: of the skyline solver by the sum of squares of column heights, of
# conjugate gradients by nodes and the cube root of their number.
SKYLINE_SECONDS = 3.5e-11
GRADIENTS_SECONDS = 4.5e-8


def _lowest_neighbours(blocks, count):
    """(count,) lowest row that shares an element with each row, itself if none does."""
    lowest = numpy.arange(count)
    for block in blocks:
        elements = block.elements
        least = numpy.where(elements >= 0, elements, count).min(axis=1)
        for column in range(elements.shape[1]):
            there = elements[:, column] >= 0
            numpy.minimum.at(lowest, elements[there, column], least[there])
    return lowest


def column_heights(mesh):
    """(n,) words of each column of the skyline store with all nodes free: from its first entry to the diagonal, both counted."""
    return numpy.arange(len(mesh.points)) - _lowest_neighbours(mesh.blocks, len(mesh.points)) + 1


def profile_size(mesh):
    """Words of the skyline store with all nodes free: the sum of the column heights."""
    return int(column_heights(mesh).sum())


def _node_graph(mesh):
    """Pattern of the matrix: which nodes share an element."""
    count = len(mesh.points)
    rows, columns, start = [], [], 0
    for block in mesh.blocks:
        element, place = numpy.nonzero(block.elements >= 0)
        rows.append(element.astype(numpy.int64) + start)
        columns.append(block.elements[element, place])
        start += len(block.elements)
    rows, columns = numpy.concatenate(rows), numpy.concatenate(columns)
    table = csr_matrix((numpy.ones(len(rows), numpy.int32), (rows, columns)), (start, count))
    return table.T.tocsr() @ table


def _renumbered(mesh, order):
    """The mesh with its points in that order (rows of the present points)."""
    new_of_old = numpy.empty(len(order) + 1, numpy.int64)
    new_of_old[order] = numpy.arange(len(order))
    new_of_old[-1] = -1
    return replace(mesh, points=mesh.points[order],
                   blocks=[replace(block, elements=new_of_old[block.elements]) for block in mesh.blocks],
                   node_sets={name: numpy.sort(new_of_old[rows]) for name, rows in mesh.node_sets.items()},
                   faces={name: new_of_old[rows] for name, rows in mesh.faces.items()}, notes=list(mesh.notes))


def _along_axes(points):
    """Rows of points sorted by the longest extent of the mesh, then the second, then the shortest: short directions first."""
    extent = points.max(axis=0) - points.min(axis=0)
    grid = max(extent.max(), 1e-300) * 1e-9
    axes = numpy.argsort(extent, kind="stable")
    return numpy.lexsort([numpy.round(points[:, axis] / grid) for axis in axes])


def renumber_for_band(mesh):
    """The mesh in the numbering with the smallest skyline store, and the words of that store before and after.

    The file's numbering, reverse Cuthill-McKee (A. George, J. W. Liu, Computer Solution of Large Sparse Positive Definite Systems, 1981)
    and the order along the mesh's longest extent are held against each other; equal ones leave the file's. Sizes count all nodes as free.
    """
    before = profile_size(mesh)
    best, after = mesh, before
    for order in (reverse_cuthill_mckee(_node_graph(mesh), symmetric_mode=True), _along_axes(mesh.points)):
        candidate = _renumbered(mesh, order)
        size = profile_size(candidate)
        if size < after:
            best, after = candidate, size
    return best, before, after


@dataclass
class SolverAdvice:
    """name: "skyline", "sparse" or "cg", as zurt --solver takes it. reason: a sentence. words: of the skyline store. seconds: estimates
    a pass by solver from docs/solvers.md, of a machine like the one there."""
    name: str
    reason: str
    words: int
    seconds: dict


def advise_solver(mesh, symmetric=True):
    """The SolverAdvice for a mesh as it is numbered; symmetric: the matrix is, as conjugate gradients want it."""
    heights = column_heights(mesh).astype(float)
    words, count = int(heights.sum()), len(heights)
    seconds = {"skyline": SKYLINE_SECONDS * float((heights ** 2).sum()), "cg": GRADIENTS_SECONDS * count ** (4.0 / 3.0)}
    most = max(block.elements.shape[1] for block in mesh.blocks)
    fits = words <= LARGEST_STORE
    if fits and (seconds["skyline"] <= max(seconds["cg"], 0.05) or all(block.dimension == 1 for block in mesh.blocks)):
        return SolverAdvice("skyline", f"the skyline store has {words} words: nothing is faster", words, seconds)
    if symmetric:
        why = f"{count} nodes; the skyline store would have {words} words" + ("" if fits else f", more than the {LARGEST_STORE} there can be")
        return SolverAdvice("cg", why, words, seconds)
    if most <= 8:
        return SolverAdvice("sparse", f"the skyline store would have {words} words", words, seconds)
    return SolverAdvice("skyline", "elements of more than 8 nodes are none for the sparse solver", words, seconds)
