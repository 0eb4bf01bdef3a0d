"""The story of a fit: its searches with the values tried and their errors, and how the flows of both models differ."""
import re
from dataclasses import dataclass, field

import numpy

_VALUE = re.compile(r"fit in ([xyz]), run (\d+), (HEQ|curve from) (\d\.\d+E[-+]\d+)$")
WORDS = {"HEQ": "wall distance HEQ", "D-C curve": "diffusion curve"}


@dataclass
class Search:
    """direction: x, y or z. parameter: what was searched, in words. key: HEQ or D1D. runs: (n,) numbers of runs of the medium from 2 on (the program
    states no error for the first). values: (n,) of the parameter, NaN where they were not kept. errors: (n,) relative, positive for too much
    mass. brackets: (n, 2) largest value known to pass too little and smallest known to pass too much behind each run, NaN before."""
    direction: str
    parameter: str
    key: str
    fibres: str
    runs: numpy.ndarray
    values: numpy.ndarray
    errors: numpy.ndarray
    brackets: numpy.ndarray
    finished: bool
    wanted: dict = field(default_factory=dict)


def read_searches(run):
    """Search of each of a run's fit; empty when its console was not kept."""
    if run.console is None:
        return []
    tried = {}
    for place in dict.fromkeys(run.progress[0]):
        match = _VALUE.search(place)
        if match:
            key = "HEQ" if match.group(3) == "HEQ" else "D1D"
            tried[match.group(1), key, int(match.group(2))] = float(match.group(4))
    return [_search(search, tried) for search in run.console.searches]


def _search(search, tried):
    direction, key = search.direction.lower() or "x", "HEQ" if search.parameter == "HEQ" else "D1D"
    runs = numpy.arange(2, len(search.errors) + 1)
    values = numpy.array([tried.get((direction, key, int(number)), numpy.nan) for number in runs])
    errors = numpy.array(search.errors[1:], float)
    return Search(direction, WORDS.get(search.parameter, search.parameter), key, search.fibres, runs, values, errors,
                  _brackets(values, errors), search.finished)


def _brackets(values, errors):
    brackets, little, much = numpy.full((len(values), 2), numpy.nan), numpy.nan, numpy.nan
    for k, (value, error) in enumerate(zip(values, errors)):
        if error > 0.0:
            much = value
        else:
            little = value
        brackets[k] = (little, much)
    return brackets


@dataclass
class Flows:
    """Flow through the inlet cross-section, step by step. time: (n,), or numbers of the steps. fibres, medium: (n,) of both models.
    difference: (n,) medium over fibres less one. passed: relative difference of what passed over all steps."""
    time: numpy.ndarray
    fibres: numpy.ndarray
    medium: numpy.ndarray
    difference: numpy.ndarray
    passed: float


def compare_flows(time, fibres, medium):
    """Flows of both models at the same steps; as many as both have. time: ends of the steps; zeros of a steady problem, whose steps count
    alike; None where it is not known, so that what has passed is not, either. Without times steps are counted in their place."""
    count = min(len(each) for each in (time, fibres, medium) if each is not None)
    fibres, medium = (numpy.asarray(each, float)[:count] for each in (fibres, medium))
    counted = numpy.arange(1.0, count + 1.0)
    time = numpy.full(count, numpy.nan) if time is None else numpy.asarray(time, float)[:count]
    place = time if time.any() and numpy.isfinite(time).all() else counted
    steps = numpy.diff(numpy.concatenate([[0.0], time])) if time.any() else numpy.ones(count)
    total = float(numpy.sum(steps * fibres))
    with numpy.errstate(divide="ignore", invalid="ignore"):
        difference = medium / fibres - 1.0
    passed = float(numpy.sum(steps * medium)) / total - 1.0 if total else numpy.nan
    return Flows(place, fibres, medium, difference, passed)


def fitted_table(run, direction):
    """The MassTable of a fit in a direction, None without."""
    return next((table for table in run.masses.get(direction, []) if table.fitted), None)


def direct_table(run, direction):
    """The MassTable of a direct calculation, None without."""
    return next((table for table in run.masses.get(direction, []) if len(table.coefficients)), None)
