"""The small files beside a listing: table of balances, tables of masses, messages, progress."""
import csv
import re
from dataclasses import dataclass, field

import numpy

from ..errors import ZurtError
from .numbers import parse_numbers

FIBRE_FLOW = [("step", int), ("fibres", float), ("medium", float)]
FIT_FLOW = [("step", int), ("time", float), ("flow", float)]
COEFFICIENT = [("concentration", float), ("bulk", float), ("equivalent", float)]
PROGRESS = [("step", int), ("steps", int), ("time", float), ("iteration", int), ("ratio", float), ("elapsed", float), ("megabytes", float)]
HEADS = ["step [1]", "time [time]", "iterations [1]", "ratio [1]"]
WHOLE = ("step", "iterations")
CHUNK = 1 << 22
_PROGRESS = re.compile(r"(?:(.*), )?step (\d+)/(\d+), time (-?\d+\.?\d*(?:[Ee][-+]?\d+)?),(?: iteration (\d+),)?(?: ratio (-?\d+\.?\d*(?:[Ee][-+]?\d+)?|nan|inf),)? elapsed (\d+):(\d+):(\d+)"
                       r"(?:, left [\d:]+)?(?:, (\d+) MB)?")


@dataclass
class History:
    """values: structured array, a row a step, columns named as in the file without their units; NaN where a field is empty. units: column to
    unit."""
    values: numpy.ndarray
    units: dict


@dataclass
class MassTable:
    """What one direction's file says of one problem. fitted: {"D1D", "D2D", "HEQ", "HEQ0"} of a fit, else empty. coefficients: rows of the
    direct calculation, dtype COEFFICIENT. flows: through the inlet cross-section, dtype FIT_FLOW (fit) or FIBRE_FLOW (direct calculation: the
    model with fibres and the equivalent medium), None without."""
    direction: str
    steps: int = None
    porosity: float = None
    fitted: dict = field(default_factory=dict)
    coefficients: numpy.ndarray = field(default_factory=lambda: numpy.zeros(0, COEFFICIENT))
    flows: numpy.ndarray = None


def read_history(path):
    """The table that --history wrote. A row that a killed run left unfinished is left out."""
    with _opened(path, "rb") as file:
        head = next(csv.reader([file.readline().decode("latin-1")]), [])
        if head[:4] != HEADS:
            raise ZurtError(f"this is no table of balances: its first row begins with {','.join(HEADS)}", path, 1)
        heads = [re.fullmatch(r"(.*?) \[(.*)\]", text) for text in head]
        names = [match.group(1) if match else text for match, text in zip(heads, head)]
        if len(set(names)) < len(names):
            raise ZurtError("two columns have one name", path, 1)
        parts, line = [numpy.zeros((0, len(names)))], 2
        while rows := file.readlines(CHUNK):
            parts.append(_history_rows(rows, names, path, line))
            line += len(rows)
    columns = numpy.concatenate(parts)
    values = numpy.zeros(len(columns), [(name, int if name in WHOLE else float) for name in names])
    for k, name in enumerate(names):
        if name in WHOLE and not numpy.isfinite(columns[:, k]).all():
            raise ZurtError(f"column {name}: a number is expected", path)
        values[name] = columns[:, k]
    return History(values, {name: match.group(2) if match else "" for name, match in zip(names, heads)})


def _history_rows(rows, names, path, line):
    """(n, columns) numbers of the whole rows among these, of which the first is a line of the file."""
    whole = [row for row in rows if row.count(b",") == len(names) - 1 and row.endswith(b"\n")]
    fields = [field or b"nan" for row in whole for field in row.rstrip().split(b",")]
    try:
        return numpy.array(fields, "S").astype(float).reshape(-1, len(names)) if fields else numpy.zeros((0, len(names)))
    except ValueError:
        for number, row in enumerate(rows, line):
            for name, field in zip(names, row.rstrip().split(b",")):
                try:
                    float(field or b"nan")
                except ValueError:
                    raise ZurtError(f"column {name}: a number is expected, not {field.decode('latin-1')}", path, number) from None
        raise ZurtError("a number is expected in every field", path) from None


def read_masses(path):
    """MassTable of every problem in MASS-X.LST, MASS-Y.LST or MASS-Z.LST."""
    direction = re.sub(r".*MASS-([XYZ]).*", r"\1", str(path))
    with _opened(path) as file:
        lines = file.read().split("\n")
    tables, at = [], 0
    while at < len(lines):
        head = lines[at].strip()
        section = next((name for name in _SECTIONS if head.startswith(name)), None)
        at += 1
        if section:
            if not tables or (section == "NUMBER OF TIME STEPS") or (section == "VALUES OF FITTED" and tables[-1].flows is not None):
                tables.append(MassTable(direction))
            at = _SECTIONS[section](tables[-1], lines, at, path)
    return tables


def _rows(lines, at, columns, path):
    rows = []
    while at < len(lines) and re.match(r"^[\s\d.+\-DEN*a]+$", lines[at]) and lines[at].strip():
        values = parse_numbers(lines[at].encode(), file=path)
        if len(values) != columns:
            break
        rows.append(tuple(values))
        at += 1
    return rows, at


def _read_size(table, lines, at, path):
    """The line of numbers stands in the file of X alone, for all directions."""
    if at >= len(lines) or not re.match(r" +\d+( |$)", lines[at]):
        return at
    values = parse_numbers(lines[at].encode(), file=path)
    table.steps = int(values[0])
    table.porosity = float(values[1]) if len(values) > 1 else None
    return at + 1


def _read_coefficients(table, lines, at, path):
    at += 1
    while at < len(lines) and re.match(r" +\d+ *$", lines[at]):  # the counts of steps of other directions
        at += 1
    rows, at = _rows(lines, at, 3, path)
    table.coefficients = numpy.array(rows, COEFFICIENT)
    return at


def _read_fitted(table, lines, at, path):
    rows, at = _rows(lines, at + 1, 4, path)
    if rows:
        table.fitted = dict(zip(("D1D", "D2D", "HEQ", "HEQ0"), rows[0]))
    return at


def _read_flows(table, lines, at, path):
    micro = at < len(lines) and "MICRO" in lines[at]
    rows, at = _rows(lines, at + 1, 3, path)
    rows = [(k, *row[1:]) for k, row in enumerate(rows, 1)]  # the file's own numbers have five digits
    table.flows = numpy.array(rows, FIBRE_FLOW if micro else FIT_FLOW)
    return at


_SECTIONS = {"NUMBER OF TIME STEPS": _read_size, "VALUES OF DIFFUSION": _read_coefficients, "VALUES OF FITTED": _read_fitted,
             "CHANGE OF MASS": _read_flows}


def read_messages(path):
    """Lines of MESSAGES.LST that say something."""
    with _opened(path) as file:
        return [line.strip() for line in file if line.strip()]


def read_progress(path):
    """(places, rows): for each line of a progress file the run of a fit that it is of ("" in other runs), and its numbers, dtype PROGRESS;
    elapsed in seconds."""
    places, rows = [], []
    with _opened(path) as file:
        for line in file:
            match = _PROGRESS.match(line)
            if match:
                place, step, steps, time, iteration, ratio, hours, minutes, seconds, memory = match.groups()
                places.append(place or "")
                rows.append((int(step), int(steps), float(time), int(iteration or 0), float(ratio or "nan"),
                             3600.0 * int(hours) + 60.0 * int(minutes) + int(seconds), float(memory or "nan")))
    return places, numpy.array(rows, PROGRESS)


def _opened(path, mode="r"):
    try:
        return open(path, mode) if "b" in mode else open(path, mode, encoding="latin-1", newline="")
    except OSError as error:
        raise ZurtError(error.strerror, path) from None
