"""Volume fractions of sets of fibres in their box.

Without closed form they are integrals over the box by scrambled Sobol points, in replicates whose spread gives the standard error.
"""
from dataclasses import dataclass

import numpy
from scipy.spatial import cKDTree
from scipy.stats import qmc

from .geometry import clip_to_box, images_in_box, piece_spacing, pieces_of
from .model import BALLS, LINES, Fibres, dimension_of, own_volumes, volume_of_box

REPLICATES = 16
POINTS_AT_ONCE = 1 << 15


@dataclass
class Fraction:
    """value and its standard error, 0 where it is exact."""
    value: float
    error: float


def points_in_box(box, exponent, seed):
    """Yields REPLICATES arrays (2**exponent, 3) of points in the box."""
    dimension = dimension_of(box)
    for replicate in range(REPLICATES):
        sobol = qmc.Sobol(dimension, scramble=True, seed=numpy.random.Generator(numpy.random.PCG64([seed, replicate])))
        points = numpy.zeros((1 << exponent, 3))
        points[:, :dimension] = sobol.random_base2(exponent) * box[:dimension]
        yield points


def near_fibres(points, tree, owner, reach, fibres):
    """(point, fibre) pairs, each once, by rising point, then fibre: fibres with a piece within reach. tree: of the pieces' middles."""
    near = cKDTree(points).sparse_distance_matrix(tree, reach, output_type="ndarray")
    keys = numpy.unique(near["i"].astype(numpy.int64) * fibres + owner[near["j"]])
    return keys // fibres, keys % fibres


def place_along(points, starts, ends):
    """For m pairs of point and fibre: (distance from the line, place along it, its length). Balls have length 0 and their distance."""
    way = ends - starts
    length = numpy.linalg.norm(way, axis=1)
    to = points - starts
    along = (to * way).sum(1) / numpy.where(length > 0.0, length, 1.0)
    across = numpy.sqrt(numpy.maximum((to * to).sum(1) - along**2, 0.0))
    return across, along, length


def inside_any(points, fibres, tree, owner, reach):
    """(m,) whether each point lies in a fibre."""
    rows, numbers = near_fibres(points, tree, owner, reach, len(fibres.diameters))
    across, along, length = place_along(points[rows], fibres.starts[numbers], fibres.ends[numbers])
    hit = (across < 0.5 * fibres.diameters[numbers]) & (along >= 0.0) & (along <= length)
    inside = numpy.zeros(len(points), bool)
    inside[rows[hit]] = True
    return inside


def inside_nearest(points, fibres, tree, owner, reach):
    """(m,) whether each point lies in a fibre as the program decides: in that with the nearest axis, fibre by fibre in the order of the
    cards. Past an end of a line counts the radius of the nearest fibre so far plus the way from the end."""
    count = len(points)
    rows, numbers = near_fibres(points, tree, owner, reach, len(fibres.diameters))
    across, along, length = place_along(points[rows], fibres.starts[numbers], fibres.ends[numbers])
    over = numpy.where(along < 0.0, -along, numpy.maximum(along - length, 0.0))
    if fibres.shape == BALLS:
        over = numpy.zeros_like(over)
    nearest, radius = numpy.full(count, numpy.inf), numpy.full(count, numpy.nan)
    rank = numpy.arange(len(rows)) - numpy.searchsorted(rows, rows)
    for turn in range(int(rank.max(initial=-1)) + 1):
        now = numpy.flatnonzero(rank == turn)
        at, own = rows[now], 0.5 * fibres.diameters[numbers[now]]
        best = numpy.where(numpy.isnan(radius[at]), own, radius[at])
        to_end = numpy.hypot(across[now], over[now])
        distance = numpy.where(over[now] > 0.0, best + numpy.where(best <= across[now], to_end, over[now]), across[now])
        taken = nearest[at] - distance > 1.0e-10
        nearest[at[taken]], radius[at[taken]] = distance[taken], own[taken]
    return nearest < numpy.nan_to_num(radius)


def integrate(fibres, inside, exponent, seed):
    """The mean of inside(...) over the box, a Fraction."""
    if len(fibres.diameters) == 0:
        return Fraction(0.0, 0.0)
    radius = 0.5 * float(fibres.diameters.max())
    spacing = piece_spacing(fibres.starts, fibres.ends, 2.0 * radius)
    middles, owner = pieces_of(fibres.starts, fibres.ends, spacing)
    tree = cKDTree(middles)
    reach = 1.5 * radius + 0.5 * spacing
    means = []
    for points in points_in_box(fibres.box, exponent, seed):
        parts = [points[first:first + POINTS_AT_ONCE] for first in range(0, len(points), POINTS_AT_ONCE)]
        means.append(sum(int(inside(part, fibres, tree, owner, reach).sum()) for part in parts) / len(points))
    return Fraction(float(numpy.mean(means)), float(numpy.std(means, ddof=1) / numpy.sqrt(REPLICATES)))


def bodies_in_box(fibres):
    """All fibres and images of fibres whose body may reach into the box, cut at twice their radius outside of it."""
    margin = float(fibres.diameters.max()) * (fibres.box > 0.0)
    low, high = -margin, fibres.box + margin
    if fibres.period is not None:
        starts, ends, rows = images_in_box(fibres.starts, fibres.ends, fibres.period, low, high)
    else:
        starts, ends, rows = fibres.starts, fibres.ends, numpy.arange(len(fibres.diameters))
    if fibres.shape == LINES:
        starts, ends, hit = clip_to_box(starts, ends, low, high)
        starts, ends, rows = starts[hit], ends[hit], rows[hit]
    return Fibres(starts, ends, fibres.diameters[rows], fibres.shape, fibres.box)


def volume_fraction(fibres, exponent=14, seed=1):
    """Share of the box that the fibres fill, those outside of it cut away, what two of them share counted once: a Fraction. Exact for
    periodic fibres that don't overlap, else from 16 times 2**exponent points."""
    if len(fibres.diameters) == 0:
        return Fraction(0.0, 0.0)
    if fibres.period is not None and not fibres.overlapping:
        return Fraction(float(own_volumes(fibres).sum()) / volume_of_box(fibres.box), 0.0)
    return integrate(bodies_in_box(fibres), inside_any, exponent, seed)


def fraction_as_seen(written, exponent=14, seed=1):
    """Share of the box that the program takes for fibres when it reads them as written; see inside_nearest."""
    return integrate(written, inside_nearest, exponent, seed)
