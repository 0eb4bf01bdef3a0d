"""Fibres in CSV files: a head with the names of the columns, a row a fibre. Lines have both ends, balls their centre."""
import csv

import numpy

from ..errors import ZurtError
from .model import BALLS, LINES, Fibres

LINE_COLUMNS = ["x1", "y1", "z1", "x2", "y2", "z2", "diameter"]
BALL_COLUMNS = ["x", "y", "z", "diameter"]
COMMENT = "#"


def read_table(path, unit, box):
    """Fibres of a CSV file. unit: micrometres of one unit of the file. box: (3,) sizes in micrometres."""
    rows, lines = read_rows(path)
    head = [name.strip().lower() for name in rows[0]]
    names = LINE_COLUMNS if "x1" in head else BALL_COLUMNS
    missing = [name for name in names if name not in head]
    if missing:
        raise ZurtError(f"there is no column {missing[0]}; a file of lines has {','.join(LINE_COLUMNS)} in its first line, one of balls "
                        f"{','.join(BALL_COLUMNS)}", path, lines[0])
    columns = [head.index(name) for name in names]
    values = unit * numpy.array([numbers_of(path, line, row, columns) for row, line in zip(rows[1:], lines[1:])]).reshape(-1, len(names))
    check_rows(path, lines[1:], values, names, unit)
    points = values[:, :3], values[:, 3:6] if names is LINE_COLUMNS else values[:, :3].copy()
    return Fibres(*points, values[:, -1], LINES if names is LINE_COLUMNS else BALLS, box)


def read_rows(path):
    """(rows, their lines in the file) without comments and blank lines."""
    try:
        with open(path, newline="", encoding="utf-8-sig") as file:
            text = file.read().splitlines()
    except OSError as error:
        raise ZurtError(error.strerror, path) from None
    except UnicodeDecodeError:
        raise ZurtError("no text file in UTF-8", path) from None
    kept = [(line, number) for number, line in enumerate(text, 1) if line.strip() and not line.startswith(COMMENT)]
    if len(kept) < 2:
        raise ZurtError("a first line with the names of the columns and at least one fibre are needed", path)
    separator = ";" if ";" in kept[0][0] else ","
    try:
        return list(csv.reader((line for line, _ in kept), delimiter=separator)), [number for _, number in kept]
    except csv.Error as error:
        raise ZurtError(f"no table: {error}", path) from None


def numbers_of(path, line, row, columns):
    try:
        return [float(row[column]) for column in columns]
    except IndexError:
        raise ZurtError(f"the row has {len(row)} values, and {max(columns) + 1} are needed", path, line) from None
    except ValueError as error:
        raise ZurtError(f"{str(error).split(':')[-1].strip()} is no number", path, line) from None


def check_rows(path, lines, values, names, unit):
    def refuse(wrong, what):
        if wrong.any():
            raise ZurtError(what, path, lines[int(wrong.argmax())])

    refuse(~numpy.isfinite(values).all(axis=1), "every value is a finite number")
    refuse(values[:, -1] <= 0.0, "a diameter is above 0")
    if names is LINE_COLUMNS:
        refuse((values[:, :3] == values[:, 3:6]).all(axis=1), "both ends of the fibre are equal; a line has a length")


def write_table(path, fibres):
    """Writes the fibres in micrometres, so that read_table gives them back."""
    lines = fibres.shape == LINES
    values = [fibres.starts, fibres.ends] if lines else [fibres.starts]
    with open(path, "w", encoding="utf-8") as file:
        file.write("# lengths in micrometres\n" + ",".join(LINE_COLUMNS if lines else BALL_COLUMNS) + "\n")
        numpy.savetxt(file, numpy.column_stack([*values, fibres.diameters]), fmt="%.17g", delimiter=",")
