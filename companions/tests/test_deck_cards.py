"""The table of cards against the manual, numbers in columns, and the reference of job files."""
import os
import random
import re
import struct

import pytest
from zurt.deck.cards import DESCRIPTOR
from zurt.deck.keys_model import DERIVED, TABLES
from zurt.deck.number_text import column_real
from zurt.deck.reference import reference_text
from zurt.deck.tables import CARDS

DOCS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "docs")
SECOND_TABLES = {"3D group card": " with NDS", "2D group card": " with NDS", "1D group card": " with NDS", "1D element card": " of 3 nodes"}


def manual_cards():
    """Heading of each card of the manual to its rows (field, format, default)."""
    cards, heading, columns = {}, None, None
    with open(os.path.join(DOCS, "manual.md"), encoding="utf-8") as file:
        for line in file:
            if line.startswith("#"):
                heading, columns = line.lstrip("# ").strip(), None
            elif line.startswith("| Field |"):
                columns = [cell.strip() for cell in line.strip().strip("|").split("|")]
                name = heading + SECOND_TABLES[heading] if heading in cards else heading
                cards[name] = []
            elif columns and line.startswith("|") and "---" not in line:
                cells = dict(zip(columns, (cell.strip().replace("`", "") for cell in line.strip().strip("|").split("|"))))
                cards[name].append((cells["Field"], cells["Fixed"], cells.get("Default", "")))
            elif not line.startswith("|"):
                columns = None
    return {name: rows for name, rows in cards.items() if all(DESCRIPTOR.match(fixed) for _, fixed, _ in rows)}


def test_cards_are_those_of_the_manual():
    manual = manual_cards()
    assert len(manual) > 50
    own = {name: [(field.name, field.fixed, field.default) for field in card.fields] for name, card in CARDS.items()}
    assert set(own) - set(manual) == {"Correction table values"}  # told in words there
    assert {name: own[name] for name in manual} == manual


def test_every_field_is_made_by_a_key_or_derived():
    made = {entry for table in TABLES.values() for key in table.keys.values() for entry in key.fields}
    every = {f"{field.name}@{name}" for name, card in CARDS.items() for field in card.fields if field.letter != "X"}
    derived = {f"{field}@{card}" for card, fields in DERIVED.items() for field in fields}
    shared = {entry.replace(" with NDS@", "@") for entry in made}
    assert made | derived <= every
    # Group cards with NDS have the fields of those without.
    left = {entry for entry in every - made - derived if entry.replace(" with NDS", "") not in shared}
    assert not left, sorted(left)


def test_reference_of_job_files_is_that_of_the_keys():
    with open(os.path.join(DOCS, "jobs.md"), encoding="utf-8") as file:
        text = file.read()
    assert reference_text() in text, "docs/jobs.md: paste what python3 -m zurt.deck.reference prints (in companions/) behind its last heading"


@pytest.mark.parametrize("width", (10, 15, 26))
def test_reals_in_columns_keep_their_digits(width):
    chance = random.Random(width)
    for _ in range(2000):
        value = struct.unpack("d", struct.pack("Q", chance.getrandbits(64)))[0]
        if not 1e-290 < abs(value) < 1e290:
            continue
        text, change = column_real(value, width)
        assert len(text) <= width and "." in text
        assert abs(float(text) / value - 1.0) == change <= (0.0 if width == 26 else 10.0 ** (7 - width + 1))


def test_free_texts_have_a_known_form():
    assert re.fullmatch(r"-?\d*\.\d*(E-?\d+)?", column_real(-1.5e-7, 10)[0])
    assert [column_real(value, 10)[0] for value in (0.0, 0.001, 1e-8, 1 / 3, 123456.789)] == ["0.0", "0.001", "1.0E-8", ".333333333", "123456.789"]
