#!/usr/bin/python3
"""Draws docs/split_elements.svg: what triangles, tetrahedra, wedges and pyramids are split into, from the tables that split them."""
import os
import sys

import numpy

HERE = os.path.dirname(os.path.abspath(__file__))
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(HERE, ".."))
from zurt.mesh.families import FAMILIES, HEXAHEDRON, QUAD  # noqa: E402
from zurt.mesh.split_tables import split_table  # noqa: E402

DRAWN = (("triangle", "3 quadrilaterals"), ("tetra", "4 bricks"), ("wedge", "6 bricks"), ("pyramid", "4 bricks, 8 with a tip"))
WIDTH, HEIGHT, SCALE = 180, 210, 130
SHRUNK = 0.86
COLOURS = ("#7aa6c2", "#d9a441", "#8fb573", "#c27a8f", "#9a8fc2", "#c2b27a")
TURN, TILT = numpy.radians(28), numpy.radians(24)


def projected(places):
    """(n, 3): right, up and towards the eye."""
    x, y, z = places.T
    right, back = x * numpy.cos(TURN) - y * numpy.sin(TURN), x * numpy.sin(TURN) + y * numpy.cos(TURN)
    return numpy.stack([right, z * numpy.cos(TILT) + back * numpy.sin(TILT), z * numpy.sin(TILT) - back * numpy.cos(TILT)], axis=1)


def polygons_of(name):
    """[(distance from the eye, colour, (k, 2) corners)] of the pieces, each a little smaller than it is."""
    family, table = FAMILIES[name], split_table(name, False, False)
    flat = family.dimension == 2
    places = numpy.pad(table.places, ((0, 0), (0, 1))) if flat else table.places * ([1, 1, 1.6] if name == "pyramid" else [1, 1, 1])
    places = places if name != "wedge" else places * [1, 1, 0.5]
    places = (places - places.min(axis=0)) / numpy.ptp(places, axis=0).max()
    places = places if flat else projected(places)
    places = places - 0.5 * (places.min(axis=0) + places.max(axis=0))
    found = []
    for number, piece in enumerate(table.pieces):
        corners = places[piece]
        corners = corners.mean(axis=0) + SHRUNK * (corners - corners.mean(axis=0))
        for face in (QUAD if flat else HEXAHEDRON).faces:
            colour = COLOURS[1] if name == "pyramid" and number >= 4 else COLOURS[number % 4 if name == "pyramid" else number]
            found.append((corners[list(face), 2].mean(), colour, corners[list(face), :2]))
    return sorted(found, key=lambda entry: entry[0])


def main():
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH * len(DRAWN)} {HEIGHT}" font-family="sans-serif" font-size="13">',
             f'<rect width="{WIDTH * len(DRAWN)}" height="{HEIGHT}" fill="white"/>']
    for place, (name, words) in enumerate(DRAWN):
        across = WIDTH * (place + 0.5)
        for _, colour, corners in polygons_of(name):
            points = " ".join(f"{across + SCALE * x:.1f},{90 - SCALE * y:.1f}" for x, y in corners)
            parts.append(f'<polygon points="{points}" fill="{colour}" fill-opacity="0.8" stroke="#333" stroke-width="0.6" '
                         'stroke-linejoin="round"/>')
        title = {"tetra": "tetrahedron"}.get(name, name)
        parts += [f'<text x="{across}" y="{HEIGHT - 26}" text-anchor="middle">{title}</text>',
                  f'<text x="{across}" y="{HEIGHT - 9}" text-anchor="middle" fill="#555">{words}</text>']
    with open(os.path.join(HERE, "..", "..", "docs", "split_elements.svg"), "w") as file:
        file.write("\n".join(parts + ["</svg>", ""]))


main()
