"""Random fibres by a recipe: draws them, places them, and adds or drops some until the volume fraction is met."""
import numpy

from ..errors import ZurtError
from .diameters import class_diameters, class_limits, draw_diameters
from .geometry import clip_to_box
from .model import BALLS, LINES, Fibres, cross_sections, dimension_of, select, volume_of_box
from .orientation import draw_directions, match_tensor
from .placement import Region, Rods, draw_centres, ends_of, meets_itself, place_apart
from .volume import volume_fraction

PASSES = 16
MOST_FIBRES = 5_000_000


def generate(recipe):
    """Fibres of a Recipe; the same for the same seed. A ZurtError tells what was reached when the fraction can't be."""
    random = numpy.random.Generator(numpy.random.PCG64(recipe.seed))
    region = region_of(recipe)
    draw = sampler(random, recipe, region)
    if recipe.number is not None:
        return as_fibres(*grow(random, empty_rods(), draw(recipe.number), recipe, region), recipe, region)
    return meet_fraction(random, recipe, region, draw)


def region_of(recipe):
    box = numpy.array(recipe.box + [0.0] * (3 - len(recipe.box)))
    period = numpy.where(box > 0.0, box, box.max()) if recipe.periodic else None
    return Region(box, period, recipe.gap, recipe.length == "through")


def empty_rods():
    return Rods(numpy.zeros((0, 3)), numpy.zeros((0, 3)), numpy.zeros(0), numpy.zeros(0))


def sampler(random, recipe, region):
    """A function that draws so many rods without places."""
    law = recipe.diameter
    limits, classes = None, None
    if law["distribution"] != "constant":
        limits, sample = class_limits(random, law, recipe.classes)
        classes = class_diameters(limits, sample)

    def draw(count):
        diameters = draw_diameters(random, law, count)
        if classes is not None:
            diameters = classes[numpy.searchsorted(limits, diameters)]
        if recipe.shape != LINES:
            return Rods(numpy.zeros((count, 3)), numpy.zeros((count, 3)), numpy.zeros(count), 0.5 * diameters)
        length = 4.0 * (numpy.linalg.norm(region.box) + diameters.max()) if region.endless else recipe.length
        rods = Rods(numpy.zeros((count, 3)), numpy.zeros((count, 3)), numpy.full(count, length), 0.5 * diameters)
        rods = with_directions(random, rods, recipe.tensor, region)
        return rods if recipe.overlap else without_own_images(random, rods, recipe.tensor, region)
    return draw


def with_directions(random, rods, tensor, region):
    """The rods with directions whose mean of p p by length in the box is the tensor. In a box that is not periodic a direction is the more
    frequent the larger the box looks along it, as of fibres that are spread evenly over all space."""
    rows = numpy.arange(len(rods.lengths))
    while len(rows):
        rods.directions[rows] = draw_directions(random, tensor, len(rows))
        if region.period is not None:
            break
        size = seen_size(rods, region)
        rows = rows[random.random(len(rows)) * 1.01 * largest_size(rods, region)[rows] > size[rows]]
    for _ in range(4 if region.period is None else 1):
        rods.directions = match_tensor(rods.directions, mean_lengths(rods, region), tensor)
    return rods


def without_own_images(random, rods, tensor, region):
    """The rods with other directions for those that would meet images of their own, as long as there are such directions."""
    for _ in range(100):
        rows = numpy.flatnonzero(meets_itself(rods, region))
        if len(rows) == 0:
            break
        rods.directions[rows] = draw_directions(random, tensor, len(rows))
    return rods


def faces_of(rods, region):
    """(n, 3) faces, or edges in the plane, of the box grown by the radii, and its volumes (n,)."""
    b = region.box + 2.0 * rods.radii[:, None] * (region.box > 0.0)
    if dimension_of(region.box) == 2:
        return numpy.column_stack([b[:, 1], b[:, 0], 0.0 * b[:, 0]]), b[:, 0] * b[:, 1]
    return numpy.column_stack([b[:, 1] * b[:, 2], b[:, 0] * b[:, 2], b[:, 0] * b[:, 1]]), numpy.prod(b, axis=1)


def seen_size(rods, region):
    """(n,) volume of the places of a centre at which the axis meets the grown box; for endless fibres an area."""
    faces, bulk = faces_of(rods, region)
    shadow = (numpy.abs(rods.directions) * faces).sum(1)
    return shadow if region.endless else bulk + shadow * rods.lengths


def largest_size(rods, region):
    """(n,) the largest that seen_size can be for any direction."""
    faces, bulk = faces_of(rods, region)
    shadow = numpy.linalg.norm(faces, axis=1)
    return shadow if region.endless else bulk + shadow * rods.lengths


def mean_lengths(rods, region):
    """(n,) length in the box that the axes have on the average."""
    if region.period is not None:
        return rods.lengths
    return volume_of_box(region.box) * (1.0 if region.endless else rods.lengths) / seen_size(rods, region)


def stacked(rods, others):
    return Rods(*(numpy.concatenate([mine, new]) for mine, new in zip(vars(rods).values(), vars(others).values())))


def grow(random, rods, others, recipe, region):
    """(rods with the others, (n,) which of them have a place)."""
    together = stacked(rods, others)
    rows = numpy.arange(len(rods.lengths), len(together.lengths))
    if recipe.overlap:
        together.centres[rows] = draw_centres(random, together, rows, region)
        return together, numpy.ones(len(together.lengths), bool)
    placed = numpy.arange(len(together.lengths)) < len(rods.lengths)
    return together, place_apart(random, together, placed, region)


def as_fibres(rods, placed, recipe, region):
    """The Fibres that have a place; an error unless all have when their number was asked for."""
    starts, ends = ends_of(rods)
    shape = LINES if recipe.shape == LINES else BALLS
    fibres = select(Fibres(starts, ends, 2.0 * rods.radii, shape, region.box, region.period, recipe.overlap), placed)
    if recipe.number is not None and not placed.all():
        raise jammed(recipe, fibres, f"{recipe.number} fibres do not fit")
    return fibres


def jammed(recipe, fibres, what):
    reached = volume_fraction(fibres)
    return ZurtError(f"{what} without overlap: {len(fibres.diameters)} fibres, a volume fraction of {reached.value:.4f}, could be "
                     "placed; lower the fraction or gap, take shorter or more aligned fibres, or overlap = true", recipe.file)


def nominal(fraction, overlap):
    """The sum of the fibres' own volumes, in volumes of the box, that fill the fraction."""
    return -numpy.log1p(-fraction) if overlap else fraction


def expected_volume(rods, region):
    """(n,) volume in the box that rods like these have on the average, wherever they are placed by draw_centres."""
    dimension = dimension_of(region.box)
    box, volume = region.box, volume_of_box(region.box)
    if not rods.lengths.any():
        d = 2.0 * rods.radii
        whole = 0.25 * numpy.pi * d**2 if dimension == 2 else numpy.pi / 6.0 * d**3
        return whole if region.period is not None else whole * volume / numpy.prod(box[:dimension] + d[:, None], axis=1)
    return cross_sections(2.0 * rods.radii, dimension) * mean_lengths(rods, region)


def draw_amount(draw, amount, region):
    """Rods whose expected volume in the box sums up to the amount, to half of the last one; at least one."""
    trial = expected_volume(draw(1000), region)
    count = int(1.1 * amount / trial.mean() + 4.0 * trial.std() * numpy.sqrt(amount / trial.mean()) / trial.mean() + 20)
    if count > MOST_FIBRES:
        raise ZurtError(f"this takes more than {MOST_FIBRES} fibres: take a smaller box or thicker fibres")
    rods = draw(count)
    sums = numpy.cumsum(expected_volume(rods, region))
    number = max(1, int(numpy.abs(sums - amount).argmin()) + 1)
    return Rods(*(part[:number] for part in vars(rods).values()))


def without_expelled(rods, region):
    """The rods but those that were pushed out of the box."""
    if region.period is not None:
        return rods
    grow = rods.radii[:, None] * (region.box > 0.0)
    stay = clip_to_box(*ends_of(rods), -grow, region.box + grow)[2]
    return Rods(*(part[stay] for part in vars(rods).values()))


def meet_fraction(random, recipe, region, draw):
    """Fibres whose volume fraction is the wanted one within half a fibre, or within twice its standard error."""
    box = volume_of_box(region.box)
    wanted = nominal(recipe.volume_fraction, recipe.overlap)
    rods, placed = grow(random, empty_rods(), draw_amount(draw, wanted * box, region), recipe, region)
    best = (numpy.inf, None)
    for _ in range(PASSES):
        fibres = as_fibres(rods, placed, recipe, region)
        reached = volume_fraction(fibres, 12, recipe.seed)
        off = recipe.volume_fraction - reached.value
        one = float(expected_volume(rods, region).mean()) if len(rods.lengths) else one
        best = min(best, (abs(off), fibres), key=lambda pair: pair[0])
        met = abs(off) <= max(0.5 * one / box, 2.0 * reached.error)
        if met or not placed.all():
            break
        rods = without_expelled(rods, region)
        missing = (wanted - nominal(reached.value, recipe.overlap)) * box
        if missing > 0.0:
            rods, placed = grow(random, rods, draw_amount(draw, missing, region), recipe, region)
        else:
            keep = len(rods.lengths) - max(1, int(round(-missing / one)))
            rods = Rods(*(part[:keep] for part in vars(rods).values()))
            placed = numpy.ones(keep, bool)
    if len(best[1].diameters) == 0 and placed.all():
        raise ZurtError(f"volume_fraction: {recipe.volume_fraction:g} is less than half a fibre, one is {one / box:.3g}", recipe.file)
    if best[0] > max(0.02 * recipe.volume_fraction, 1.5 * one / box):
        raise jammed(recipe, best[1], f"a volume fraction of {recipe.volume_fraction:g} can't be reached")
    if not met:
        best[1].notes.append(f"the volume fraction that was asked for is {recipe.volume_fraction:g}; this is the nearest that was found")
    return best[1]
