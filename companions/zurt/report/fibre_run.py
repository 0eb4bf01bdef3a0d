"""The run of the model with fibres that belongs to a fit: the deck's direct calculation, whose first pass it is."""
import os

from .. import door
from ..errors import ZurtError
from ..results.deck_header import BASIC, read_deck_header

FOLDER = "fibres"


def solve(run):
    """Runs the deck of a fit with IDIRECTD 1 in the folder `fibres` of the run, or reads what an earlier report has run there."""
    if not run.deck or not os.path.isfile(run.deck):
        raise ZurtError("the deck of this run is not known: name it by --deck", run.folder)
    folder = os.path.join(run.folder, FOLDER)
    if os.path.isfile(os.path.join(folder, "run.json")):
        return door.read(folder)
    with open(run.deck, encoding="latin-1") as file:
        lines = file.readlines()
    text = "".join(direct_deck(lines, run.deck))
    return door.run(text, folder, history=False)


def direct_deck(lines, path=None):
    """Lines of the deck with IDIRECTD 1 on its basic data card, in which the cards of a fit count for nothing."""
    header = read_deck_header(lines, path)
    if header["INDFOR"] != 2:
        raise ZurtError("a deck of a fit is a fixed format deck", path)
    at = header["lines"]["NP"]
    begin = sum(width for _, width in BASIC[:-1])
    card = lines[at].rstrip("\r\n")
    return [*lines[:at], card[:begin].ljust(begin) + "    1" + card[begin + 5:] + "\n", *lines[at + 1:]]
