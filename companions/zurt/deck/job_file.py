"""Job files: read, held against the tables of keys, numbers converted to the deck's units."""
import os
import tomllib
from dataclasses import dataclass, field

from ..errors import ZurtError
from .job_errors import job_error, place_text, suggest
from .job_keys import REQUIRED
from .job_values import convert_value
from .keys_model import JOB_WIDE, TABLES
from .quantities import UnitFault, parse_unit
from .toml_lines import find_lines


@dataclass
class Section:
    """A table of the job. place: names and numbers from zero. values: key to converted value, defaults too; given: keys that stand in the file.
    tables: name to Section or None, arrays: name to list of Sections.
    """
    place: tuple
    values: dict = field(default_factory=dict)
    given: set = field(default_factory=set)
    tables: dict = field(default_factory=dict)
    arrays: dict = field(default_factory=dict)


@dataclass
class Job:
    """path: of the job file. lines: place to line. units: base to (factor, exponents) as declared; deck_units: those of the deck.
    settings: the table [deck]. problems: a Section each. length_factor: from lengths of the mesh to those of the deck.
    """
    path: str
    lines: dict
    units: dict = field(default_factory=dict)
    deck_units: dict = field(default_factory=dict)
    settings: Section = None
    problems: list = field(default_factory=list)
    length_factor: float = 1.0


def children_of(path):
    """Name to Table of the tables within one; path "" is a problem."""
    depth = path.count(".") + 1 if path else 0
    inside = (path + ".") if path else ""
    return {table.path.rsplit(".", 1)[-1]: table for table in TABLES.values()
            if table.path and table.path.startswith(inside) and table.path.count(".") == depth and table.path not in JOB_WIDE}


def read_section(job, table, raw, place, functions):
    """A table of the file as a Section. functions: raw tables of [functions]."""
    if not isinstance(raw, dict):
        raise job_error(job, place, f"a table is wanted ([{place_text(place)}]), not {raw!r}")
    section, children = Section(place), children_of(table.path)
    if table.path == "functions":
        return section
    for name in raw:
        if name not in table.keys and name not in children:
            raise job_error(job, place + (name,), "there is no such key" + suggest(name, list(table.keys) + list(children)))
    for name, key in table.keys.items():
        if name in raw:
            section.values[name] = convert_value(job, key, raw[name], place + (name,), functions)
            section.given.add(name)
        elif key.default == REQUIRED:
            raise job_error(job, place, f"the key {name} is missing: {key.text}")
        else:
            section.values[name] = key.default
    for name, child in children.items():
        given = raw.get(name)
        if not child.many:
            section.tables[name] = read_section(job, child, given, place + (name,), functions) if given is not None else None
            continue
        if given is not None and not isinstance(given, list):
            raise job_error(job, place + (name,), f"an array of tables is wanted ([[{child.path}]])")
        section.arrays[name] = [read_section(job, child, entry, place + (name, i), functions) for i, entry in enumerate(given or [])]
    return section


def read_unit(job, base, text):
    """Factor and exponents of a declared unit."""
    try:
        return parse_unit(text)
    except UnitFault as fault:
        raise job_error(job, ("units", base), str(fault)) from None


def has_wall_distances(raw):
    """Whether a problem has tables whose distances the program takes in nanometres."""
    device = raw.get("device")
    return "fibres" in raw or bool(raw.get("fibre_set")) or (isinstance(device, dict) and "table" in device)


def read_units(job, raw, problems):
    """The declared units and those of the deck."""
    units = read_section(job, TABLES["units"], raw, ("units",), {}).values
    for base in ("length", "time", "concentration", "capacity"):
        if units[base] is not None:
            job.units[base] = read_unit(job, base, units[base])
    wanted = {"length": (1, 0, 0, 0, 0), "time": (0, 0, 1, 0, 0)}
    for base, exponents in wanted.items():
        if base in job.units and job.units[base][1] != exponents:
            raise job_error(job, ("units", base), f"\"{units[base]}\" is no unit of {base}")
    job.deck_units = dict(job.units)
    deck_length = units["deck_length"] or ("um" if any(has_wall_distances(entry) for entry in problems) else None)
    if deck_length and "length" not in job.units:
        raise job_error(job, ("units",), "the key length is missing: correction tables have distances in nanometres, so the unit of lengths must be known")
    if deck_length:
        job.deck_units["length"] = read_unit(job, "deck_length", deck_length)
        if job.deck_units["length"][1] != wanted["length"]:
            raise job_error(job, ("units", "deck_length"), f"\"{deck_length}\" is no unit of length")
        job.length_factor = float(job.units["length"][0] / job.deck_units["length"][0])


def load_toml(path):
    """(text, tables) of a TOML file."""
    try:
        with open(path, encoding="utf-8") as file:
            text = file.read()
        return text, tomllib.loads(text)
    except OSError as error:
        raise ZurtError(f"the job file can't be read: {error.strerror}", path) from None
    except UnicodeDecodeError:
        raise ZurtError("the job file is no text in UTF-8", path) from None
    except tomllib.TOMLDecodeError as error:
        raise ZurtError(f"no TOML: {error}", path) from None


def read_job(path):
    """The job of a file. Raises ZurtError with key and line for whatever is wrong in it."""
    text, raw = load_toml(path)
    job = Job(os.fspath(path), find_lines(text))
    units, deck, problems = raw.pop("units", {}), raw.pop("deck", {}), raw.pop("problem", None)
    if problems is not None and not (isinstance(problems, list) and all(isinstance(entry, dict) for entry in problems)):
        raise job_error(job, ("problem",), "an array of tables is wanted ([[problem]])")
    if problems == []:
        raise job_error(job, ("problem",), "there is no problem")
    if problems is not None and raw:
        raise job_error(job, (next(iter(raw)),), "with [[problem]] tables each table but [units] and [deck] belongs to one of them ([problem.NAME])")
    read_units(job, units, problems if problems is not None else [raw])
    job.settings = read_section(job, TABLES["deck"], deck, ("deck",), {})
    entries = [(("problem", i), entry) for i, entry in enumerate(problems)] if problems is not None else [((), raw)]
    for place, entry in entries:
        functions = entry.get("functions", {})
        if not isinstance(functions, dict):
            raise job_error(job, place + ("functions",), "a table is wanted ([functions])")
        job.problems.append(read_section(job, TABLES[""], entry, place, functions))
    return job
