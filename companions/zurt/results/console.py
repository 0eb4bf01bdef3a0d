"""What the program says on standard output: iterations of every step, and the story of a fit, which stands nowhere else."""
import re
from dataclasses import dataclass, field

import numpy

from ..errors import ZurtError
from .listing import ITERATION
from .numbers import number

_DIRECTION = re.compile(r"^ (?:Homogenization for Difusion|Homogenizacija za difuziju) +([XYZ])")
_FIBRES = re.compile(r"^ running FIB model - (.*)")
_MEDIUM = re.compile(r"^ running EHM model - Calculation of (.*?)\.\.\.")
_TRIAL = re.compile(r"^ +(\d+) +(-?\d*\.\d+[ED][+-]\d+|NaN|-?Inf\w*)\s*$")
_STEP = re.compile(r"^ ITERATIONS FOR STEP: *(\d+) / *(\d+)")
_ITERATION = re.compile(r"^ ITERATION = *(\d+): \w+ *= *(\S+) +\w+ *= *(\S+)")
_RATIOS = re.compile(r"^ +ICR/\w+ *= *(\S+) +ICR/\w+ *= *(\S+)")


@dataclass
class FitSearch:
    """A search of a fit: runs of the medium until its mass is that of the model with fibres. direction: X, Y or Z. parameter: D-C curve or
    HEQ. fibres: how the model with fibres was run (without SF: without correction factors). errors: relative error in mass of each run of the
    medium, positive when it passes too much. finished: it came to a result."""
    direction: str
    parameter: str
    fibres: str
    errors: list = field(default_factory=list)
    finished: bool = False


@dataclass
class Console:
    """searches: list of FitSearch. passes: structured arrays ITERATION, one for each pass through the steps of time that writes results."""
    searches: list
    passes: list


def read_console(path):
    """Reads what standard output of a run was sent to."""
    try:
        with open(path, encoding="latin-1") as file:
            return parse_console(file)
    except OSError as error:
        raise ZurtError(error.strerror, path) from None


def parse_console(lines):
    """Console of an iterable of lines."""
    console, rows, step = Console([], []), [], 0
    direction, fibres, open_search, last, fitting = "", "", None, None, False
    for line in lines:
        if match := _DIRECTION.match(line):
            direction, fitting = match.group(1), True
        elif match := _FIBRES.match(line):
            fibres = match.group(1).strip()
        elif match := _MEDIUM.match(line):
            open_search = FitSearch(direction, match.group(1).strip(), fibres)
            console.searches.append(open_search)
        elif line.startswith(" Max number of iterations"):
            open_search = None  # without a result
        elif "finished" in line.lower():
            fitting = fitting and "HOMOGENIZATION" not in line
            if open_search:
                open_search.finished, open_search = True, None
        elif open_search and (match := _TRIAL.match(line)):
            open_search.errors.append(number(match.group(2)))
        elif fitting:
            continue  # steps of the fit's own runs, which say something when an increment is small
        elif match := _STEP.match(line):
            if int(match.group(1)) < step:
                console.passes.append(numpy.array(rows, ITERATION))
                rows = []
            elif int(match.group(1)) == step == 1:
                console.passes.append(numpy.array(rows, ITERATION))
                rows = []
            step = int(match.group(1))
        elif match := _ITERATION.match(line):
            last = (step, int(match.group(1)), number(match.group(2)), number(match.group(3)))
        elif last and (match := _RATIOS.match(line)):
            rows.append((*last, number(match.group(1)), number(match.group(2))))
            last = None
    if rows:
        console.passes.append(numpy.array(rows, ITERATION))
    return console
