#!/usr/bin/python3
"""Draws docs/fibres.png, and companions/examples/random_fibres/picture.png from the recipe there."""
import os
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)
from zurt.commands.fibres import in_own_box  # noqa: E402
from zurt.fibres.cards import prepare  # noqa: E402
from zurt.fibres.generator import generate  # noqa: E402
from zurt.fibres.picture import draw_pictures  # noqa: E402
from zurt.fibres.recipe import read_recipe  # noqa: E402

KINDS = {
    "through the box, overlapping": 'box = [1.0, 1.0, 1.0]\nlength = "through"\noverlap = true\nvolume_fraction = 0.15\ndiameter = 0.05\n',
    "hard core, mostly in a plane": "box = [1.0, 1.0, 0.5]\nlength = 0.6\nperiodic = true\nvolume_fraction = 0.15\ndiameter = 0.05\n"
                                    "orientation.eigenvalues = [0.45, 0.45, 0.1]\n",
    "circles, lognormal diameters": 'box = [1.0, 1.0]\nshape = "circles"\nperiodic = true\nvolume_fraction = 0.5\ngap = 0.01\n'
                                    'diameter = { distribution = "lognormal", mean = 0.06, deviation = 0.025 }\n',
}


def drawn(path):
    """The fibres of a recipe as a deck gets them."""
    recipe = read_recipe(path)
    return in_own_box(prepare(generate(recipe), recipe.cards.margin, recipe.classes))


def main():
    parts = []
    with tempfile.TemporaryDirectory() as folder:
        for title, text in KINDS.items():
            path = os.path.join(folder, "fibres.toml")
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
            parts.append((drawn(path), title))
    draw_pictures(os.path.join(HERE, "..", "docs", "fibres.png"), parts)
    example = os.path.join(HERE, "examples", "random_fibres")
    draw_pictures(os.path.join(example, "picture.png"), [(drawn(os.path.join(example, "fibres.toml")), "")])


main()
