"""Pictures of a step as PNG: by VTK in a process of its own, with a display or a virtual one; else by matplotlib."""
import io
import os
import shutil
import signal
import subprocess
import sys
import tempfile

import numpy

from .fields import dense_part

VTK_SECONDS = 120
FACES = [(0, 1, 2, 3), (4, 5, 6, 7), (0, 1, 5, 4), (1, 2, 6, 5), (2, 3, 7, 6), (3, 0, 4, 7)]
MOST_FACES = 40000


def draw_step(fields, fibres_path):
    """[(words, PNG bytes)]: the surface, and sections of models that extend in three directions. fields: report.fields.Fields with points."""
    values = fields.concentration[numpy.isfinite(fields.concentration)]
    if fields.points is None or not fields.cells or not len(values):
        return []
    low, high = float(values.min()), float(values.max())
    if high - low <= 1e-4 * max(abs(low), abs(high)):
        spare = 0.1 * max(abs(low), abs(high)) or 1.0
        low, high = low - spare, high + spare
    box = _box(fields)
    return _by_vtk(fields, fibres_path, box, low, high) or _by_matplotlib(fields, box, low, high)


def _box(fields):
    box = []
    for axis in range(3):
        part = dense_part(fields.points, axis)
        x = fields.points[:, axis]
        box.append(part or (float(x.min()), float(x.max())))
    return box


def _by_vtk(fields, fibres_path, box, low, high):
    launcher = [] if os.environ.get("DISPLAY") else [shutil.which("xvfb-run"), "--auto-servernum"]
    if launcher and launcher[0] is None:
        return []
    with tempfile.TemporaryDirectory() as folder:
        step = fields.path or _written(fields, os.path.join(folder, "step.vtu"))
        files = [os.path.join(folder, name) for name in ("surface.png", "sections.png")]
        numbers = [f"{value:.17g}" for pair in box for value in pair] + [f"{low:.17g}", f"{high:.17g}"]
        command = [*launcher, sys.executable, "-m", "zurt.report.vtk_scene", step, fibres_path or "-", *files, *numbers]
        try:
            _run_quietly(command, dict(os.environ, PYTHONPATH=os.path.join(os.path.dirname(__file__), "..", "..")))
        except (OSError, subprocess.TimeoutExpired):
            return []
        words = (_words("Concentration", fields), _words("Sections through the middle", fields))
        return [(title, _content(file)) for title, file in zip(words, files) if os.path.isfile(file) and os.path.getsize(file) > 0]


def _run_quietly(command, environment):
    """Runs a program; when it takes too long, it and all that it has started are ended."""
    nowhere = subprocess.DEVNULL
    child = subprocess.Popen(command, env=environment, stdin=nowhere, stdout=nowhere, stderr=nowhere, start_new_session=True)
    try:
        child.wait(VTK_SECONDS)
    except BaseException:
        os.killpg(child.pid, signal.SIGTERM)
        try:
            child.wait(5)
        except subprocess.TimeoutExpired:
            os.killpg(child.pid, signal.SIGKILL)
            child.wait()
        raise


def _words(what, fields):
    return f"{what} at time {fields.time:.6g}" if fields.time else f"{what}, last step"


def _content(path):
    with open(path, "rb") as file:
        return file.read()


def _written(fields, path):
    import meshio
    meshio.vtu.write(path, meshio.Mesh(fields.points, fields.cells, point_data={"concentration": fields.concentration}))
    return path


def _by_matplotlib(fields, box, low, high):
    import matplotlib
    matplotlib.use("Agg")
    from matplotlib import pyplot
    flat = [axis for axis in range(3) if box[axis][1] - box[axis][0] <= 1e-9 * max(b - a for a, b in box)]
    faces, values = _faces(fields, box)
    figure = pyplot.figure(figsize=(7.6, 4.3), dpi=100)
    if not len(faces):
        _draw_lines(figure, fields, low, high)
    elif flat:
        _draw_flat(figure, faces, values, [axis for axis in range(3) if axis != flat[-1]], box, low, high)
    else:
        _draw_solid(figure, faces, values, box, low, high)
    scale = matplotlib.cm.ScalarMappable(matplotlib.colors.Normalize(low, high), "viridis")
    figure.colorbar(scale, ax=figure.axes[0], label="c", shrink=0.8)
    stream = io.BytesIO()
    figure.savefig(stream, format="png", bbox_inches="tight")
    pyplot.close(figure)
    return [(_words("Concentration", fields), stream.getvalue())]


def _faces(fields, box):
    """(m, 4, 3) corners of the quadrilaterals and of the bricks' outer sides, within the box, and (m,) means of their values."""
    found = []
    for kind, cells in fields.cells:
        if kind.startswith("quad"):
            found.append(cells[:, :4])
        elif kind.startswith("hexahedron"):
            sides = numpy.concatenate([cells[:, side] for side in FACES])
            _, first, count = numpy.unique(numpy.sort(sides, axis=1), axis=0, return_index=True, return_counts=True)
            found.append(sides[first[count == 1]])
    if not found:
        return numpy.zeros((0, 4, 3)), numpy.zeros(0)
    rows = numpy.concatenate(found)
    values, corners = fields.concentration[rows].mean(axis=1), fields.points[rows]
    middle = corners.mean(axis=1)
    good = numpy.isfinite(values)
    for axis in range(3):
        good &= (middle[:, axis] >= box[axis][0]) & (middle[:, axis] <= box[axis][1])
    kept = numpy.flatnonzero(good)[::max(1, int(good.sum()) // MOST_FACES)]
    return corners[kept], values[kept]


def _draw_flat(figure, faces, values, axes, box, low, high):
    from matplotlib.collections import PolyCollection
    axis = figure.add_subplot()
    shapes = PolyCollection(faces[:, :, axes], array=values, cmap="viridis", edgecolors="face", linewidths=0.2)
    shapes.set_clim(low, high)
    axis.add_collection(shapes)
    axis.set(xlim=box[axes[0]], ylim=box[axes[1]], aspect="equal", xlabel="xyz"[axes[0]], ylabel="xyz"[axes[1]])


def _draw_solid(figure, faces, values, box, low, high):
    from matplotlib import cm, colors
    from mpl_toolkits.mplot3d.art3d import Poly3DCollection
    axis = figure.add_subplot(projection="3d")
    shade = cm.viridis(colors.Normalize(low, high)(values))
    axis.add_collection3d(Poly3DCollection(faces, facecolors=shade, edgecolors=(0, 0, 0, 0.15), linewidths=0.3))
    axis.set(xlim=box[0], ylim=box[1], zlim=box[2], xlabel="x", ylabel="y", zlabel="z")
    axis.set_box_aspect([max(b - a, 0.05 * max(d - c for c, d in box)) for a, b in box])


def _draw_lines(figure, fields, low, high):
    from mpl_toolkits.mplot3d.art3d import Line3DCollection
    axis = figure.add_subplot(projection="3d")
    rows = numpy.concatenate([cells[:, :2] for kind, cells in fields.cells if kind.startswith("line")])
    lines = Line3DCollection(fields.points[rows], array=fields.concentration[rows].mean(axis=1), cmap="viridis", linewidths=5)
    lines.set_clim(low, high)
    axis.add_collection3d(lines)
    bounds = [(float(column.min()), float(column.max())) for column in fields.points.T]
    axis.set(**{f"{name}lim": (a - 0.1, b + 0.1) for name, (a, b) in zip("xyz", bounds)}, xlabel="x", ylabel="y", zlabel="z")
