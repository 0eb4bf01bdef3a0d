"""The recipe of random fibres, a TOML file: read, checked and brought to micrometres."""
import difflib
import math
import tomllib
from dataclasses import dataclass, field

import numpy

from ..errors import ZurtError
from .diameters import LAWS
from .model import LINES, UNITS

KEYS = {"unit", "box", "seed", "shape", "length", "volume_fraction", "number", "overlap", "gap", "periodic", "margin", "classes",
        "diameter", "orientation", "cards"}
CARD_KEYS = {"format", "wallcut", "correction", "towards"}
TABLE_KEYS = {"distances", "concentrations", "factors"}
SHAPES = ("lines", "circles", "spheres")
SMALLEST_TABLE = {"distances": [1.0, 2.0], "concentrations": [1.0], "factors": [[1.0], [1.0]]}


@dataclass
class CardChoice:
    """How cards are written. format: fixed or free. correction, towards: tables of factors (dictionaries with distances in nanometres,
    concentrations and factors, a row a distance); towards is None without a second table. wallcut in micrometres. margin: (3,) by which the
    box of the deck is larger on every side than that of the fibres."""
    format: str = "fixed"
    wallcut: float = 1.0
    correction: dict = field(default_factory=lambda: SMALLEST_TABLE)
    towards: dict = None
    margin: list = field(default_factory=lambda: [0.0, 0.0, 0.0])
    classes: int = 8


@dataclass
class Recipe:
    """Lengths in micrometres. box: 2 or 3 sizes. length: a number or "through". One of number and volume_fraction is None. diameter: see
    diameters.LAWS. tensor: (3, 3) or None for circles and spheres."""
    file: str
    box: list
    seed: int
    shape: str
    length: object
    volume_fraction: float
    number: int
    overlap: bool
    gap: float
    periodic: bool
    classes: int
    diameter: dict
    tensor: numpy.ndarray
    cards: CardChoice


def read_recipe(path):
    """The Recipe in a file; a ZurtError names the key that is wrong."""
    try:
        with open(path, "rb") as file:
            data = tomllib.load(file)
    except OSError as error:
        raise ZurtError(error.strerror, path) from None
    except (tomllib.TOMLDecodeError, UnicodeDecodeError) as error:
        raise ZurtError(f"no TOML: {error}", path) from None
    try:
        return checked(path, data)
    except ZurtError as error:
        raise ZurtError(error.message, path) from None


def checked(path, data):
    know_keys(data, KEYS, "")
    unit = UNITS[choice(data, "unit", list(UNITS), "um")]
    box = numbers(data, "box", unit, least=0.0)
    if len(box) not in (2, 3):
        raise ZurtError("box: sizes along x, y and z, or x and y in the plane, for example [1.0, 1.0, 1.0]")
    shape = choice(data, "shape", SHAPES, "lines")
    if shape != "lines" and len(box) != (2 if shape == "circles" else 3):
        raise ZurtError(f"shape: {shape} lie in a box of {2 if shape == 'circles' else 3} sizes, and box has {len(box)}")
    classes = data.get("classes", 8)
    if not is_integer(classes) or not 1 <= classes <= 1000:
        raise ZurtError("classes: a whole number from 1 to 1000, the fibre sets that a spread of diameters is written as")
    recipe = Recipe(
        path, box, seed_of(data), shape, length_of(data, shape, unit), None, None, flag(data, "overlap", False),
        number(data, "gap", 0.0, unit, least=-1.0e-300), flag(data, "periodic", False), classes, diameter_of(data, unit),
        tensor_of(data, len(box), shape), cards_of(data, unit, len(box), classes))
    recipe.volume_fraction, recipe.number = amount_of(data)
    check_together(recipe)
    return recipe


def check_together(recipe):
    if recipe.periodic and recipe.length == "through":
        raise ZurtError('periodic: fibres that go through the box have no periodic images: give length a number, or periodic = false')
    if recipe.overlap and recipe.gap > 0.0:
        raise ZurtError("gap: overlapping fibres have no gap")
    thick = largest_of(recipe.diameter) + recipe.gap
    if recipe.periodic and not recipe.overlap and thick > 0.4 * min(recipe.box):
        raise ZurtError(f"diameter: {thick:g} um is too thick for a periodic box of {min(recipe.box):g} um: a fibre would meet its "
                        "own images; 0.4 of the box is the most")


def largest_of(law):
    """What nearly all diameters lie below."""
    return law.get("high", law.get("mean", 0.0) + 3.0 * law.get("deviation", 0.0))


# --- keys ---------------------------------------------------------------------------------------------------------------

def know_keys(table, known, where):
    if not isinstance(table, dict):
        raise ZurtError(f"{where.rstrip('.')}: a table with keys of {', '.join(sorted(known))} is needed, not {table!r}")
    for key in table:
        if key not in known:
            near = difflib.get_close_matches(key, known, 1)
            raise ZurtError(f"{where}{key}: there is no such key; " + (f"did you mean {near[0]}?" if near else
                                                                      "known are " + ", ".join(sorted(known))))


def is_integer(value):
    return isinstance(value, int) and not isinstance(value, bool)


def choice(table, key, choices, default, where=""):
    value = table.get(key, default)
    if value not in choices:
        near = difflib.get_close_matches(str(value), choices, 1)
        raise ZurtError(f"{where}{key}: {value!r} is none of {', '.join(choices)}" + (f"; did you mean {near[0]}?" if near else ""))
    return value


def flag(table, key, default):
    value = table.get(key, default)
    if not isinstance(value, bool):
        raise ZurtError(f"{key}: true or false, not {value!r}")
    return value


def one_number(value, key, least):
    if isinstance(value, bool) or not isinstance(value, (int, float)) or not math.isfinite(value) or value <= least:
        raise ZurtError(f"{key}: a number above {least:g}, not {value!r}" if least > -1.0e-100 and least >= 0.0 else
                        f"{key}: a number not below 0, not {value!r}")
    return float(value)


def number(table, key, default, unit=1.0, least=0.0):
    value = table.get(key, default)
    if value is None:
        raise ZurtError(f"{key}: is missing")
    return one_number(value, key, least) * unit


def numbers(table, key, unit=1.0, least=0.0):
    value = table.get(key)
    if not isinstance(value, list):
        raise ZurtError(f"{key}: a list of numbers is needed" + (f", not {value!r}" if value is not None else ""))
    return [one_number(part, key, least) * unit for part in value]


# --- parts --------------------------------------------------------------------------------------------------------------

def seed_of(data):
    seed = data.get("seed", 1)
    if not is_integer(seed) or seed < 0:
        raise ZurtError(f"seed: a whole number from 0 on, not {seed!r}")
    return seed


def length_of(data, shape, unit):
    if shape != LINES:
        if "length" in data:
            raise ZurtError(f"length: {shape} have none")
        return 0.0
    given = data.get("length")
    if isinstance(given, str) and given != "through":
        raise ZurtError(f'length: a number or "through", not {given!r}')
    return given if given == "through" else number(data, "length", None, unit)


def amount_of(data):
    """(volume_fraction, number), one of them None."""
    if ("volume_fraction" in data) == ("number" in data):
        raise ZurtError("volume_fraction or number: one of the two is needed")
    if "number" in data:
        if not is_integer(data["number"]) or data["number"] < 1:
            raise ZurtError(f"number: a whole number from 1 on, not {data['number']!r}")
        return None, data["number"]
    fraction = number(data, "volume_fraction", None)
    if fraction >= 1.0:
        raise ZurtError(f"volume_fraction: {fraction:g} is not between 0 and 1 (0.2 is twenty per cent)")
    return fraction, None


def diameter_of(data, unit):
    law = data.get("diameter")
    if not isinstance(law, dict):
        return {"distribution": "constant", "mean": number(data, "diameter", None, unit)}
    kind = choice(law, "distribution", tuple(LAWS), "constant", "diameter.")
    know_keys(law, {"distribution", *LAWS[kind]}, "diameter.")
    found = {key: one_number(law.get(key), f"diameter.{key}", 0.0) * unit for key in LAWS[kind]}
    if kind == "uniform" and found["low"] >= found["high"]:
        raise ZurtError("diameter.low: lies above diameter.high")
    return {"distribution": kind, **found}


def tensor_of(data, dimension, shape):
    """(3, 3) of trace 1, without one all directions are alike; None for balls."""
    if shape != LINES:
        if "orientation" in data:
            raise ZurtError(f"orientation: {shape} have none")
        return None
    table = data.get("orientation", {})
    know_keys(table, {"tensor", "eigenvalues"}, "orientation.")
    if len(table) > 1:
        raise ZurtError("orientation: give the tensor or its eigenvalues (then along x, y and z), not both")
    given = table.get("tensor", table.get("eigenvalues", [1.0 / dimension] * dimension))
    try:
        tensor = numpy.array(given, dtype=float)
    except (TypeError, ValueError):
        raise ZurtError("orientation: rows of numbers") from None
    tensor = numpy.diag(tensor) if tensor.ndim == 1 else tensor
    if tensor.shape != (dimension, dimension):
        raise ZurtError(f"orientation: {dimension} x {dimension} numbers, or {dimension} eigenvalues, for a box of {dimension} sizes")
    if not numpy.isfinite(tensor).all() or numpy.abs(tensor - tensor.T).max() > 1.0e-9 or abs(numpy.trace(tensor) - 1.0) > 1.0e-3:
        raise ZurtError(f"orientation: a symmetric tensor of trace 1; its trace is {numpy.trace(tensor):g}")
    if numpy.linalg.eigvalsh(tensor).min() < -1.0e-9:
        raise ZurtError("orientation: an eigenvalue lies below 0; the mean of p p has none")
    full = numpy.zeros((3, 3))
    full[:dimension, :dimension] = tensor / numpy.trace(tensor)
    return full


def cards_of(data, unit, dimension, classes):
    table = data.get("cards", {})
    know_keys(table, CARD_KEYS, "cards.")
    margin = data.get("margin", 0.0)
    margin = [margin] * dimension if not isinstance(margin, list) else margin
    if len(margin) != dimension:
        raise ZurtError(f"margin: one number, or {dimension}, by axis")
    margin = [one_number(part, "margin", -1.0e-300) * unit for part in margin] + [0.0] * (3 - dimension)
    return CardChoice(choice(table, "format", ("fixed", "free"), "fixed", "cards."), number(table, "wallcut", 1.0 / unit, unit),
                      factor_table(table, "correction") or SMALLEST_TABLE, factor_table(table, "towards"), margin, classes)


def increasing(given, key):
    """A list of rising numbers, none below 0."""
    if not isinstance(given, list) or not given:
        raise ZurtError(f"{key}: a list of numbers is needed, not {given!r}")
    values = [one_number(value, key, -1.0e-300) for value in given]
    if any(after <= before for before, after in zip(values, values[1:])):
        raise ZurtError(f"{key}: each number lies above the one before it")
    return values


def factor_table(table, key):
    given = table.get(key)
    if given is None:
        return None
    where = f"cards.{key}."
    know_keys(given, TABLE_KEYS, where)
    missing = TABLE_KEYS - set(given)
    if missing:
        raise ZurtError(f"{where}{sorted(missing)[0]}: is missing")
    distances, concentrations = (increasing(given[key], where + key) for key in ("distances", "concentrations"))
    rows = given["factors"]
    if not isinstance(rows, list) or len(rows) != len(distances) or any(not isinstance(row, list) or len(row) != len(concentrations) for row in rows):
        raise ZurtError(f"{where}factors: a row for each of the {len(given['distances'])} distances (nanometres) with a factor for each of "
                        f"the {len(given['concentrations'])} concentrations")
    return {"distances": distances, "concentrations": concentrations,
            "factors": [[one_number(value, where + "factors", -1.0e-300) for value in row] for row in rows]}
