"""The one writer of cards, for fixed columns, free format, and decks wholly in free cards."""
import textwrap
from dataclasses import dataclass, field

import numpy

from ..errors import ZurtError
from .cards import field_names, fixed_columns
from .number_text import column_real, column_texts, free_real
from .tables import CARDS

FIXED, FREE, ALL_FREE = "fixed", "free", "all free"


@dataclass
class DeckText:
    """form: FIXED, FREE, or ALL_FREE (free cards throughout, which `zurt --free` reads). rounding: largest relative change of a number by its
    columns. losses: (change, what) of numbers that were rounded within it; overflows: what does not fit. comments: whether to write them.
    """
    form: str
    rounding: float = 0.0
    comments: bool = True
    lines: list = field(default_factory=list)
    losses: list = field(default_factory=list)
    overflows: list = field(default_factory=list)


def put_comment(deck, text):
    """Comment cards of at most 72 columns."""
    if deck.comments:
        text = " ".join(text.encode("ascii", "replace").decode().split())
        rows = textwrap.wrap(text, 65, break_long_words=False) or [""]
        deck.lines.extend(("C ---- " if i == 0 else "C      ") + row for i, row in enumerate(rows))


def put_heading(deck, name, remark=""):
    """What the next card is: its heading, its columns where it has some, its fields; then the remark."""
    card = CARDS[name]
    columns = f", {fixed_columns(card)}" if deck.form == FIXED else ""
    put_comment(deck, f"{name}{columns}: {field_names(card)}.{' ' + remark if remark else ''}")


def note_change(deck, what, change, rounded):
    """Keeps what fixed columns did to a number. change: relative to its own size or that of its like. rounded: a text that tells it."""
    if change > deck.rounding:
        deck.overflows.append(f"{what}: {rounded}")
    elif change > 0.0:
        deck.losses.append((change, f"{what}: {rounded}"))


def number_text(deck, name, entry, value):
    """One number of a card, in its columns or free."""
    if entry.letter == "I":
        value = int(value)
        if deck.form != FIXED:
            return str(value)
        if len(str(value)) > entry.width:
            note_change(deck, f"{name}, {entry.name} ({entry.fixed})", float("inf"), f"{value} does not fit the columns")
        return f"{value:{entry.width}d}"
    if deck.form != FIXED:
        return free_real(value)
    text, change = column_real(float(value), entry.width)
    note_change(deck, f"{name}, {entry.name} ({entry.fixed})", change, f"{value!r} becomes {text} in its columns")
    return f"{text:>{entry.width}}"


def put_card(deck, name, values):
    """values: field name to number, or to a sequence where the field is repeated. Fields that are left out are 0."""
    card = CARDS[name]
    unknown = set(values) - {entry.name for entry in card.fields}
    if unknown:
        raise KeyError(f"{name} has no field {', '.join(sorted(unknown))}")
    texts = []
    for entry in card.fields:
        if entry.letter == "X":
            texts += [" " * entry.width] if deck.form == FIXED else []
            continue
        given = values.get(entry.name, 0)
        given = list(given) if isinstance(given, (list, tuple, numpy.ndarray)) else [given]
        given += [0] * (entry.count - len(given))
        texts += [number_text(deck, name, entry, value) for value in given]
    deck.lines.append("".join(texts).rstrip() if deck.form == FIXED else " ".join(texts))


def put_flow(deck, name, numbers):
    """Any number of values of one field, over as many cards as they take."""
    entry = CARDS[name].fields[0]
    texts = [number_text(deck, name, entry, value) for value in numbers]
    for start in range(0, len(texts), entry.count):
        deck.lines.append(("" if deck.form == FIXED else " ").join(texts[start:start + entry.count]))


def column_of_texts(deck, name, entry, values):
    """Texts of one field of many cards: values is an array (m,)."""
    if entry.letter == "I":
        texts = [str(value) for value in numpy.asarray(values, dtype=numpy.int64).tolist()]
        if deck.form == FIXED and texts and max(map(len, texts)) > entry.width:
            note_change(deck, f"{name}, {entry.name} ({entry.fixed})", float("inf"), f"{max(texts, key=len)} does not fit the columns")
    elif deck.form != FIXED:
        texts = [free_real(value) for value in values.tolist()]
    else:
        values = numpy.asarray(values, dtype=float)
        texts, change = column_texts(values, entry.width)
        scale = float(numpy.abs(values).max(initial=0.0))
        if change:
            note_change(deck, f"{name}, {entry.name} ({entry.fixed})", change / scale, f"the columns round by up to {change:.1e}")
    return [f"{text:>{entry.width}}" for text in texts] if deck.form == FIXED else texts


def put_rows(deck, name, columns, count):
    """Many cards of one kind, which are returned as lines and not put. columns: field name to an array (count,), (count, k) for repeated
    fields, or one number for all. Fields that are left out are 0.
    """
    card = CARDS[name]
    texts = []
    for entry in card.fields:
        if entry.letter == "X":
            texts += [[" " * entry.width] * count] if deck.form == FIXED else []
            continue
        given = numpy.asarray(columns.get(entry.name, 0))
        if given.ndim == 0:
            texts += [[number_text(deck, name, entry, given.item())] * count] * entry.count
            continue
        given = given.reshape(count, -1)
        for place in range(entry.count):
            part = given[:, place] if place < given.shape[1] else numpy.zeros(count)
            texts.append(column_of_texts(deck, name, entry, part))
    between = "" if deck.form == FIXED else " "
    return [between.join(row) for row in zip(*texts)]


def check_columns(deck, where):
    """Refuses a deck whose numbers don't fit their columns."""
    if deck.overflows:
        more = f" (and {len(deck.overflows) - 1} more)" if len(deck.overflows) > 1 else ""
        raise ZurtError(f"{deck.overflows[0]}{more}: give fewer digits, a larger deck.rounding, or deck.format = \"free\"", where)
