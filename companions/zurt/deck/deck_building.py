"""A deck from a job and its meshes."""
import os
import subprocess
from dataclasses import dataclass, field

from ..errors import ZurtError
from ..program import find_program
from .card_writer import ALL_FREE, FIXED, FREE, DeckText, check_columns
from .element_groups import gather_groups
from .fibre_sets import gather_fibre_sets
from .meshes import numbered_mesh
from .node_data import gather_nodes, gather_radial
from .prescribed import prescribed_text, wants_file
from .problem_checks import check_device, check_problem, check_sequence
from .problem_model import Problem
from .sides import gather_sides
from .write_boundary import write_functions, write_time_functions
from .write_fibres import write_channel_table, write_fibres
from .write_head import end_of_run, has_device_cards, write_head
from .write_materials import write_materials
from .write_mesh import needs_columns, write_groups, write_nodes, write_sides


@dataclass
class BuiltDeck:
    """lines: of the deck. prescribed: lines of the file of prescribed values, or None. problems: Problem records. forms: format of each problem.
    bands: words of the skyline store (before, after) of each problem, None where nodes keep their numbers. options: what zurt needs to run the deck.
    """
    lines: list = field(default_factory=list)
    prescribed: list = None
    problems: list = field(default_factory=list)
    forms: list = field(default_factory=list)
    bands: list = field(default_factory=list)
    options: list = field(default_factory=list)
    notes: list = field(default_factory=list)


def program_has(option):
    """Whether the program at hand knows an option; not when there is no program."""
    try:
        shown = subprocess.run([find_program(), "--help"], capture_output=True, text=True, timeout=20, check=False)
    except (ZurtError, OSError, subprocess.TimeoutExpired):
        return False
    return option in shown.stdout + shown.stderr


def write_problem(problem, form):
    """The cards of a problem as a DeckText."""
    values = problem.job.settings.values
    deck = DeckText(form, values["rounding"], values["comments"])
    write_head(problem, deck)
    write_nodes(problem, deck)
    write_fibres(problem, deck)
    write_groups(problem, deck)
    write_materials(problem, deck)
    if has_device_cards(problem):
        write_channel_table(problem, deck)
    write_time_functions(problem, deck)
    write_functions(problem, deck)
    write_sides(problem, deck)
    return deck


def choose_form(problem):
    """The format that a job asks for: FIXED, FREE, ALL_FREE, or None where it is left open."""
    wanted = problem.section.values["format"] or problem.job.settings.values["format"]
    if wanted == "free":
        return ALL_FREE if needs_columns(problem) else FREE
    if wanted == "fixed":
        return FIXED
    return None if needs_columns(problem) else FREE


def write_in_form(problem, built):
    """The cards of a problem in the format that suits."""
    form = choose_form(problem)
    deck = write_problem(problem, form or FIXED)
    if deck.overflows and form is None and program_has("--free"):
        built.notes.append(f"{deck.overflows[0]}; so all cards are free")
        deck = write_problem(problem, ALL_FREE)
    check_columns(deck, problem.job.path)
    if deck.losses:
        change, what = max(deck.losses)
        built.notes.append(f"fixed columns round numbers by {change:.1e} of their size at most ({what})")
    built.forms.append(deck.form)
    return deck


def gather_problem(job, section, mesh):
    """The Problem of a section of the job and a mesh whose nodes stand in the order of the deck."""
    problem = Problem(job, section, mesh)
    problem.end = end_of_run(problem)
    check_device(problem)
    gather_radial(problem)
    gather_groups(problem)
    gather_nodes(problem)
    gather_sides(problem)
    gather_fibre_sets(problem)
    check_problem(problem)
    return problem


def build_deck(job, meshes):
    """The deck of a job. meshes: a Mesh for each problem. Raises ZurtError."""
    built = BuiltDeck()
    if job.length_factor != 1.0:
        built.notes.append(f"the deck is in other lengths than the job: the mesh is scaled by {job.length_factor:g}")
    for number, (section, mesh) in enumerate(zip(job.problems, meshes), 1):
        mesh, words = numbered_mesh(job, section, mesh)
        problem = gather_problem(job, section, mesh)
        deck = write_in_form(problem, built)
        built.lines += deck.lines
        if deck.form == FIXED and number < len(job.problems):
            built.lines.append(f"==== end of problem {number} ====")
        built.problems.append(problem)
        built.bands.append(words)
    built.lines.append("STOP")
    check_sequence(job, built.problems, built.forms)
    built.notes += dict.fromkeys(note for problem in built.problems for note in problem.notes)
    if ALL_FREE in built.forms:
        built.options.append("--free")
    if any(wants_file(problem) for problem in built.problems):
        built.prescribed = prescribed_text(built.problems)
    return built


def prescribed_path(job, deck_path):
    """Where the file of prescribed values goes: beside the deck."""
    names = [setting_of(section, "file") for section in job.problems]
    given = [name for name in names if name]
    stem = os.path.splitext(os.path.basename(deck_path))[0]
    return os.path.join(os.path.dirname(deck_path), given[0] if given else f"{stem}-prescribed.dat")


def setting_of(section, key):
    """Key of [prescribed] of a problem's section."""
    inside = section.tables["prescribed"]
    return inside.values[key] if inside else None
