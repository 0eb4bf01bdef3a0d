"""A pool of runs over a grid of parameters, one folder each, with their results in a table."""
import csv
import itertools
import os
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field

import numpy

from .door import run
from .errors import ZurtError

OWN = ("status", "seconds", "folder", "message")


@dataclass
class Study:
    """rows: a dict for each run, in the order of the grid: its parameters, what was measured, and status, seconds, folder, message. runs: the
    Run of each, None when it could not begin."""
    rows: list
    runs: list = field(default_factory=list)

    def column(self, name):
        """Array of one column; NaN for runs that have no such number."""
        if not any(name in row for row in self.rows):
            known = ", ".join(dict.fromkeys(key for row in self.rows for key in row))
            raise ZurtError(f"the study has no column {name}; there are {known}")
        values = [row.get(name) for row in self.rows]
        return numpy.array([numpy.nan if value is None else value for value in values])

    def save(self, path):
        """Writes the table as comma separated values."""
        names = list(dict.fromkeys(key for row in self.rows for key in row if key not in OWN)) + list(OWN)
        with open(path, "w", newline="", encoding="utf-8") as file:
            writer = csv.DictWriter(file, names, restval="")
            writer.writeheader()
            writer.writerows(self.rows)


def study(decks, grid=None, measure=None, folder="study", workers=2, **options):
    """Runs decks side by side and returns a Study.

    decks: a list of paths, a dict of names to paths or texts, or a function of the grid's parameters that returns a path or the text of a
    deck. grid: dict of a parameter's name to its values; all combinations are run, the last one changing first. measure: function of a Run
    that returns a dict of results. options: those of zurt.run. A run that fails has its message in the table, and the others go on."""
    members = _members(decks, grid)
    os.makedirs(folder, exist_ok=True)
    width = len(str(len(members)))
    jobs = [(parameters, deck, os.path.join(folder, f"{k:0{width}d}")) for k, (parameters, deck) in enumerate(members, 1)]
    with ThreadPoolExecutor(max(1, workers)) as pool:
        done = list(pool.map(lambda job: _run_member(*job, measure, options), jobs))
    return Study([row for row, _ in done], [found for _, found in done])


def _members(decks, grid):
    if callable(decks):
        if not grid:
            raise ZurtError("a function of decks takes a grid: a dict of its parameters to their values")
        names = list(grid)
        combinations = [dict(zip(names, values)) for values in itertools.product(*grid.values())]
        return [(parameters, lambda parameters=parameters: decks(**parameters)) for parameters in combinations]
    if grid:
        raise ZurtError("a grid goes with a function of its parameters that makes decks, not with a list of decks")
    decks = [decks] if isinstance(decks, (str, os.PathLike)) else decks
    named = decks.items() if isinstance(decks, dict) else ((os.fspath(deck), deck) for deck in decks)
    return [({"deck": name}, lambda deck=deck: deck) for name, deck in named]


def _run_member(parameters, make_deck, folder, measure, options):
    row, found, message = dict(parameters), None, ""
    try:
        found = run(make_deck(), folder, **options)
        row.update(measure(found) if measure else {})
    except ZurtError as error:
        found, message = getattr(error, "run", found), str(error)
    except Exception as error:  # of the caller's own functions: the other runs go on
        message = f"{type(error).__name__}: {error}"
    row.update(status=found.status if found else None, seconds=found.seconds if found else None, folder=folder, message=message)
    return row, found
