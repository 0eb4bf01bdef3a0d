"""Edges and faces that elements share, each with one number."""
import numpy

from .families import FAMILIES


def _number_rows(keys):
    """Numbers of equal rows of two columns of integers: (k,) numbers from zero, and the place of one of each."""
    order = numpy.lexsort((keys[:, 1], keys[:, 0]))
    ordered = keys[order]
    new = numpy.concatenate([[True], (ordered[1:] != ordered[:-1]).any(axis=1)]) if len(keys) else numpy.empty(0, bool)
    number = numpy.empty(len(keys), numpy.int64)
    number[order] = numpy.cumsum(new) - 1
    return number, order[new]


def _divide(numbers, shapes):
    """The parts of one array, one of each shape."""
    ends = numpy.cumsum([rows * columns for rows, columns in shapes])
    return [part.reshape(shape) for part, shape in zip(numpy.split(numbers, ends[:-1]), shapes)] if shapes else []


def number_edges(parts):
    """For each Cells (m, edges) numbers of its edges; and (edges, 2) their ends, the lower row first."""
    pairs, shapes = [], []
    for cells in parts:
        local = numpy.array(FAMILIES[cells.family].edges)
        pairs.append(numpy.sort(cells.corners[:, local], axis=2).reshape(-1, 2))
        shapes.append((len(cells), len(local)))
    pairs = numpy.concatenate(pairs)
    number, first = _number_rows(pairs)
    return _divide(number, shapes), pairs[first]


def number_faces(parts, points):
    """For each Cells (m, faces) numbers of its faces, a surface being its own; and (faces, 4) their corners, rising, the lowest one twice
    for a triangle."""
    found, shapes = [], []
    for cells in parts:
        faces = FAMILIES[cells.family].faces
        rows = numpy.empty((len(cells), len(faces), 4), numpy.int64)
        for place, corners in enumerate(faces):
            own = cells.corners[:, list(corners)]
            rows[:, place] = own if len(corners) == 4 else numpy.concatenate([own, own.min(axis=1)[:, None]], axis=1)
        found.append(numpy.sort(rows, axis=2).reshape(-1, 4))
        shapes.append((len(cells), len(faces)))
    corners = numpy.concatenate(found)
    keys = numpy.stack([corners[:, 0] * (points + 1) + corners[:, 1], corners[:, 2] * (points + 1) + corners[:, 3]], axis=1)
    number, first = _number_rows(keys)
    return _divide(number, shapes), corners[first]


def number_pairs(left, right, count):
    """Numbers of the pairs (left, right) of two arrays of one shape, right below count; and how many there are."""
    values, number = numpy.unique(left.ravel() * count + right.ravel(), return_inverse=True)
    return number.reshape(left.shape), len(values)
