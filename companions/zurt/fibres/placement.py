"""Random places of straight fibres in a box, overlapping or not.

Without overlap fibres are added one behind the other at random places where they fit (random sequential addition); when hardly any fits
any more, the rest is put in all the same and all are pushed apart, by half of what each pair overlaps, until none does; a push beside the
middle turns a fibre a little, too. Both treat the fibres as rods with round ends, so flat ends never meet.
"""
import itertools
from dataclasses import dataclass

import numpy

from .geometry import AT_ONCE, begin_finder, clip_to_box, close_pairs, close_pairs_of_two, find_close_pairs, segment_distances, unique_pairs

ROUNDS = 150
SWEEPS = 3000
STALL = 300  # sweeps in which the largest overlap must get less by a tenth
SKIN = 1.0  # radii
MOST_RETRIED = 2000
MANY = 2000  # rods, of which a search tree is kept while few of them move
SLACK = 1.0e-6  # of a radius: rounding of coordinates on cards must not make an overlap
OVERSHOOT = 1.5  # of what overlaps: pairs hold each other, and far fewer sweeps are needed than with 1
LEAST_SHARE = 0.03  # of a round that fits, below which adding ends


@dataclass
class Rods:
    """centres, directions: (n, 3). lengths, radii: (n,); length 0 is a ball."""
    centres: numpy.ndarray
    directions: numpy.ndarray
    lengths: numpy.ndarray
    radii: numpy.ndarray


@dataclass
class Region:
    """box: (3,) sizes from the origin, the last one 0 in the plane. period: as box, or None. gap: least distance of two walls. endless:
    fibres go through the box from face to face."""
    box: numpy.ndarray
    period: numpy.ndarray = None
    gap: float = 0.0
    endless: bool = False


def ends_of(rods):
    half = 0.5 * rods.lengths[:, None] * rods.directions
    return rods.centres - half, rods.centres + half


def draw_centres(random, rods, rows, region):
    """(len(rows), 3) centres. In a periodic box anywhere; else such that the axis meets the box grown by the radius, uniform in space for
    a given direction."""
    if region.period is not None:
        return random.random((len(rows), 3)) * region.box
    centres = numpy.empty((len(rows), 3))
    left = numpy.arange(len(rows))
    while len(left):
        p, length, r = rods.directions[rows[left]], rods.lengths[rows[left]], rods.radii[rows[left]]
        grow = r[:, None] * (region.box > 0.0)
        tried = draw_around(random, p, length, grow, region)
        half = 0.5 * length[:, None] * p
        hit = clip_to_box(tried - half, tried + half, -grow, region.box + grow)[2]
        centres[left[hit]] = tried[hit]
        left = left[~hit]
    return centres


def draw_around(random, p, lengths, grow, region):
    """(n, 3) centres, uniform in a prism along the direction that holds every fibre which can meet the box."""
    if not lengths.any():
        return -grow + random.random((len(p), 3)) * (region.box + 2.0 * grow)
    reach = 0.5 * numpy.linalg.norm(region.box) + 2.0 * grow.max()
    side = numpy.cross(p, numpy.eye(3)[numpy.abs(p).argmin(axis=1)])
    side /= numpy.linalg.norm(side, axis=1)[:, None]
    other = numpy.cross(p, side)
    along = random.uniform(-1.0, 1.0, len(p)) * (0.0 if region.endless else reach + 0.5 * lengths)
    first, second = random.uniform(-reach, reach, (2, len(p)))
    if region.box[2] == 0.0:
        side, second = numpy.column_stack([-p[:, 1], p[:, 0], 0.0 * p[:, 0]]), 0.0 * second
    return 0.5 * region.box + first[:, None] * side + second[:, None] * other + along[:, None] * p


def counted_segments(rods, region, more=0.0):
    """The parts of the axes that take part: all in a periodic box, else those in the box grown by the largest radius, and by more. Fibres that lie
    outside shrink to points far away, apart from each other."""
    starts, ends = ends_of(rods)
    if region.period is not None:
        return starts, ends
    grow = (rods.radii.max() + more) * (region.box > 0.0)
    starts, ends, hit = clip_to_box(starts, ends, -grow, region.box + grow)
    size = numpy.linalg.norm(region.box) + 2.0 * rods.radii.max()
    far = size * (10.0 + 2.0 * numpy.flatnonzero(~hit))
    starts[~hit], ends[~hit] = far[:, None], far[:, None]
    return starts, ends


@dataclass
class Contacts:
    """m pairs of rods: overlap (m,) bool, distance and the least one allowed (m,), way from the second to the first and the closest points
    on both axes (m, 3)."""
    overlap: numpy.ndarray
    distance: numpy.ndarray
    least: numpy.ndarray
    way: numpy.ndarray
    point: numpy.ndarray
    other: numpy.ndarray


def measure_pairs(pairs, a, b, radii, other_radii, region):
    """Contacts of pairs (first, second, shift of the second) of the segments a and b, (starts, ends) each."""
    first, second, shifts = pairs
    move = shifts * region.period if region.period is not None else 0.0
    distance, way, point = segment_distances(a[0][first], a[1][first], b[0][second] + move, b[1][second] + move)
    least = radii[first] + other_radii[second] + region.gap
    return Contacts(distance < least * (1.0 + SLACK), distance, least, way, point, point - way - move)


def measure_many(pairs, a, b, radii, other_radii, region):
    """(overlap, distance, least) of Contacts, (m,) each, of many pairs, a part of them at a time."""
    parts = [[], [], []]
    for begin in range(0, max(len(pairs[0]), 1), AT_ONCE):
        contacts = measure_pairs(tuple(part[begin:begin + AT_ONCE] for part in pairs), a, b, radii, other_radii, region)
        for part, values in zip(parts, (contacts.overlap, contacts.distance, contacts.least)):
            part.append(values)
    return tuple(numpy.concatenate(part) for part in parts)


def greedy_choice(free, first, second):
    """free (n,): which may be placed. Of each overlapping pair (first < second, by rising second) the later one goes when the earlier one
    stays."""
    for i, j in zip(first.tolist(), second.tolist()):
        if free[i] and free[j]:
            free[j] = False
    return free


def free_of_others(rods, rows, stand, region):
    """(len(rows),) whether each of the rows overlaps none that stands and none of the rows ahead of it that is free."""
    starts, ends = counted_segments(rods, region)
    mine, theirs = (starts[rows], ends[rows]), (starts[stand], ends[stand])
    radii = rods.radii[rows]
    reach = 2.0 * rods.radii.max() * (1.0 + SLACK) + region.gap
    free = numpy.ones(len(rows), bool)
    pairs = close_pairs_of_two(*mine, *theirs, reach, region.period)
    free[pairs[0][measure_many(pairs, mine, theirs, radii, rods.radii[stand], region)[0]]] = False
    pairs = close_pairs(*mine, reach, region.period)
    hit = measure_many(pairs, mine, mine, radii, radii, region)[0]
    own = pairs[0] == pairs[1]
    free[pairs[0][hit & own]] = False
    return greedy_choice(free, pairs[0][hit & ~own], pairs[1][hit & ~own])


def add_sequentially(random, rods, placed, region):
    """Tries random centres for those that are not placed, all of them a round, as if one behind the other. Changes rods.centres and placed."""
    for _ in range(ROUNDS):
        rows = numpy.flatnonzero(~placed)
        if len(rows) == 0:
            return
        rods.centres[rows] = draw_centres(random, rods, rows, region)
        free = free_of_others(rods, rows, numpy.flatnonzero(placed), region)
        placed[rows[free]] = True
        if free.sum() < LEAST_SHARE * len(rows):
            return


def kept_finder(finder, rods, reach, region):
    """The Finder of the rods, a new one where there is none yet or too many have moved far; None where rods are few, or the box so small
    that a search meets images of one rod."""
    slack = 2.0 * rods.radii.max()
    if len(rods.lengths) <= MANY:
        return None
    if finder is None or 8 * (finder.travelled > slack).sum() > len(rods.lengths):
        finder = begin_finder(*counted_segments(rods, region, slack), reach, slack, region.period)
    small = region.period is not None and reach + finder.spacing + slack > 0.25 * region.period[region.period > 0.0].min()
    return None if small else finder


def listed_pairs(pairs, a, stale, rods, reach, region, finder):
    """The list of pairs (first < second, shift of the second) that come within reach, those with a stale rod (n,) found anew."""
    rows = numpy.flatnonzero(stale)
    if 2 * len(rows) > len(stale):
        found = close_pairs(*a, reach, region.period)
    else:
        if finder is None:
            first, second, shifts = close_pairs_of_two(a[0][rows], a[1][rows], *a, reach, region.period)
        else:
            first, second, shifts = find_close_pairs(finder, rows, *a, reach, region.period)
        first, turned = rows[first], rows[first] > second
        found = unique_pairs(numpy.where(turned, second, first), numpy.where(turned, first, second),
                             numpy.where(turned[:, None], -shifts, shifts))
        kept = ~(stale[pairs[0]] | stale[pairs[1]])
        pairs = tuple(part[kept] for part in pairs)
    _, distance, least = measure_many(found, a, a, rods.radii, rods.radii, region)
    near = (found[0] != found[1]) & (distance < least + SKIN * rods.radii.mean())
    found = tuple(part[near] for part in found)
    return found if 2 * len(rows) > len(stale) else tuple(numpy.concatenate(parts) for parts in zip(pairs, found))


def push_apart(rods, region):
    """Moves and turns the rods until no pair overlaps. Returns the pairs (first, second) that still do when nothing gets better any more.

    Pairs that may meet are listed with a skin around the rods. A rod of which some point has moved by half of it is stale, and its pairs
    are found anew. Pairs whose rods both stayed in a sweep are not measured again. When no listed pair overlaps, all are listed anew, as
    a rod that comes into the box from aside was not in the list.
    """
    skin = SKIN * rods.radii.mean()
    reach = 2.0 * rods.radii.max() * (1.0 + SLACK) + region.gap
    way = numpy.full(len(rods.lengths), numpy.inf)
    moved, best, pairs, finder, checked = way > 0.0, numpy.inf, None, None, True
    for sweep in range(1, SWEEPS + 1):
        a = counted_segments(rods, region)
        stale = way > 0.5 * skin
        if stale.any():
            few = 2 * stale.sum() <= len(stale)
            finder = kept_finder(finder, rods, reach + skin, region) if few else None
            pairs = listed_pairs(pairs, a, stale, rods, reach + skin, region, finder)
            way[stale] = 0.0
            if not few:
                way[:] = 0.0
                moved[:] = True
        rows = numpy.flatnonzero(moved[pairs[0]] | moved[pairs[1]])
        near = tuple(part[rows] for part in pairs)
        contacts = measure_pairs(near, a, a, rods.radii, rods.radii, region)
        hit = contacts.overlap
        first, second = near[0][hit], near[1][hit]
        if not hit.any():
            if checked:
                break
            way[:], checked = numpy.inf, True
            continue
        contacts = Contacts(*(part[hit] for part in vars(contacts).values()))
        steps = push(rods, region, first, second, contacts)
        way += steps
        moved, checked = steps > 0.0, False
        if finder is not None:
            finder.travelled += steps
        if sweep % STALL == 0:
            worst = float((contacts.least - contacts.distance).max())
            if worst > 0.9 * best:
                break
            best = worst
    return first, second


def push(rods, region, first, second, contacts):
    """Moves each of these pairs apart by what it overlaps and a little more, across the first one where the axes meet. Returns
    (n,) the largest move of any point of each rod."""
    p = rods.directions[first]
    across = numpy.column_stack([-p[:, 1], p[:, 0], 0.0 * p[:, 0]])
    across[~across.any(axis=1)] = (1.0, 0.0, 0.0)
    across /= numpy.linalg.norm(across, axis=1)[:, None]
    meet = (contacts.distance < 1.0e-9 * contacts.least)[:, None]
    way = numpy.where(meet, across, contacts.way / numpy.maximum(contacts.distance, 1.0e-300)[:, None])
    step = (0.5 * OVERSHOOT * (contacts.least * (1.0 + 2.0 * SLACK) - contacts.distance))[:, None] * way
    rows = numpy.concatenate([first, second])
    steps = numpy.concatenate([step, -step])
    arms = numpy.concatenate([contacts.point, contacts.other]) - rods.centres[rows]
    stiff = rods.lengths if region.period is not None else numpy.minimum(rods.lengths, numpy.linalg.norm(region.box))
    return move_rods(rods, rows, steps, (arms * rods.directions[rows]).sum(1), stiff)


def move_rods(rods, rows, steps, arms, stiff):
    """Moves the point at a place along each of these rods (arms, from the centre) by a step (m, 3), as a rigid rod would: partly all of
    it, partly by a turn. stiff (n,): the length that resists turning. Returns (n,) the largest move of any point of each rod."""
    length = stiff[rows]
    square = numpy.where(length > 0.0, length, 1.0) ** 2
    share = 1.0 / (1.0 + 12.0 * arms**2 / square)
    turn = numpy.where(length > 0.0, 12.0 * arms / square, 0.0) * share
    count = len(rods.lengths)

    def summed(values):
        return numpy.column_stack([numpy.bincount(rows, values[:, axis], count) for axis in range(3)])

    move, turned = summed(share[:, None] * steps), summed(turn[:, None] * steps)
    turned -= (turned * rods.directions).sum(1)[:, None] * rods.directions
    steps = numpy.linalg.norm(move, axis=1) + 0.5 * stiff * numpy.linalg.norm(turned, axis=1)
    rods.centres += move
    rods.directions += turned
    size = numpy.linalg.norm(rods.directions, axis=1)
    rods.directions /= numpy.where(size > 0.0, size, 1.0)[:, None]
    return steps


def meets_itself(rods, region):
    """(n,) whether a rod of a periodic box shares volume with an image of its own: one is the other moved along by some periods. Flat ends
    that touch, of a fibre as long as the box, are none."""
    found = numpy.zeros(len(rods.lengths), bool)
    if region.period is None:
        return found
    axes = region.box > 0.0
    thick = 2.0 * rods.radii + region.gap
    reach = numpy.where(axes, numpy.ceil((rods.lengths + thick).max(initial=0.0) / numpy.where(axes, region.period, 1.0)), 0.0).astype(int)
    for shift in itertools.product(*(range(-count, count + 1) for count in reach)):
        if shift > (0, 0, 0):  # of two opposite ones the one
            move = numpy.array(shift) * region.period
            along = numpy.abs(rods.directions @ move)
            across = numpy.sqrt(numpy.maximum(move @ move - along**2, 0.0))
            found |= (along < rods.lengths - 0.1 * rods.radii) & (across < thick * (1.0 - SLACK))
    return found


def place_apart(random, rods, placed, region):
    """Places the rods that are not placed without overlap, moving the others where it must. Returns (n,) which of them have a place: all,
    when it could be done. Changes the rods and placed."""
    add_sequentially(random, rods, placed, region)
    kept = numpy.arange(len(rods.lengths))
    while not placed.all():
        part = Rods(*(values[kept] for values in vars(rods).values()))
        first, second = push_apart(part, region)
        rods.centres[kept], rods.directions[kept] = part.centres, part.directions
        if len(first) == 0:
            placed[:] = False
            placed[kept[~meets_itself(part, region)]] = True
            break
        kept = kept[remaining(len(kept), first, second)]
    return placed


def remaining(count, first, second):
    """Rows (m,) to go on with where not all fit: without one in twelve, those that overlap most others; of many rods those that fit
    as they lie."""
    if count > MOST_RETRIED:
        order = numpy.argsort(second, kind="stable")
        return numpy.flatnonzero(greedy_choice(numpy.ones(count, bool), first[order], second[order]))
    crowd = numpy.bincount(numpy.concatenate([first, second]), minlength=count)
    return numpy.sort(numpy.argsort(crowd, kind="stable")[:count - max(1, count // 12)])
