"""A picture of fibres in their box: tubes seen from above and aside, painted from back to front."""
import matplotlib
import numpy
from matplotlib.backends.backend_agg import FigureCanvasAgg
from matplotlib.collections import EllipseCollection, LineCollection, PolyCollection
from matplotlib.figure import Figure

from .model import LINES, dimension_of

MOST_QUADRANGLES = 400_000
TURN, RAISE = -0.62, 0.45  # radians: of the view about z and above the plane


def view_axes():
    """(right, up, towards the viewer), unit vectors."""
    towards = numpy.array([numpy.sin(-TURN) * numpy.cos(RAISE), -numpy.cos(TURN) * numpy.cos(RAISE), numpy.sin(RAISE)])
    right = numpy.cross([0.0, 0.0, 1.0], towards)
    right /= numpy.linalg.norm(right)
    return right, numpy.cross(towards, right), towards


def draw_picture(path, fibres, title):
    """Writes the picture; fibres: as a deck gets them, cut at the box. path: .png, .svg or .pdf."""
    draw_pictures(path, [(fibres, title)])


def draw_pictures(path, parts):
    """Several (fibres, title) beside each other."""
    figure = Figure(figsize=(0.6 + 6.4 * len(parts), 6.4) if len(parts) == 1 else (4.4 * len(parts), 4.6), dpi=100)
    FigureCanvasAgg(figure)
    for place, (fibres, title) in enumerate(parts):
        axes = figure.add_axes([(place + 0.02) / len(parts), 0.02, 0.96 / len(parts), 0.9])
        axes.set_aspect("equal")
        axes.axis("off")
        axes.set_title(title, fontsize=11)
        (draw_plane if dimension_of(fibres.box) == 2 else draw_space)(axes, fibres)
        axes.autoscale_view()
    figure.savefig(path)


def draw_plane(axes, fibres):
    box = fibres.box
    size = numpy.clip(fibres.diameters, 0.002 * box.max(), None)
    if fibres.shape == LINES:
        axes.add_collection(PolyCollection(strips(fibres.starts[:, :2], fibres.ends[:, :2], 0.5 * size), facecolors="#3b6ea5"))
    else:
        axes.add_collection(EllipseCollection(size, size, 0.0 * size, units="xy", offsets=fibres.starts[:, :2],
                                              transOffset=axes.transData, facecolors="#3b6ea5", edgecolors="white", linewidths=0.3))
    axes.plot([0, box[0], box[0], 0, 0], [0, 0, box[1], box[1], 0], color="black", linewidth=0.8)


def draw_space(axes, fibres):
    right, up, towards = view_axes()
    project = numpy.column_stack([right, up])
    corners = numpy.array([[(k >> axis) & 1 for axis in range(3)] for k in range(8)]) * fibres.box
    edges = [(a, b) for a in range(8) for b in range(a + 1, 8) if bin(a ^ b).count("1") == 1]
    hidden = int((corners @ towards).argmin())
    for front in (False, True):
        rows = [edge for edge in edges if (hidden not in edge) == front]
        axes.add_collection(LineCollection([corners[list(edge)] @ project for edge in rows], colors="black" if front else "#999999",
                                           linewidths=0.8, zorder=3 if front else 1))
    if fibres.shape == LINES:
        draw_tubes(axes, fibres, project, towards)
    else:
        order = numpy.argsort(fibres.starts @ towards)
        shade = matplotlib.colormaps["viridis"](depth_of(fibres.starts[order] @ towards))
        size = fibres.diameters[order]
        axes.add_collection(EllipseCollection(size, size, 0.0 * size, units="xy", offsets=fibres.starts[order] @ project,
                                              transOffset=axes.transData, facecolors=shade, edgecolors="black", linewidths=0.2, zorder=2))


def depth_of(values):
    return 0.15 + 0.8 * (values - values.min()) / max(float(numpy.ptp(values)), 1.0e-300)


def strips(starts, ends, half):
    """(n, 4, 2) rectangles around segments in the plane."""
    way = ends - starts
    size = numpy.linalg.norm(way, axis=1)
    safe = numpy.where(size > 0.0, size, 1.0)
    side = numpy.column_stack([-way[:, 1], way[:, 0]]) / safe[:, None] * half[:, None]
    return numpy.stack([starts - side, ends - side, ends + side, starts + side], axis=1)


def draw_tubes(axes, fibres, project, towards):
    """Each fibre as pieces along it and bands across it, lighter in the middle: a lit cylinder. The further away the bluer."""
    count = len(fibres.diameters)
    bands = 5 if count < 4000 else 1
    pieces = int(numpy.clip(MOST_QUADRANGLES / (count * bands), 1, 24))
    steps = numpy.linspace(0.0, 1.0, pieces + 1)
    starts = (fibres.starts[:, None] + steps[:-1, None] * (fibres.ends - fibres.starts)[:, None]).reshape(-1, 3)
    ends = (fibres.starts[:, None] + steps[1:, None] * (fibres.ends - fibres.starts)[:, None]).reshape(-1, 3)
    radius = numpy.repeat(0.5 * numpy.clip(fibres.diameters, 0.003 * fibres.box.max(), None), pieces)
    depth = 0.5 * (starts + ends) @ towards
    order = numpy.argsort(depth)
    colours = matplotlib.colormaps["viridis"](depth_of(depth[order]))[:, None, :3].repeat(bands, axis=1)
    widths = numpy.linspace(1.0, 0.2, bands)
    colours *= numpy.sqrt(1.0 - 0.75 * widths**2)[None, :, None] if bands > 1 else 1.0
    shapes = numpy.stack([strips(starts[order] @ project, ends[order] @ project, width * radius[order]) for width in widths], axis=1)
    axes.add_collection(PolyCollection(shapes.reshape(-1, 4, 2), facecolors=colours.reshape(-1, 3), edgecolors="none", zorder=2,
                                       antialiaseds=False))
