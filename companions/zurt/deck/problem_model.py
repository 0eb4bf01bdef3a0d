"""A problem of the deck between job and cards."""
from dataclasses import dataclass, field

import numpy

from .keys_model import TABLES


@dataclass
class DeckGroup:
    """An element group. elements: (m, k) node numbers from 1, 0 where absent. material, source, coordinates, concentrations: (m,) integers;
    area, thickness: (m,). Numbers of sources are those of the family of functions; 0 stands for none here.
    """
    section: object
    dimension: int
    elements: numpy.ndarray
    material: numpy.ndarray
    source: numpy.ndarray
    area: numpy.ndarray
    thickness: numpy.ndarray
    coordinates: numpy.ndarray
    concentrations: numpy.ndarray
    sides: list = field(default_factory=list)


@dataclass
class RadialFibre:
    """nodes: for the card of nodes, from 1; continuum: the node that shares its value."""
    section: object
    nodes: list
    continuum: int


@dataclass
class Problem:
    """points: (n, 3) in the deck's unit, nodes of radial fibres last. indicator, value: (n,). held: (section, rows of nodes) of [[held]].
    functions: family (NQE, NQP, NTOK, NHP, NHR) to its curves. shape_factors: of NHR. end: time at the end of the run.
    """
    job: object
    section: object
    mesh: object
    points: numpy.ndarray = None
    indicator: numpy.ndarray = None
    value: numpy.ndarray = None
    held: list = field(default_factory=list)
    starts: list = field(default_factory=list)
    groups: list = field(default_factory=list)
    radial: list = field(default_factory=list)
    fibre_sets: list = field(default_factory=list)
    functions: dict = field(default_factory=lambda: {name: [] for name in ("NQE", "NQP", "NTOK", "NHP", "NHR")})
    shape_factors: list = field(default_factory=list)
    end: float = 0.0
    notes: list = field(default_factory=list)


def values_of(section, name):
    """Values of a table within a section, an empty record where it is missing."""
    inside = section.tables.get(name)
    return inside.values if inside else {}


def setting(problem, path, key):
    """Value of a key of a table of the problem, its default where the table is missing. path: "device" or "model"."""
    inside = problem.section.tables.get(path)
    return inside.values[key] if inside else TABLES[path].keys[key].default


def choice_of(problem, path, key):
    """The number that the deck has for the name that a key has chosen."""
    choices = TABLES[path].keys[key].type.partition(":")[2].split(",")
    return int(dict(entry.split("=") for entry in choices)[setting(problem, path, key)])


def is_given(problem, path, key):
    """Whether the job gives this key."""
    inside = problem.section.tables.get(path)
    return bool(inside) and key in inside.given


def function_number(problem, family, curve):
    """Number of a curve in a family of functions, from 1; curves of equal points are one."""
    curves = problem.functions[family]
    for number, known in enumerate(curves, 1):
        if known.points == curve.points and known.constant == curve.constant:
            return number
    curves.append(curve)
    return len(curves)
