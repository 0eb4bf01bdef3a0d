"""Cards of fibre sets: what stands behind the homogenization card and the card of the curve ends, for all sets."""
from dataclasses import dataclass

import numpy

from ..errors import ZurtError
from .diameters import into_classes
from .geometry import clip_to_box, images_in_box
from .model import LINES, Fibres, dimension_of, lengths_of

MOST_OF_SET = 99_999  # NUMFIB has five columns
WIDTH = 10


@dataclass
class WrittenFibres:
    """What a deck gets. fibres: cut to the box of the deck, moved by the margin, in the order of the cards. sets: (first, behind the last)
    rows of each set. box: sizes of the deck's box (ELFIB, DFIB, WFIB). fraction_box: (low, high) of the fibres' own box in it."""
    fibres: Fibres
    sets: list
    box: numpy.ndarray
    fraction_box: tuple


def real_field(value):
    """The value in nine columns, with as many digits as they hold: with a blank ahead of it a field of ten, in either format."""
    fixed = next((text for text in (f"{value:.{digits}f}" for digits in range(7, 0, -1)) if len(text) < WIDTH), "")
    short = f"{value:.2e}"
    if not fixed or abs(float(short) - value) < abs(float(fixed) - value):
        return short
    return fixed


def rounded(values):
    """The values as a card holds them."""
    return numpy.round(values, 7) + 0.0


def prepare(fibres, margin, classes):
    """WrittenFibres: the images of periodic fibres each for itself, lines cut where the box grown by the margin ends, diameters in at most
    so many classes. Lines without a length there, and whose axis lies outside, are left out: a deck can't hold them."""
    margin = numpy.asarray(margin) * (fibres.box > 0.0)
    low, high = -margin, fibres.box + margin
    reach = numpy.zeros(3) if fibres.shape == LINES else 0.5 * fibres.diameters.max(initial=0.0) * (fibres.box > 0.0)
    starts, ends, rows = fibres.starts, fibres.ends, numpy.arange(len(fibres.diameters))
    if fibres.period is not None:
        starts, ends, rows = images_in_box(starts, ends, fibres.period, low - reach, high + reach)
    starts, ends, hit = clip_to_box(starts, ends, low - reach, high + reach)
    starts, ends, diameters = starts[hit], ends[hit], fibres.diameters[rows[hit]]
    if fibres.shape == LINES:
        long = numpy.linalg.norm(ends - starts, axis=1) > 1.0e-3 * diameters
        starts, ends, diameters = starts[long], ends[long], diameters[long]
    weights = numpy.linalg.norm(ends - starts, axis=1) if fibres.shape == LINES else diameters
    diameters = into_classes(diameters, weights, classes)
    order = numpy.argsort(-diameters, kind="stable")  # thick ones first: past its end a fibre counts the radius of the nearest one before it
    box = high - low
    written = Fibres(rounded(starts[order] - low), rounded(ends[order] - low), rounded(diameters[order]), fibres.shape, box)
    return WrittenFibres(written, set_rows(written.diameters), box, (margin, margin + fibres.box))


def set_rows(diameters):
    """(first, behind the last) row of each set: one diameter, and no more fibres than a card can count."""
    limits = [0] + (numpy.flatnonzero(numpy.diff(diameters)) + 1).tolist() + [len(diameters)]
    return [(first, min(first + MOST_OF_SET, behind)) for begin, behind in zip(limits[:-1], limits[1:])
            for first in range(begin, behind, MOST_OF_SET)]


def check_size(written):
    """Cards have ten columns for a length."""
    if len(written.fibres.diameters) == 0:
        raise ZurtError("no fibre is left in the box")
    size = float(max(written.box.max(), written.fibres.diameters.max()))
    least = float(written.fibres.diameters.min())
    if size >= 99_999.0 or least < 1.0e-4:
        raise ZurtError(f"lengths from {least:g} to {size:g} um can't be written with enough digits in the ten columns of a card: "
                        "is the unit right?")


def field_writer(form):
    """(integers, reals): functions that write values as fields of a card."""
    if form == "free":
        return (lambda *values: " ".join(str(value) for value in values) + " ",
                lambda *values: " ".join(real_field(value) for value in values) + " ")
    return (lambda *values: "".join(f"{value:5d}" for value in values),
            lambda *values: "".join(f"{real_field(value):>{WIDTH}}" for value in values))


def factor_cards(table, integers, reals):
    """The cards of a table of correction factors."""
    rows = [table["distances"], table["concentrations"], *table["factors"]]
    lines = [integers(len(rows[0]), len(rows[1]))]
    for row in rows:
        lines += [reals(*map(float, row[first:first + 8])) for first in range(0, len(row), 8)]
    return lines


def search_box(written, diameter):
    """(low, high) of the search box: grown by the radius, as the program does it, it ends where the fibres' own box ends."""
    radius = 0.5 * diameter - 2.0e-6
    low, high = written.fraction_box
    middle = 0.5 * (low + high)
    inner = (numpy.minimum(low + radius, middle), numpy.maximum(high - radius, middle))
    return tuple(numpy.where(written.box > 0.0, part, 0.0) for part in inner)


def set_cards(written, number, choice):
    """Lines of the cards of one set (number from one)."""
    integers, reals = field_writer(choice.format)
    first, behind = written.sets[number - 1]
    fibres = written.fibres
    diameter = float(fibres.diameters[first])
    points = 2 if fibres.shape == LINES else 1
    length = float(lengths_of(fibres)[first:behind].mean())
    low, high = search_box(written, diameter)
    lines = [f"C ---- Fibre set {number}: set card, search box, search grid, fibres and their points, factors"]
    kind = 0 if fibres.shape == LINES else 1
    lines.append(integers(number, behind - first, 1 if choice.towards else 0, kind) + reals(diameter, length, choice.wallcut))
    lines += [reals(*low, *low), integers(2, 2, 2) + reals(*(high - low))]
    for row in range(first, behind):
        lines.append(integers(row - first + 1, points) + reals(diameter))
        ends = (fibres.starts[row], fibres.ends[row])[:points]
        lines += [integers(place + 1) + reals(*end) for place, end in enumerate(ends)]
    for table in (choice.correction, choice.towards):
        lines += factor_cards(table, integers, reals) if table else []
    return lines


def fibre_cards(written, choice):
    """Text of the cards of all sets of WrittenFibres; choice: a CardChoice."""
    check_size(written)
    box = " ".join(f"{size:g}" for size in written.box[:dimension_of(written.box)])
    lines = [f"C Written by zurt-fibres for decks in {choice.format} format: {len(written.fibres.diameters)} fibres",
             f"C NSETS {len(written.sets)} on the homogenization card; ELFIB, DFIB, WFIB: {box}"]
    for number in range(1, len(written.sets) + 1):
        lines += set_cards(written, number, choice)
    return "\n".join(line.rstrip() for line in lines) + "\n"
