"""The cards of a deck: their fields, one behind the other, with formats, defaults and kinds of quantity.

A card is declared as its heading in the manual and its fields, each a tuple: name, format of the fixed columns, default (what a 0 or blank field
becomes; "" where that is 0) and kind of quantity (see quantities.py; "" for counts, switches and numbers without a unit). The tables stand in
header_cards.py, mesh_cards.py and model_cards.py; a test holds them to docs/manual.md.
"""
import re
from dataclasses import dataclass


@dataclass(frozen=True)
class Field:
    """letter: I, F, D, E, or X for blank columns. count: fields of this format. width, decimals: columns, and digits behind an absent point."""
    name: str
    fixed: str
    default: str
    kind: str
    letter: str
    count: int
    width: int
    decimals: int


@dataclass(frozen=True)
class Card:
    """flows: one field of any number of values, over as many lines as they take."""
    name: str
    fields: tuple
    flows: bool


DESCRIPTOR = re.compile(r"(\d*)([IFDEX])(\d*)(?:\.(\d+))?$")


def make_field(name, fixed, default="", kind=""):
    """The record of a field; "5X" are five blank columns."""
    count, letter, width, decimals = DESCRIPTOR.match(fixed).groups()
    if letter == "X":
        return Field(name, fixed, default, kind, letter, 1, int(count or 1), 0)
    return Field(name, fixed, default, kind, letter, int(count or 1), int(width), int(decimals or 0))


def make_cards(declared):
    """declared: heading of the card to its list of fields. Returns heading to Card."""
    flowing = {"NKDT", "DTDT", "FO", "factors"}
    cards = {}
    for name, fields in declared.items():
        records = tuple(make_field(*entry) for entry in fields)
        flows = len(records) == 1 and (records[0].name in flowing or name in ("Initial value node list", "Radial node card"))
        cards[name] = Card(name, records, flows)
    return cards


def fixed_columns(card):
    """How the columns of a card are told in a comment: "I10, 10I5"."""
    parts, last, times = [], None, 0
    for entry in [field.fixed for field in card.fields] + [None]:
        if entry == last:
            times += 1
            continue
        if last is not None:
            parts.append(last if times == 1 else f"{times}{last}" if last[0] in "IFDE" else f"{times}({last})")
        last, times = entry, 1
    return ", ".join(parts)


def field_names(card):
    """Names of the fields for a comment; those of repeated formats as the manual has them."""
    return " ".join(field.name for field in card.fields if field.letter != "X")
