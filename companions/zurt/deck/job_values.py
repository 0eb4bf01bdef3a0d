"""Values of a job's keys: their types tested, their units converted."""
from dataclasses import dataclass
from math import isfinite

import numpy

from .job_errors import job_error, suggest
from .quantities import UnitFault, convert

BUILT_IN = "built-in"


@dataclass(frozen=True)
class Curve:
    """points: pairs (argument, value), a tuple of tuples. A constant has one pair, of argument 0. place: key of the job, for messages."""
    points: tuple
    constant: bool
    place: tuple


def as_quantity(job, place, raw, kind):
    """A number in the deck's units. kind: with a + behind it the number is 0 or above."""
    kind, positive = kind.removesuffix("+"), kind.endswith("+")
    if isinstance(raw, bool) or not isinstance(raw, (int, float, str)):
        raise job_error(job, place, f"a number is wanted, or a text with a unit as \"5 nm\", not {raw!r}")
    try:
        value = convert(raw, kind, job.units, job.deck_units)
    except UnitFault as problem:
        raise job_error(job, place, str(problem)) from None
    except (OverflowError, ValueError):
        raise job_error(job, place, f"{raw!r} is no finite number") from None
    if not isfinite(value):
        raise job_error(job, place, f"{raw!r} is no finite number")
    if positive and value < 0.0:
        raise job_error(job, place, f"{raw!r}: a value of 0 or above is wanted")
    return value


def as_list(job, place, raw, kind):
    """A list of numbers: one number, a list, or a table of values with their unit, { unit = "nm", values = [...] }."""
    if isinstance(raw, dict):
        if set(raw) != {"unit", "values"} or not isinstance(raw["unit"], str) or not isinstance(raw["values"], list):
            raise job_error(job, place, "a list is wanted, or { unit = \"nm\", values = [...] }")
        raw = [f"{value!r} {raw['unit']}" if isinstance(value, (int, float)) and not isinstance(value, bool) else value for value in raw["values"]]
    return [as_quantity(job, place, value, kind) for value in (raw if isinstance(raw, list) else [raw])]


def as_integer(job, place, raw, limits=""):
    """A whole number that fits the program's integers. limits: "0..3", or "1.." without an upper one."""
    if isinstance(raw, bool) or not isinstance(raw, int):
        raise job_error(job, place, f"an integer is wanted, not {raw!r}")
    if abs(raw) > 2147483647:
        raise job_error(job, place, f"{raw} is too large")
    low, _, high = limits.partition("..")
    if (low and raw < int(low)) or (high and raw > int(high)):
        raise job_error(job, place, f"{raw} is not among the values {low} to {high}" if high else f"{raw} is below {low}")
    return raw


def as_texts(job, place, raw):
    """A text or a list of them."""
    texts = raw if isinstance(raw, list) else [raw]
    if not texts or not all(isinstance(text, str) for text in texts):
        raise job_error(job, place, f"a text or a list of texts is wanted, not {raw!r}")
    return texts


def as_choice(job, place, raw, choices):
    """The number behind a name. choices: "name=1,other=2"."""
    known = dict(entry.split("=") for entry in choices.split(","))
    name = str(raw).lower() if isinstance(raw, bool) else raw
    if not isinstance(name, str) or name not in known:
        raise job_error(job, place, f"there is no such choice: {raw!r}" + suggest(name, known))
    return name


def as_points(job, place, raw):
    """An array (n, 3) of lengths."""
    if not isinstance(raw, list) or not all(isinstance(point, list) and len(point) == 3 for point in raw):
        raise job_error(job, place, "points are wanted, lists of three lengths")
    return numpy.array([[as_quantity(job, place, value, "length") for value in point] for point in raw], dtype=float).reshape(-1, 3)


def as_matrix(job, place, raw, kind):
    """Rows of numbers; a plain list is one column."""
    if not isinstance(raw, list) or not raw:
        raise job_error(job, place, "rows of numbers are wanted")
    return [as_list(job, place, row, kind) for row in raw]


def as_curve(job, place, raw, kinds, functions, constant_allowed):
    """A Curve from a constant, a table or the name of a table. kinds: "time>source"."""
    argument, value = kinds.split(">")
    if raw == BUILT_IN and value in ("diffusion", "capacity"):
        return BUILT_IN
    if isinstance(raw, str) and (raw in functions or raw[:1].isalpha()):
        if raw not in functions:
            raise job_error(job, place, f"there is no table \"{raw}\" in [functions]" + suggest(raw, functions))
        raw = functions[raw]
    if not isinstance(raw, list):
        if not constant_allowed:
            raise job_error(job, place, "a table of pairs is wanted, [[argument, value], ...]")
        return Curve(((0.0, as_quantity(job, place, raw, value)),), True, place)
    if not raw or not all(isinstance(pair, list) and len(pair) == 2 for pair in raw):
        raise job_error(job, place, "a table is a list of pairs [argument, value]")
    points = tuple((as_quantity(job, place, pair[0], argument), as_quantity(job, place, pair[1], value)) for pair in raw)
    for before, after in zip(points, points[1:]):
        if after[0] <= before[0]:
            raise job_error(job, place, f"the arguments of a table must rise: {after[0]:g} follows {before[0]:g}")
    return Curve(points, False, place)


def convert_value(job, key, raw, place, functions):
    """The value of a key. functions: raw tables of [functions]. Raises ZurtError that names the key."""
    kind, _, detail = key.type.partition(":")
    if kind == "text":
        if not isinstance(raw, str):
            raise job_error(job, place, f"a text is wanted, not {raw!r}")
        return raw
    if kind == "flag":
        if not isinstance(raw, bool):
            raise job_error(job, place, f"true or false is wanted, not {raw!r}")
        return raw
    if kind in ("integers", "nodes"):
        return [as_integer(job, place, value, detail) for value in (raw if isinstance(raw, list) else [raw])]
    if kind == "switches":
        names = as_texts(job, place, raw)
        return [as_choice(job, place, name, ",".join(f"{entry}=1" for entry in detail.split(","))) for name in names]
    if kind == "point":
        return as_points(job, place, [raw])[0]
    if kind in ("curve", "pairs"):
        return as_curve(job, place, raw, detail, functions, kind == "curve")
    readers = {"names": as_texts, "points": as_points}
    if kind in readers:
        return readers[kind](job, place, raw)
    return {"integer": as_integer, "quantity": as_quantity, "list": as_list, "matrix": as_matrix, "choice": as_choice}[kind](job, place, raw, detail)
