"""The listing: what was solved, how each printed step converged, nodal values of the printed steps.

Tables of nodes are found first and read when they are asked for, so a listing of some hundred megabytes opens at once.
"""
import mmap
import re
from dataclasses import dataclass, field

import numpy

from ..errors import ZurtError
from .numbers import number, parse_numbers

_STEP = re.compile(rb"^ (?:S T E P  NUMBER|K O R A K  BROJ) = *(\d+) .*?(?:T I M E|V R E M E) =(.{12})", re.M)
_END = re.compile(rb"^ +(?:END OF JOB|ZAVRSETAK PRORACUNA) .*$", re.M)
_ITERATIONS = re.compile(rb"^ ITERATIONS FOR STEP:\s*(\d+) /\s*(\d+)|^ ITERATION =\s*(\d+): INCREMENT *= *(\S+) +NORM *= *(\S+)\n"
                         rb" +\S+ *= *(\S+) +\S+ *= *(\S+)", re.M)
_CARD_LIST = re.compile(rb"^ NUMB (?:1234567890)+\s*\n ---- -+\n((?:.*\n)*?) ---- -", re.M)
_VALUE = re.compile(rb"(?:\.[ ,]*|COEFFICIENT, |  )([A-Z][A-Z0-9]{1,9}) *= *([-+0-9.EDed]+)\s*$", re.M)
_FLUXES = (rb"N O D A L   M A S S   F L U X E S", rb"C V O R N I   M A S E N I   F L U K S E V I")
_TABLE_OR_HEADING = re.compile(r" *\d+ | *(?:\S +){3}\S(?: |$)")  # numbers, or letters with blanks between them
ITERATION = numpy.dtype([("step", int), ("iteration", int), ("increment", float), ("norm", float), ("step_ratio", float),
                         ("norm_ratio", float)])


@dataclass
class ListedStep:
    """A printed step. begin, end: bytes of its tables in the listing."""
    number: int
    time: float
    begin: int
    end: int


@dataclass
class ListedProblem:
    """data: names of fields, as the listing has them at the ends of its dotted lines, to numbers (JEDN, NWK, LMAXM always; those of the
    deck's cards with NULAZ 1 or 3). iterations: structured array ITERATION, a row for each iteration of the printed steps; empty in a
    linear problem. solver: skyline, sparse or cg. torsion_moments: TORZM of the printed steps. complete: the page END OF JOB is there."""
    number: int
    data: dict
    iterations: numpy.ndarray
    step_count: int
    solver: str
    steps: list = field(default_factory=list)
    torsion_moments: list = field(default_factory=list)
    complete: bool = False


@dataclass
class Listing:
    """cards: {number: text} of the card listing, 70 columns of each. message: the fatal message at the end, or empty."""
    path: str
    cards: dict
    problems: list
    message: str


def read_listing(path):
    """What a listing holds; ZurtError when the file is none or can't be read."""
    try:
        with open(path, "rb") as file:
            if file.seek(0, 2) == 0:
                raise ZurtError("the listing is empty", path)
            with mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as text:
                if b"FIELD ANALYSIS" not in text[:3000] and b"ZURT" not in text[:3000] and b"ZZZZZZ" not in text[:3000]:
                    raise ZurtError("this is no listing: it lacks the program's first page", path)
                return _read_all(path, text)
    except OSError as error:
        raise ZurtError(error.strerror, path) from None


def step_values(listing, step):
    """Nodal values of a ListedStep: {"concentration": (n,), "flux_x": (n,), "flux_y": (n,)}, node i at i - 1."""
    with open(listing.path, "rb") as file:
        file.seek(step.begin)
        text = file.read(step.end - step.begin)
    middle = min((place for place in (text.find(head) for head in _FLUXES) if place >= 0), default=len(text))
    values = {"concentration": _table(text[:middle], 2, listing.path)[:, 1]}
    if middle < len(text):
        fluxes = _table(text[middle:], 3, listing.path)
        values.update(flux_x=fluxes[:, 1], flux_y=fluxes[:, 2])
    return values


def _table(text, columns, path):
    lines = text.split(b"\n")
    first = next((k for k, line in enumerate(lines) if b"NODE" in line or b"CVOR " in line), None)
    if first is None:
        raise ZurtError("a table of nodes is not complete", path)
    rows = []
    for line in lines[first + 1:]:
        if len(line) < 20 or not line[:8].strip().isdigit():
            break
        rows.append(line)
    values = parse_numbers(b"\n".join(rows), file=path)
    if len(values) % columns:
        raise ZurtError("a table of nodes ends within a row", path)
    return values.reshape(-1, columns)


def _read_all(path, text):
    ends = [match.end() for match in _END.finditer(text)]
    borders = [0, *ends] if ends else [0]
    if not ends or text[ends[-1]:].strip():
        borders.append(len(text))
    problems = [_read_problem(k + 1, text, begin, end, end in ends) for k, (begin, end) in enumerate(zip(borders, borders[1:]))]
    tail = text[max(len(text) - 20000, 0):].decode("latin-1") if not problems or not problems[-1].complete else ""
    return Listing(path, _read_cards(text), problems, _fatal_message(tail))


def _read_cards(text):
    cards = {}
    for page in _CARD_LIST.finditer(text):
        for line in page.group(1).decode("latin-1").split("\n"):
            if line[:5].strip().isdigit():
                cards[int(line[:5])] = line[6:].rstrip()
    return cards


def _read_problem(number_of_problem, text, begin, end, complete):
    first_step = _STEP.search(text, begin, end)
    first_step = _ITERATIONS.search(text, begin, first_step.start() if first_step else end) or first_step
    head_end = first_step.start() if first_step else end
    data = {}
    for match in _VALUE.finditer(text, begin, head_end):
        data.setdefault(match.group(1).decode("latin-1"), _plain(match.group(2).decode("latin-1")))
    head = text[max(begin, head_end - 20000):head_end]
    solver = "cg" if b"CONJUGATE GRADIENTS" in head or b"KONJUGOVAN" in head else "skyline" if data.get("NWK", 0) > 0 else "sparse"
    iterations, count = _read_iterations(text, begin, end)
    problem = ListedProblem(number_of_problem, data, iterations, count, solver, complete=complete)
    found = list(_STEP.finditer(text, begin, end))
    for match, following in zip(found, [*found[1:], None]):
        until = following.start() if following else end
        problem.steps.append(ListedStep(int(match.group(1)), number(match.group(2).decode("latin-1")), match.end(), until))
    if b"TORZM" in text[max(begin, end - 5000):end]:
        problem.torsion_moments = [number(match.group(1).decode("latin-1")) for match in re.finditer(rb"TORZM = *(\S+)", text[begin:end])]
    return problem


def _read_iterations(text, begin, end):
    rows, step, count = [], 0, 0
    for match in _ITERATIONS.finditer(text, begin, end):
        if match.group(1):
            step, count = int(match.group(1)), int(match.group(2))
        else:
            rows.append((step, int(match.group(3)), *(number(match.group(k).decode("latin-1")) for k in (4, 5, 6, 7))))
    return numpy.array(rows, ITERATION), count


def _plain(text):
    value = number(text)
    return int(value) if value == int(value) and "." not in text else value


def _fatal_message(tail):
    """The paragraphs behind the last iteration or table, without those of the progress of a run."""
    lines = tail.split("\n")[:-1]  # what a killed run has not ended is none
    last = max((k for k, line in enumerate(lines) if _is_usual(line)), default=-1)
    words = [line.strip() for line in lines[last + 1:] if line.strip() and line.strip() != "1"]
    return "\n".join(words[:12])


def _is_usual(line):
    words = line.strip()
    return words.startswith(("ICR/", "ITERA", "----", "END OF JOB", "A   C A R D", "*****", "C O L U M N", "CARD  ", "NUMB ",
                             "VERSION", "NODE  ", "CVOR  ")) or "MTOT =" in line or ". ITER =" in line or bool(_TABLE_OR_HEADING.match(line))
