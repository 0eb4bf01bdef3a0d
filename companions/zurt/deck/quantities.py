"""Units: what the quantities of a deck are made of, and numbers with units turned into the deck's."""
import re
from decimal import Decimal, InvalidOperation
from fractions import Fraction

# Exponents of length, time, concentration and capacity.
KINDS = {
    "number": (0, 0, 0, 0), "length": (1, 0, 0, 0), "area": (2, 0, 0, 0), "time": (0, 1, 0, 0), "rate": (0, -1, 0, 0),
    "concentration": (0, 0, 1, 0), "capacity": (0, 0, 0, 1), "diffusion": (2, -1, 0, 1), "source": (0, -1, 1, 1), "amount": (0, 0, 1, 1),
    "flux": (1, -1, 1, 1), "convection": (1, -1, 0, 1), "radiation": (1, -1, -3, 1), "wall distance": (1, 0, 0, 0),
}
# The program takes wall distances in thousandths of the mesh's unit, which are nanometres where that is a micrometre.
NANOMETRES_PER_UNIT = 1000
BASES = ("length", "time", "concentration", "capacity")

# Factor to m, kg, s, mol, K and the exponents of these.
METRE, KILOGRAM, SECOND, MOLE, KELVIN = [tuple(int(i == place) for i in range(5)) for place in range(5)]
LITRE = (3, 0, 0, 0, 0)
JOULE = (2, 1, -2, 0, 0)
WATT = (2, 1, -3, 0, 0)
MOLAR = (-3, 0, 0, 1, 0)
PREFIXES = {"k": 3, "": 0, "d": -1, "c": -2, "m": -3, "u": -6, "µ": -6, "μ": -6, "n": -9, "p": -12}


def known_units():
    """Symbol to (factor, exponents)."""
    units = {"min": (Fraction(60), SECOND), "h": (Fraction(3600), SECOND), "d": (Fraction(86400), SECOND), "1": (Fraction(1), (0,) * 5),
             "%": (Fraction(1, 100), (0,) * 5)}
    plain = {"m": (1, METRE), "g": (Fraction(1, 1000), KILOGRAM), "s": (1, SECOND), "mol": (1, MOLE), "K": (1, KELVIN),
             "l": (Fraction(1, 1000), LITRE), "L": (Fraction(1, 1000), LITRE), "J": (1, JOULE), "W": (1, WATT), "M": (1000, MOLAR)}
    for symbol, (factor, exponents) in plain.items():
        for prefix, power in PREFIXES.items():
            if prefix + symbol not in units:
                units[prefix + symbol] = (Fraction(factor) * Fraction(10) ** power, exponents)
    return units


UNITS = known_units()
TERM = re.compile(r"\s*([/*·.]?)\s*([A-Za-zµμ%]+|1)(?:\^?([+-]?\d{1,3}))?")


class UnitFault(ValueError):
    """What is wrong with a unit or a number with a unit."""


def parse_unit(text):
    """(factor, exponents of m, kg, s, mol, K) of a unit as "mol/m3/s" or "W m-2 K-1"."""
    factor, exponents, place = Fraction(1), [0] * 5, 0
    text = text.strip().replace("²", "2").replace("³", "3")
    while place < len(text):
        match = TERM.match(text, place)
        if not match:
            raise UnitFault(f"\"{text}\" is no unit")
        mark, symbol, power = match.groups()
        if symbol not in UNITS:
            raise UnitFault(f"there is no unit \"{symbol}\" (m, s, min, h, d, g, mol, l, M, K, J, W, with k, c, m, u, n, p)")
        power = int(power or 1) * (-1 if mark == "/" else 1)
        if abs(power) > 20:
            raise UnitFault(f"\"{text}\" is no unit")
        factor *= UNITS[symbol][0] ** power
        exponents = [a + power * b for a, b in zip(exponents, UNITS[symbol][1])]
        place = match.end()
    return factor, tuple(exponents)


def split_quantity(text):
    """(number as Fraction, unit text) of "5 nm"; a UnitFault where no number begins the text."""
    match = re.match(r"\s*([+-]?(?:\d+\.?\d*|\.\d+)(?:[eE][+-]?\d+)?)\s*(.*)$", text)
    if not match:
        raise UnitFault(f"\"{text}\" is neither a number nor a number with a unit, as in \"5 nm\"")
    try:
        number = Decimal(match.group(1))
    except InvalidOperation:
        number = Decimal("1e1000")
    if number and abs(number.adjusted()) > 300:
        raise UnitFault(f"\"{match.group(1)}\" is no number that the program can take")
    return Fraction(number), match.group(2)


def combine(bases, kind):
    """(factor, exponents) of a kind of quantity in a system of units. bases: base to (factor, exponents); a UnitFault names what is missing."""
    factor, exponents = Fraction(1), [0] * 5
    for base, power in zip(BASES, KINDS[kind]):
        if power and base not in bases:
            raise UnitFault(f"a unit can be converted when [units] {base} is declared")
        if power:
            factor *= bases[base][0] ** power
            exponents = [a + power * b for a, b in zip(exponents, bases[base][1])]
    return factor, tuple(exponents)


def convert(value, kind, declared, deck):
    """A number of the job in the deck's units. value: a plain number, in the declared units, or a text with a unit. declared, deck: base to
    (factor, exponents). Rounded once.
    """
    if isinstance(value, str):
        number, unit = split_quantity(value)
        if unit:
            if kind == "number":
                factor, exponents = parse_unit(unit)
                if any(exponents):
                    raise UnitFault(f"\"{value}\": this number has no unit")
                return as_float(number * factor)
            factor, exponents = parse_unit(unit)
            target, wanted = combine(deck, kind)
            target /= NANOMETRES_PER_UNIT if kind == "wall distance" else 1
            if exponents != wanted:
                raise UnitFault(f"\"{value}\" is no {kind}: {unit_of(kind)} is wanted")
            return as_float(number * factor / target)
        value = float(number)
    ratio = Fraction(NANOMETRES_PER_UNIT if kind == "wall distance" else 1)
    for base, power in zip(BASES, KINDS[kind]):
        if power and base in declared:
            ratio *= (declared[base][0] / deck[base][0]) ** power
    return float(value) if ratio == 1 else as_float(Fraction(value) * ratio)


def as_float(number):
    """A Fraction as a number of the deck, rounded once."""
    try:
        return float(number)
    except OverflowError:
        raise UnitFault("the number is too large for the program in the unit of the deck") from None


def unit_of(kind):
    """What a kind of quantity is made of, for messages: "length2 / time"."""
    parts = [(base, power) for base, power in zip(BASES, KINDS[kind]) if power and base != "capacity"]
    over = [base + (str(power) if power > 1 else "") for base, power in parts if power > 0]
    under = [base + (str(-power) if power < -1 else "") for base, power in parts if power < 0]
    return " ".join(over or ["1"]) + "".join(f" / {base}" for base in under)
