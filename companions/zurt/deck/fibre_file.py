"""Fibre sets as cards of a file, which zurt-fibres writes, and the records of fibre sets."""
import os
from dataclasses import dataclass

import numpy

from ..errors import ZurtError
from .job_errors import job_error
from .quantities import METRE, UnitFault, parse_unit
from .tables import CARDS


@dataclass
class CorrectionTable:
    """distances: in thousandths of the deck's unit. factors: a row for each distance."""
    distances: list
    concentrations: list
    factors: list


@dataclass
class FibreSet:
    """points: (fibres, 1 or 2 points, 3). tables: one or two CorrectionTables. place: of the job's table, None for sets from a file."""
    place: tuple
    number: int
    kind: int
    diameter: float
    length: float
    wall_cut: float
    low: numpy.ndarray
    base: numpy.ndarray
    counts: list
    step: numpy.ndarray
    points: numpy.ndarray
    numbers: list
    diameters: list
    point_numbers: list
    tables: list


@dataclass
class CardReader:
    """lines: (number, text) of the cards of a file, without comments. place: of the next one."""
    path: str
    lines: list
    place: int = 0


def read_numbers(reader, name, count=None):
    """Numbers of the next card, free where words are as many as fields, else by columns. count: of a card of any number of values."""
    if reader.place >= len(reader.lines):
        raise ZurtError(f"the file ends where a card is expected: {name}", reader.path)
    number, line = reader.lines[reader.place]
    reader.place += 1
    card = CARDS[name]
    fields = [entry for entry in card.fields for _ in range(entry.count)][:count]
    words = line.replace(",", " ").replace("D", "E").split()
    if len(words) < len(fields):
        starts = numpy.cumsum([0] + [entry.width for entry in fields])
        words = [line[a:b].replace(" ", "").replace("D", "E") or "0" for a, b in zip(starts, starts[1:])]
    try:
        return [int(word) if entry.letter == "I" else float(word) for word, entry in zip(words, fields)]
    except ValueError:
        raise ZurtError(f"{name}: \"{line}\" is not {' '.join(entry.fixed for entry in card.fields)}", reader.path, number) from None


def read_table_values(reader, count):
    """So many values, eight to a card."""
    values = []
    while len(values) < count:
        values += read_numbers(reader, "Correction table values", min(8, count - len(values)))
    return values


def read_set(reader, factor):
    """One fibre set of a file of cards. factor: from its lengths to the deck's."""
    head = read_numbers(reader, "Fibre set card")
    box, grid = read_numbers(reader, "Fibre search box card"), read_numbers(reader, "Fibre search grid card")
    fibres, numbers, diameters, ids = [], [], [], []
    for _ in range(head[1]):
        number, count, diameter = read_numbers(reader, "Fibre card")
        each = 1 if head[3] else 2
        if count < each:
            raise ZurtError(f"a fibre has {count} points and wants {each}", reader.path, reader.lines[reader.place - 1][0])
        points = [read_numbers(reader, "Fibre point card") for _ in range(count)]
        fibres.append([point[1:] for point in points[:each]])
        ids = ids or [point[0] for point in points]
        numbers.append(number)
        diameters.append(diameter * factor)
    tables = []
    for _ in range(2 if head[2] == 1 else 1):
        rows, columns = read_numbers(reader, "Correction table sizes")
        distances, concentrations = read_table_values(reader, rows), read_table_values(reader, columns)
        distances = [distance * factor for distance in distances]
        tables.append(CorrectionTable(distances, concentrations, [read_table_values(reader, columns) for _ in range(rows)]))
    low, base, step = (numpy.array(part) * factor for part in (box[:3], box[3:], grid[3:]))
    return FibreSet(None, head[0], head[3], head[4] * factor, head[5] * factor, head[6] * factor, low, base, grid[:3], step,
                    numpy.array(fibres, dtype=float) * factor, numbers, diameters, ids, tables)


def read_fibre_file(problem, section):
    """The fibre sets of a file of cards."""
    job = problem.job
    path = os.path.join(os.path.dirname(job.path), section.values["file"])
    try:
        with open(path, encoding="utf-8") as file:
            lines = [(number, line.rstrip()) for number, line in enumerate(file, 1)
                     if not line.startswith(("C ", "C*", "C-")) and line.strip() not in ("", "C")]
    except OSError as error:
        raise job_error(job, section.place + ("file",), f"{path}: {error.strerror}") from None
    except UnicodeDecodeError:
        raise job_error(job, section.place + ("file",), f"{path} is no text") from None
    try:
        unit = parse_unit(section.values["unit"] or "um")
    except UnitFault as fault:
        raise job_error(job, section.place + ("unit",), str(fault)) from None
    if unit[1] != METRE:
        raise job_error(job, section.place + ("unit",), f"\"{section.values['unit']}\" is no unit of length")
    factor = float(unit[0] / job.deck_units["length"][0])
    reader, sets = CardReader(path, lines), []
    while reader.place < len(reader.lines):
        sets.append(read_set(reader, factor))
    if not sets:
        raise job_error(job, section.place + ("file",), f"{path} has no fibre sets")
    return sets
