"""Straight segments in numbers: clipping, images in a periodic box, distances, and which of them come close.

Segments are two arrays (n, 3), starts and ends. A search cuts them into pieces no longer than a spacing and asks a tree of the pieces'
middles: so slender fibres cost by their length, not by the box around them.
"""
import itertools
from dataclasses import dataclass

import numpy
from scipy.spatial import cKDTree

MOST_PIECES = 4_000_000
AT_ONCE = 1 << 18  # pairs of pieces, of which many mean the same pair of segments


def clip_to_box(starts, ends, low, high):
    """What of each segment lies in the box from low to high, (3,) each: (starts, ends, hit); hit (n,) is False for those outside. A
    segment without length is hit when its point lies in the box."""
    way = ends - starts
    with numpy.errstate(divide="ignore", invalid="ignore"):
        first = (low - starts) / way
        second = (high - starts) / way
    along = numpy.abs(way) > 1.0e-300
    inside = (starts >= low) & (starts <= high)
    near = numpy.where(along, numpy.minimum(first, second), numpy.where(inside, -numpy.inf, numpy.inf))
    far = numpy.where(along, numpy.maximum(first, second), numpy.where(inside, numpy.inf, -numpy.inf))
    begin = numpy.maximum(near.max(axis=1), 0.0)
    end = numpy.minimum(far.min(axis=1), 1.0)
    hit = end >= begin
    begin, end = numpy.where(hit, begin, 0.0), numpy.where(hit, end, 0.0)
    return starts + begin[:, None] * way, starts + end[:, None] * way, hit


def images_in_box(starts, ends, period, low, high):
    """All periodic images of the segments that meet the box from low to high: (starts, ends, row of the segment). period: (3,), 0 along
    an axis without one."""
    least, most = numpy.minimum(starts, ends), numpy.maximum(starts, ends)
    counted = numpy.where(period > 0.0, period, 1.0)
    below = numpy.where(period > 0.0, numpy.ceil((low - most) / counted), 0.0).astype(int)
    above = numpy.where(period > 0.0, numpy.floor((high - least) / counted), 0.0).astype(int)
    ranges = [range(below[:, axis].min(), above[:, axis].max() + 1) for axis in range(3)]
    found = ([], [], [])
    for shift in itertools.product(*ranges):
        rows = numpy.flatnonzero(((below <= shift) & (above >= shift)).all(axis=1))
        moved = numpy.array(shift) * period
        hit = clip_to_box(starts[rows] + moved, ends[rows] + moved, low, high)[2]
        rows = rows[hit]
        for part, value in zip(found, (starts[rows] + moved, ends[rows] + moved, rows)):
            part.append(value)
    order = numpy.argsort(numpy.concatenate(found[2]), kind="stable")
    return tuple(numpy.concatenate(part)[order] for part in found)


def pieces_of(starts, ends, spacing):
    """(middles (m, 3), owner (m,)) of equal pieces of each segment, none longer than spacing."""
    length = numpy.linalg.norm(ends - starts, axis=1)
    count = numpy.maximum(1, numpy.ceil(length / spacing)).astype(numpy.int64)
    owner = numpy.repeat(numpy.arange(len(count)), count)
    place = numpy.arange(len(owner)) - numpy.repeat(numpy.cumsum(count) - count, count)
    fraction = (place + 0.5) / count[owner]
    return starts[owner] + fraction[:, None] * (ends - starts)[owner], owner


def piece_spacing(starts, ends, diameter):
    """A spacing that keeps both the number of pieces and that of their neighbours small."""
    total = float(numpy.linalg.norm(ends - starts, axis=1).sum())
    return max(2.0 * diameter, total / MOST_PIECES)


def segment_distances(a0, a1, b0, b1):
    """Distances of m pairs of segments, (m, 3) arrays: (distance (m,), way from b to a (m, 3), closest points on a (m, 3))."""
    u, v, w = a1 - a0, b1 - b0, a0 - b0
    uu, vv, uv = (u * u).sum(1), (v * v).sum(1), (u * v).sum(1)
    uw, vw = (u * w).sum(1), (v * w).sum(1)
    cross = uu * vv - uv * uv
    with numpy.errstate(divide="ignore", invalid="ignore"):
        s = numpy.clip(numpy.where(cross > 1.0e-12 * uu * vv, (uv * vw - uw * vv) / cross, 0.0), 0.0, 1.0)
        t = numpy.clip(numpy.where(vv > 0.0, (uv * s + vw) / vv, 0.0), 0.0, 1.0)
        s = numpy.clip(numpy.where(uu > 0.0, (t * uv - uw) / uu, 0.0), 0.0, 1.0)
    between = w + s[:, None] * u - t[:, None] * v
    return numpy.sqrt((between * between).sum(1)), between, a0 + s[:, None] * u


def wrapped(points, period):
    """The points' images in the periodic box [0, period); axes without a period stay."""
    periodic = period > 0.0
    counted = numpy.where(periodic, period, 1.0)
    inside = points - numpy.floor(points / counted) * counted
    inside = numpy.where(inside >= counted, 0.0, inside)
    return numpy.where(periodic, inside, points)


def tree_of(middles, period):
    return cKDTree(middles) if period is None else cKDTree(wrapped(middles, period), boxsize=period)


def unique_pairs(first, second, shifts):
    """Pairs without repetition: (first, second, shifts (m, 3) in whole periods), by rising second, then first."""
    if len(first) == 0:
        return first, second, shifts
    most = int(numpy.abs(shifts).max())
    key = second.astype(numpy.int64) * (int(first.max()) + 1) + first
    for axis in range(3):
        key = key * (2 * most + 1) + (shifts[:, axis].astype(numpy.int64) + most)
    rows = numpy.unique(key, return_index=True)[1]
    return first[rows], second[rows], shifts[rows]


def shifts_between(a, b, period):
    """(m, 3) whole periods, short integers, that bring points b next to points a."""
    if period is None:
        return numpy.zeros((len(a), 3), numpy.int16)
    counted = numpy.where(period > 0.0, period, 1.0)
    return numpy.where(period > 0.0, numpy.round((a - b) / counted), 0.0).astype(numpy.int16)


def owners_of_pairs(first, second, pairs, period):
    """Pairs of segments without repetition from pairs of pieces. first, second: (middles, owner) of the pieces of both sets. pairs: places of
    the pieces, two arrays (m,)."""
    parts = []
    for begin in range(0, len(pairs[0]), AT_ONCE):
        i, j = (part[begin:begin + AT_ONCE] for part in pairs)
        owners = first[1][i].astype(numpy.int32), second[1][j].astype(numpy.int32)
        parts.append(unique_pairs(*owners, shifts_between(first[0][i], second[0][j], period)))
    return joined_pairs(parts)


def joined_pairs(parts):
    """Pairs of several lists without repetition."""
    if not parts:
        return numpy.zeros(0, numpy.int32), numpy.zeros(0, numpy.int32), numpy.zeros((0, 3), numpy.int16)
    return parts[0] if len(parts) == 1 else unique_pairs(*(numpy.concatenate(each) for each in zip(*parts)))


def spacing_of_search(starts, ends, reach, period):
    """Length of pieces for a search."""
    spacing = piece_spacing(starts, ends, reach)
    return spacing if period is None else min(spacing, 0.25 * period[period > 0.0].min())


def close_pairs(starts, ends, reach, period=None):
    """Pairs of segments that may be closer than reach: (first, second, shift in whole periods of the second one); first <= second, a
    segment with an image of its own among them when there is a period."""
    spacing = spacing_of_search(starts, ends, reach, period)
    pieces = pieces_of(starts, ends, spacing)
    pairs = tree_of(pieces[0], period).query_pairs(reach + spacing, output_type="ndarray")
    first, second, shifts = owners_of_pairs(pieces, pieces, (pairs[:, 0], pairs[:, 1]), period)
    turned = first > second
    first, second = numpy.where(turned, second, first), numpy.where(turned, first, second)
    shifts = numpy.where(turned[:, None], -shifts, shifts)
    keep = (first != second) | shifts.any(axis=1)
    return unique_pairs(first[keep], second[keep], shifts[keep])


def close_pairs_of_two(starts, ends, others, other_ends, reach, period=None):
    """The same between two sets: (row in the first, row in the second, shift of the second)."""
    if len(starts) == 0 or len(others) == 0:
        return joined_pairs([])
    spacing = spacing_of_search(others, other_ends, reach, period)
    mine, theirs = pieces_of(starts, ends, spacing), pieces_of(others, other_ends, spacing)
    near = tree_of(mine[0], period).sparse_distance_matrix(tree_of(theirs[0], period), reach + spacing, output_type="ndarray")
    return owners_of_pairs(mine, theirs, (near["i"], near["j"]), period)


@dataclass
class Finder:
    """Pieces of n segments where they once were, for searches while few of them move. pieces: (middles, owner). spacing: of the pieces. slack:
    how far a segment may have moved. travelled: (n,) how far any point of each has moved since then."""
    pieces: tuple
    tree: cKDTree
    spacing: float
    slack: float
    travelled: numpy.ndarray


def begin_finder(starts, ends, reach, slack, period):
    """Finder of segments as they lie now."""
    spacing = spacing_of_search(starts, ends, reach, period)
    pieces = pieces_of(starts, ends, spacing)
    return Finder(pieces, tree_of(pieces[0], period), spacing, slack, numpy.zeros(len(starts)))


def find_close_pairs(finder, rows, starts, ends, reach, period):
    """What close_pairs_of_two finds of some rows of the segments as they lie now and all of them. Those that have moved further than the
    slack are searched by themselves."""
    mine = pieces_of(starts[rows], ends[rows], finder.spacing)
    near = tree_of(mine[0], period).sparse_distance_matrix(finder.tree, reach + finder.spacing + finder.slack, output_type="ndarray")
    stay = finder.travelled[finder.pieces[1][near["j"]]] <= finder.slack
    found = owners_of_pairs(mine, finder.pieces, (near["i"][stay], near["j"][stay]), period)
    gone = numpy.flatnonzero(finder.travelled > finder.slack).astype(numpy.int32)
    first, second, shifts = close_pairs_of_two(starts[rows], ends[rows], starts[gone], ends[gone], reach, period)
    return joined_pairs([found, (first, gone[second], shifts)])
