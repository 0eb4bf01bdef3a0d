"""What a job asks for that the program would pass over in silence, or take for something else: refused, or told in a note."""
import numpy

from ..mesh.checks import SMALLEST_JACOBIAN, jacobians
from .card_writer import FIXED
from .job_errors import job_error, place_text
from .problem_model import setting
from .write_boundary import iterates
from .write_head import has_device_cards, has_time_functions

DEVICE_CARDS = ("length", "depth", "width", "second_length", "molar_mass", "molecule_diameter", "divisions", "second_divisions")


def check_problem(problem):
    """All tests of a problem that has been gathered."""
    check_held(problem)
    check_unit_of_deck(problem)
    note_linear(problem)
    note_axis_of_sides(problem)


def check_device(problem):
    """Refuses what asks for device cards where the deck has none."""
    device = problem.section.tables["device"]
    if device is None or has_device_cards(problem):
        return
    if setting(problem, "device", "nanochannel"):
        raise job_error(problem.job, device.place + ("nanochannel",), "a nanochannel needs device.mode above 0")
    idle = [key for key in DEVICE_CARDS if key in device.given] + (["table"] if device.tables["table"] else [])
    if idle:
        raise job_error(problem.job, device.place + (idle[0],), "the deck has a place for it with device.mode and device.nanochannel above 0 alone")


def check_held(problem):
    """Refuses prescribed values where the program takes none, and a factor of nothing."""
    for section in problem.section.arrays["held"]:
        if "factor" in section.given and section.values["value"] is None:
            raise job_error(problem.job, section.place + ("factor",), "a factor is that of a value: the key value is missing")
    section = next((section for section, _ in problem.held if section.values["value"] is not None), None)
    if section is None:
        return
    place = section.place + ("value",)
    if setting(problem, "homogenization", "fit") or setting(problem, "homogenization", "direct"):
        raise job_error(problem.job, place, "a fit and the direct calculation free all held nodes, so these have no values")
    if not iterates(problem) and (problem.end or not setting(problem, "prescribed", "constant")):
        raise job_error(problem.job, place, "a linear problem takes no values of held nodes" + ("" if problem.end else " without prescribed.constant = true"))


def check_unit_of_deck(problem):
    """Refuses a unit of the deck in which elements are too small for the program."""
    factor = problem.job.length_factor
    if factor >= 1.0:
        return
    for block in problem.mesh.blocks:
        least = min(values.min() for _, values, _ in jacobians(problem.mesh.points * factor, block))
        if least <= SMALLEST_JACOBIAN:
            raise job_error(problem.job, ("units", "deck_length"), f"in this unit elements have determinants down to {least:.3g}, and the program wants more "
                            f"than {SMALLEST_JACOBIAN:g}: a smaller unit is wanted")


def note_linear(problem):
    """A linear problem shows the solution of the step before."""
    if iterates(problem):
        return
    if problem.end:
        problem.notes.append("model.linear: a linear transient problem computes no concentrations; without this key it does")
    elif setting(problem, "steady", "steps") < 2:
        problem.notes.append("model.linear: a linear problem shows each step's solution in the step behind it: steady.steps = 2")


def note_axis_of_sides(problem):
    """Surface terms of axisymmetric groups have another radius than the areas."""
    for group in problem.groups:
        if group.dimension != 2 or not group.section.values["axisymmetric"] or not group.sides:
            continue
        places = problem.points[numpy.unique(numpy.concatenate([corners.ravel() for _, corners, _ in group.sides])) - 1]
        if numpy.abs(places[:, 0] - places[:, 1]).max() > 1e-9 * numpy.abs(places).max():
            problem.notes.append(f"{place_text(group.section.place)}: surface terms of an axisymmetric group take x for the radius, and its areas y; these "
                                 "sides lie where x and y differ, so their terms are wrong by x / y")


def check_sequence(job, problems, forms):
    """What one problem of a deck leaves to the next. forms: format of each."""
    for number, problem in enumerate(problems[1:], 1):
        echo = [setting(problems[0], "output", "echo"), setting(problem, "output", "echo")]
        if any(form != FIXED for form in forms[:number]) and echo[0] in ("data", "none") and echo[1] in ("all", "cards"):
            raise job_error(job, problem.section.place + ("output", "echo"), f"cards are listed from the first problem on or not at all: \"{echo[0]}\" there, "
                            f"\"{echo[1]}\" here would lose cards")
        outlet = any(has_device_cards(other) and has_time_functions(other) for other in problems[:number])
        if outlet and problem.held and not (has_device_cards(problem) and has_time_functions(problem)):
            problem.notes.append(f"{place_text(problem.section.place)}: held nodes without a value keep the concentration of the outlet of the problem before")
