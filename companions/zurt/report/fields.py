"""Fields of the written steps for pictures and profiles: from the files for ParaView where there are any, else from the graphics file, else
concentrations of the listing alone."""
import os
from dataclasses import dataclass

import numpy

from ..errors import ZurtError
from ..results import graphics, listing, vtk_files

MOST_PLANES = 240
BINS = 60


@dataclass
class Fields:
    """points: (n, 3) places of the nodes, or None. cells: [(shape, (m, nodes))]. concentration: (n,), NaN at nodes in fibres under the
    mesh. nodes: (n,) False at points that are no nodes of the mesh. vectors: name (flux,
    coefficient) to (n, 3), those that hold something. path: of the .vtu it is from, or None. source: where from, in words."""
    time: float
    points: numpy.ndarray
    cells: list
    concentration: numpy.ndarray
    nodes: numpy.ndarray
    vectors: dict
    path: str
    source: str


def written_steps(run, problem):
    """[(time, function that reads its Fields)] of a problem, from zero, in order of time."""
    if problem < len(run.files.series) and run.files.series[problem]:
        return [(time, lambda path=path: _of_vtu(path)) for time, path in vtk_files.read_series(run.files.series[problem])]
    if run.files.graphics and os.path.getsize(run.files.graphics) > 0 and problem < len(run.graphics) and run.graphics[problem].places:
        found = run.graphics[problem]
        return [(place.time, lambda place=place: _of_graphics(run, found, place)) for place in found.places]
    if problem < len(run.listing.problems):
        listed = run.listing.problems[problem]
        return [(step.time, lambda step=step: _of_listing(run, listed, step)) for step in listed.steps]
    return []


def _of_vtu(path):
    step = vtk_files.read_vtu(path)
    if "concentration" not in step.fields or "node" not in step.fields:
        raise ZurtError("the file has no concentrations: it is none of ZUR-T's", path)
    vectors = {name: step.fields[name] for name in ("flux", "coefficient") if name in step.fields and numpy.any(step.fields[name])}
    return Fields(step.time, step.points, step.cells, step.fields["concentration"], step.fields["node"] > 0, vectors, path, "the files for ParaView")


def _of_graphics(run, problem, place):
    step = graphics.read_step(run.files.graphics, problem, place)
    vectors = {name: step.fields[name] for name in ("flux", "coefficient") if name in step.fields and numpy.any(step.fields[name])}
    cells = [(block.kind, block.elements) for block in problem.blocks]
    values = step.fields["concentration"]
    return Fields(step.time, problem.points, cells, values, numpy.ones(len(values), bool), vectors, None, "the graphics file")


def _of_listing(run, listed, step):
    values = listing.step_values(run.listing, step)
    first = listed.steps[0]
    if step is listed.steps[-1] and step is not first and not listed.complete:  # of a run that was killed while it wrote
        if len(values["concentration"]) < len(listing.step_values(run.listing, first)["concentration"]):
            raise ZurtError("the table of the last step is not complete", run.files.listing)
    return Fields(step.time, None, [], values["concentration"], numpy.ones(len(values["concentration"]), bool), {}, None, "the listing")


def header_of(run):
    """Fields of the deck's header cards; none where the deck is not known or faulty, which is what a report may be about."""
    try:
        return run.header
    except ZurtError:
        return {}


@dataclass
class Profile:
    """Means over planes (or slices) across an axis. axis: 0, 1, 2. at, mean, low, high: (k,). planes: False where slices were taken."""
    axis: int
    at: numpy.ndarray
    mean: numpy.ndarray
    low: numpy.ndarray
    high: numpy.ndarray
    planes: bool


def profile(fields, values, axis, limits=None):
    """Profile of values (n,) at the points of fields along an axis; limits: the part of the axis to show."""
    x = fields.points[:, axis]
    good = numpy.isfinite(values) & fields.nodes
    if limits is not None:
        good &= (x >= limits[0]) & (x <= limits[1])
    x, values = x[good], values[good]
    if not len(x):
        return Profile(axis, *[numpy.zeros(0)] * 4, True)
    extent = numpy.ptp(x)
    places, row = numpy.unique(numpy.round(x / (1e-6 * extent)) if extent > 0 else numpy.zeros(len(x)), return_inverse=True)
    whole = planes_span_the_section(fields.points[good], axis, row)
    planes = len(places) <= MOST_PLANES and whole
    if not planes:
        bins = BINS if whole else bins_of_scattered_nodes(fields.points[good], axis)
        row = numpy.minimum(((x - x.min()) / extent * bins).astype(int), bins - 1)
        _, row = numpy.unique(row, return_inverse=True)
    count = numpy.bincount(row)
    ordered, first = values[numpy.argsort(row, kind="stable")], numpy.cumsum(count) - count
    low, high = numpy.minimum.reduceat(ordered, first), numpy.maximum.reduceat(ordered, first)
    return Profile(axis, numpy.bincount(row, x) / count, numpy.bincount(row, values) / count, low, high, planes)


def planes_span_the_section(points, axis, row):
    """Whether most planes of nodes reach over half of the mesh or more along both other axes: in meshes of bricks in rows they do, in
    unstructured ones nodes of one plane are a few that happen to lie there. points (n, 3), row (n,): the plane of each."""
    order = numpy.argsort(row, kind="stable")
    first = numpy.cumsum(numpy.bincount(row)) - numpy.bincount(row)
    others = numpy.delete(points, axis, axis=1)
    spans = numpy.maximum.reduceat(others[order], first) - numpy.minimum.reduceat(others[order], first)
    return numpy.mean((spans >= 0.5 * numpy.ptp(others, axis=0)).all(axis=1)) > 0.5


def bins_of_scattered_nodes(points, axis):
    """Number of slices across an axis that are as thick as nodes lie apart on average, so that each has nodes from all over its section."""
    extents = numpy.ptp(points, axis=0)
    real = extents > 1e-9 * extents.max()
    spacing = (numpy.prod(extents[real]) / len(points)) ** (1.0 / real.sum())
    return int(numpy.clip(extents[axis] / spacing, 6, BINS))


def telling_axes(fields):
    """Axes along which the concentration changes, that of the largest change first; at least one where the mesh has an extent."""
    extents = numpy.ptp(fields.points, axis=0)
    candidates = [axis for axis in range(3) if extents[axis] > 1e-9 * extents.max()]
    changes = {}
    for axis in candidates:
        means = profile(fields, fields.concentration, axis, dense_part(fields.points, axis)).mean
        changes[axis] = numpy.ptp(means) if len(means) else 0.0
    ordered = sorted(candidates, key=lambda axis: -changes[axis])
    largest = changes[ordered[0]] if ordered else 0.0
    return [axis for k, axis in enumerate(ordered) if k == 0 or changes[axis] > 0.05 * largest]


def dense_part(points, axis):
    """The part of an axis where planes of nodes lie close, when that is less than half of it (a channel between long reservoirs); else
    None."""
    x = points[:, axis]
    extent = numpy.ptp(x)
    if extent <= 0.0:
        return None
    _, first = numpy.unique(numpy.round(x / (1e-6 * extent)), return_index=True)
    places = x[first]
    gaps = numpy.diff(places)
    if len(gaps) < 8:
        return None
    close = numpy.flatnonzero(gaps <= 3.0 * numpy.median(gaps))
    low, high = places[close[0]], places[close[-1] + 1]
    return (low, high) if high - low < 0.5 * extent else None
