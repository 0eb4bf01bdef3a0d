"""Runs that belong to a fit. The flows of the model with fibres are those of the deck's direct calculation, whose first pass it is, along
each direction that was fitted. A fit writes the medium's flow along the last of its directions alone, so along an earlier one it is that
of a fit of this direction by itself."""
import os
from dataclasses import dataclass, field

from .. import door
from ..errors import ZurtError
from ..results.deck_header import BASIC, HOMOGENIZATION, read_homogenization, with_field
from .fields import header_of
from .fit_story import direct_table, fitted_table

AXES = "XYZ"
KEPT = {"--solver": "solver", "--tolerance": "tolerance", "--threads": "threads", "--prescribed": "prescribed", "--wall-cells": "wall_cells",
        "--words": "words"}


@dataclass
class FitRuns:
    """Runs beside a fit. fibres: [Run] of the model with fibres. media: direction to the Run of a fit of this direction alone."""
    fibres: list = field(default_factory=list)
    media: dict = field(default_factory=dict)


def fitted_directions(run):
    """Directions of a run's fit, in their order."""
    return [axis for axis in AXES if fitted_table(run, axis)]


def solve(run):
    """FitRuns of a fit: runs what is missing in folders of the run, reads what an earlier report has run there."""
    directions = fitted_directions(run)
    if not directions:
        raise ZurtError("this run is no fit that came to an end (MASS-X.LST has no fitted parameters): there is nothing to run beside it", run.folder)
    if not run.deck or not os.path.isfile(run.deck):
        raise ZurtError("the deck of this run is not known: name it by --deck", run.folder)
    lines, found = door.read_lines(run.deck), FitRuns()
    for axis in directions:
        folder = "fibres" if len(directions) == 1 else f"fibres-{axis.lower()}"
        found.fibres.append(_run_or_read(run, "".join(direct_deck(lines, axis, run.deck)), folder, False))
    for axis in directions[:-1]:
        found.media[axis] = _run_or_read(run, "".join(single_fit(lines, axis, run.deck)), f"medium-{axis.lower()}", True)
    return found


def _run_or_read(run, text, folder, history):
    """A run of the deck with the options of the fit; that of an earlier report when it has finished the same deck."""
    folder, options = os.path.join(run.folder, folder), _options_of(run)
    deck = os.path.join(folder, "zurt.dat")
    ours = os.path.isfile(deck)
    if ours and os.path.isfile(os.path.join(folder, "run.json")):
        earlier = door.read(folder)
        if earlier.status == 0 and "".join(door.read_lines(deck)) == text and _options_of(earlier) == options:
            return earlier
    return door.run(text, folder, force=ours, history=history, **options)


def _options_of(run):
    """Options of a run that change what it computes, or how fast."""
    arguments = run.arguments
    return {KEPT[name]: value for name, value in zip(arguments, arguments[1:]) if name in KEPT}


def homogenization_of(lines, path=None):
    """Fields of a deck's header and homogenization cards; a ZurtError where it is no deck of a fit in fixed format."""
    header = read_homogenization(lines, path)
    if header["INDFOR"] != 2:
        raise ZurtError("only decks in fixed format are changed for such runs: run the model with fibres (IDIRECTD 1) and name the run by --fibres", path)
    if header["IEHM"] != 1 or header["NFIT"] != 1:
        raise ZurtError("the homogenization card of this deck asks for no fit (IEHM 1, NFIT 1)", path, header["lines"]["NSETS"] + 1)
    return header


def direct_deck(lines, axis="X", path=None):
    """Lines of the deck with IDIRECTD 1 on its basic data card, in which the cards of a fit count for nothing, and INDDEG that of the axis."""
    header = homogenization_of(lines, path)
    lines = with_field(lines, header, BASIC, "IDIRECTD", 1)
    return with_field(lines, header, HOMOGENIZATION, "INDDEG", AXES.index(axis) + 1)


def single_fit(lines, axis, path=None):
    """Lines of the deck of a fit along this axis alone."""
    header = homogenization_of(lines, path)
    for other in AXES:
        lines = with_field(lines, header, HOMOGENIZATION, f"INDFIT{other}", int(other == axis))
    return with_field(lines, header, HOMOGENIZATION, "INDDEG", AXES.index(axis) + 1)


def main_direction(run):
    """X, Y or Z by the INDDEG of the run's deck, None where it is not known."""
    if not run.deck or not os.path.isfile(run.deck):
        return None
    try:
        header = read_homogenization(door.read_lines(run.deck), run.deck)
        return AXES[min(max(header["INDDEG"], 1), 3) - 1] if header["INDFOR"] == 2 else None
    except (ZurtError, IndexError):
        return None


def fibre_flow(runs, axis):
    """(n,) flow of the model with fibres along an axis: of a run of the direct calculation, or of a plain run of that model with a history
    whose INDDEG is that axis; None without."""
    for run in runs:
        for table in run.masses.get(axis, []):
            if table.flows is not None and "fibres" in table.flows.dtype.names:
                return table.flows["fibres"]
    for run in runs:
        history = None if any(direct_table(run, each) for each in run.masses) else first_history(run)
        if history is not None and "inlet" in history.dtype.names and (main_direction(run) or "X") == axis:
            return history["inlet"]
    return None


def medium_flow(run, axis):
    """(times, flow) of the medium along an axis, that of the last direction of a run's fit: from the history, which has all digits, else
    from the mass file, whose times are those of printed steps: None where these are others. None without a flow."""
    if axis != fitted_directions(run)[-1]:
        return None
    history, flows = first_history(run), fitted_table(run, axis).flows
    if history is not None and "inlet" in history.dtype.names and len(history):
        return history["time"], history["inlet"]
    if flows is None or not len(flows) or "flow" not in flows.dtype.names:
        return None
    return flows["time"] if header_of(run).get("NPRINT", 1) in (0, 1) else None, flows["flow"]


def first_history(run):
    """Values of the first problem's table of balances, None without."""
    return run.histories[0].values if run.histories and run.histories[0] else None
