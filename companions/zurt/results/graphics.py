"""The graphics file in universal file format, without holding more than one step of it in memory.

Shared by the door (Run.graphics) and by zurt-convert. A file has the meshes and steps of all problems of its deck, one behind the other:

    for problem, step in iterate_steps("plate.unv"):
        problem.points, problem.blocks          # the mesh, the same object for all steps of a problem
        step.time, step.fields["concentration"]

Numbers in the file have 5 digits, so points that lie closer than that coincide.
"""
from dataclasses import dataclass, field

import numpy

from ..errors import ZurtError
from .numbers import parse_numbers

CHUNK = 1 << 22
END = b"\n    -1\n"
# Of each kind of element: its name (as in meshio), nodes, and the order of the file's nodes as VTK has them.
SHAPES = {
    21: ("line", [0, 1]),
    24: ("line3", [0, 2, 1]),
    44: ("quad", [0, 1, 2, 3]),
    45: ("quad8", [0, 2, 4, 6, 1, 3, 5, 7]),
    115: ("hexahedron", list(range(8))),
    116: ("hexahedron20", [0, 2, 4, 6, 12, 14, 16, 18, 1, 3, 5, 7, 13, 15, 17, 19, 8, 9, 10, 11]),
}
FIELDS = {
    b"CVORNE KONCENTRACIJE": "concentration",
    b"MASS FLUX": "mass_flux",
    b"MASS FLUX PER UNIT TIME AND SURFACE": "flux",
    b"DIFFUSION COEFFICIENT": "coefficient",
}


@dataclass
class GraphicsBlock:
    """Elements of one group and one shape. group: place of the group's dataset in the file, from one. kind: name of the shape as meshio
    has it. elements: (m, nodes) rows of points from zero, in VTK's order. labels: (m,) numbers of the elements in the file."""
    group: int
    kind: str
    elements: numpy.ndarray
    labels: numpy.ndarray


@dataclass
class GraphicsProblem:
    """One problem of the file. points: (n, 3); point i is node i + 1. fibre_points: (m, 3) places of the inner nodes of substructured
    fibres, whose numbers go on behind those of the mesh. places: where its steps stand, see read_step."""
    number: int
    title: str = ""
    points: numpy.ndarray = None
    fibre_points: numpy.ndarray = None
    blocks: list = field(default_factory=list)
    places: list = field(default_factory=list)


@dataclass
class StepPlace:
    """A step in the file. number: of the result, from one. datasets: name of a field to (offset, length) of its rows."""
    number: int
    time: float
    datasets: dict = field(default_factory=dict)


@dataclass
class GraphicsStep:
    """number: of the written result, from one. fields: concentration (n,); mass_flux, flux, coefficient (n, 3), those that are there.
    fibres: concentrations at the problem's fibre_points."""
    number: int
    time: float
    fields: dict
    fibres: numpy.ndarray


def iterate_steps(path, wanted=None):
    """Yields (GraphicsProblem, GraphicsStep) of all steps of all problems in order; wanted: names of fields, all without it."""
    for problem in read_graphics(path):
        for place in problem.places:
            yield problem, read_step(path, problem, place, wanted)


def read_graphics(path):
    """The problems of a file with their meshes, and where their steps stand. A dataset without an end, of a run that was killed, is left out."""
    problems = []
    try:
        with open(path, "rb") as file:
            while _find_dataset(file):
                kind = file.readline().strip()
                _read_dataset(file, kind, problems, path)
    except OSError as error:
        raise ZurtError(error.strerror, path) from None
    if not problems:
        raise ZurtError("no mesh in this file: it is none of ZUR-T's graphics files", path)
    return problems


def read_step(path, problem, place, wanted=None):
    """The values of a step, StepPlace of read_graphics."""
    fields, fibres = {}, numpy.zeros(0)
    with open(path, "rb") as file:
        for name, (offset, length) in place.datasets.items():
            if wanted is None or name in wanted:
                values = _read_values(file, offset, length, path)
                fields[name] = values[:len(problem.points)] if values.shape[1] == 3 else values[:len(problem.points), 0]
                if name == "concentration":
                    fibres = values[len(problem.points):, 0]
    return GraphicsStep(place.number, place.time, fields, fibres)


def _find_dataset(file):
    for line in file:
        if line.strip() == b"-1":
            return True
        if line.strip():
            raise ZurtError("a dataset of a universal file begins with -1", file.name)
    return False


def _read_dataset(file, kind, problems, path):
    if kind == b"15":
        first, points = _read_points(file, path)
        if points is not None and first > 1 and problems:
            problems[-1].fibre_points = numpy.concatenate([problems[-1].fibre_points, points])
        elif points is not None:
            problems.append(GraphicsProblem(len(problems) + 1, points=points, fibre_points=points[:0]))
    elif not problems:
        _skip_body(file)
    elif kind == b"71":
        _read_elements(file, problems[-1], path)
    elif kind == b"55":
        _place_result(file, problems[-1], path)
    else:
        _skip_body(file)


def _body_chunks(file):
    """Rows of a dataset in pieces of whole lines, without its end; the last piece is None if the file ends before the dataset does."""
    rest = b"\n"
    while True:
        piece = file.read(CHUNK)
        if not piece:
            yield None
            return
        rest += piece
        end = rest.find(END)
        if end >= 0:
            file.seek(end + len(END) - len(rest), 1)
            yield rest[1:end + 1]
            return
        cut = rest.rfind(b"\n", 0, max(len(rest) - len(END), 1))
        if cut > 0:
            yield rest[1:cut + 1]
            rest = rest[cut:]


def _skip_body(file):
    """False when the dataset has no end."""
    piece = b""
    for piece in _body_chunks(file):
        pass
    return piece is not None


def _read_points(file, path):
    rows = []
    for text in _body_chunks(file):
        if text is None:
            return 0, None
        values = parse_numbers(text, file=path)
        if len(values) % 7:
            raise ZurtError("a row of nodes has 7 numbers, and these rows have not", path)
        rows.append(values.reshape(-1, 7)[:, [0, 4, 5, 6]])
    rows = numpy.concatenate(rows)
    return int(rows[0, 0]), rows[:, 1:]


def _read_elements(file, problem, path):
    groups = {block.group for block in problem.blocks}
    group, rest, found = len(groups) + 1, numpy.zeros(0, int), {}
    for text in _body_chunks(file):
        if text is None:
            return
        rest = _take_elements(numpy.concatenate([rest, _whole_numbers(text, path)]), found, path)
    if len(rest):
        raise ZurtError("an element without all of its nodes", path)
    for descriptor, parts in found.items():
        kind, order = SHAPES[descriptor]
        labels, nodes = numpy.concatenate([part[0] for part in parts]), numpy.concatenate([part[1] for part in parts])
        if nodes.min() < 1 or nodes.max() > len(problem.points):
            raise ZurtError(f"an element of group {group} asks for a node that does not exist", path)
        problem.blocks.append(GraphicsBlock(group, kind, nodes[:, order] - 1, labels))


def _whole_numbers(text, path):
    pieces = text.split()
    try:
        return numpy.array(pieces, dtype="S").astype(numpy.int64) if pieces else numpy.zeros(0, numpy.int64)
    except ValueError as error:
        raise ZurtError(f"a whole number is expected: {error}", path) from None


def _take_elements(values, found, path):
    """Cuts runs of elements of one shape from the front of `values` and returns what is left: less than an element."""
    while len(values) >= 7:
        descriptor, count = int(values[1]), int(values[6])
        if descriptor not in SHAPES or len(SHAPES[descriptor][1]) != count:
            raise ZurtError(f"elements of descriptor {descriptor} with {count} nodes are none of ZUR-T's", path)
        whole = len(values) // (7 + count)
        if whole == 0:
            break
        rows = values[:whole * (7 + count)].reshape(whole, 7 + count)
        other = numpy.flatnonzero((rows[:, 1] != descriptor) | (rows[:, 6] != count))
        alike = int(other[0]) if len(other) else whole
        found.setdefault(descriptor, []).append((rows[:alike, 0], rows[:alike, 7:]))
        values = values[alike * (7 + count):]
    return values


def _place_result(file, problem, path):
    """Reads the head of a dataset of results and notes where its rows stand."""
    head = [file.readline() for _ in range(8)]
    name = FIELDS.get(head[1].strip())
    offset = file.tell()
    if not _skip_body(file):
        return
    if name is None:
        raise ZurtError(f"results named {head[1].decode(errors='replace').strip()} are none of ZUR-T's", path)
    length = file.tell() - offset - len(END) + 1
    try:
        number, time = int(head[4].partition(b":")[2]), float(parse_numbers(head[7], 1, path)[0])
    except ValueError:
        raise ZurtError("the head of a result lacks its number", path) from None
    problem.title = head[0].decode("latin-1").rstrip()
    if name == "concentration":
        problem.places.append(StepPlace(number, time))
    if problem.places:
        problem.places[-1].datasets[name] = (offset, length)


def _read_values(file, offset, length, path):
    """Rows of a dataset without their labels, (rows, 1 or 3)."""
    file.seek(offset)
    parts, components, rest, left = [], None, b"", length
    while left > 0:
        piece = file.read(min(CHUNK, left))
        if not piece:
            raise ZurtError("the file has become shorter while it was read", path)
        left -= len(piece)
        rest += piece
        if components is None:
            components = len(rest.split(b"\n", 2)[1].split())
        row = 11 + 13 * components + 1
        whole = len(rest) // row
        rows = numpy.frombuffer(rest, "S1", whole * row).view(numpy.uint8).reshape(whole, row)
        parts.append(parse_numbers(rows[:, 11:].tobytes(), whole * components, path).reshape(whole, components))
        rest = rest[whole * row:]
    return numpy.concatenate(parts)
