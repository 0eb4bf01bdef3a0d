#!/usr/bin/env python3
"""Writes a deck around cards of zurt-fibres: the flow along one axis through a cube with these fibres, in steady state.

    make_deck.py fibres.cards > fibres.dat            # --axis x, y or z; --mesh: bricks to a side; --margin as in fibres.toml

A layer of large coefficient lies in front of the cube, with a source that puts a flux of 1 through it; the far face is held at 0. So the
effective coefficient is 1 over the concentration of the layer.
"""
import argparse
import re

CORNERS = [(1, 1, 1), (0, 1, 1), (0, 0, 1), (1, 0, 1), (1, 1, 0), (0, 1, 0), (0, 0, 0), (1, 0, 0)]
LAYER = 0.05  # thickness


def parse():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("cards")
    parser.add_argument("--axis", choices="xyz", default="x")
    parser.add_argument("--mesh", type=int, default=32)
    parser.add_argument("--margin", type=float, default=0.07, help="in micrometres")
    return parser.parse_args()


def write_nodes(lines, places, axis, number):
    held = places[axis][-1]
    for k, z in enumerate(places[2]):
        for j, y in enumerate(places[1]):
            for i, x in enumerate(places[0]):
                hold = int((x, y, z)[axis] == held)
                lines.append(f"{number(i, j, k):10d}{hold:5d}     {x:15.8f}{y:15.8f}{z:15.8f}{0.0:15.1f}    0")


def write_group(lines, cells, number, material, source):
    lines.append(f"    3{len(cells):10d}    0{int(source):5d}    0    0")
    lines.append(f"{material:5d}         8    0    0    3    3    3")
    for e, (i, j, k) in enumerate(cells):
        corners = "".join(f"{number(i + a, j + b, k + c):8d}" for a, b, c in CORNERS)
        lines.append(f"{e + 1:8d}{corners}  0{int(source):3d}  0  0  0  0")


def main():
    args = parse()
    cards, axis, n = open(args.cards, encoding="ascii").read(), "xyz".index(args.axis), args.mesh
    box = [float(size) for size in re.search("WFIB: (.*)", cards)[1].split()]
    places = [[args.margin + (size - 2 * args.margin) * i / n for i in range(n + 1)] for size in box]
    places[axis].insert(0, places[axis][0] - LAYER)
    count = [len(part) for part in places]

    def number(i, j, k):
        return (k * count[1] + j) * count[0] + i + 1

    cells = [(i, j, k) for k in range(count[2] - 1) for j in range(count[1] - 1) for i in range(count[0] - 1)]
    lines = ["C A cube with random fibres behind a layer with a source; written by make_deck.py", "Random fibres", "2 1 1 2",
             "".join(f"{size:10.4f}" for size in box), "",
             f"{count[0] * count[1] * count[2]:10d}    2    2    0    1    1    0   -1    0    1    0",
             "    1    0    0   20       0.0    1.0E-6    1    0", "    1"]
    write_nodes(lines, places, axis, number)
    lines += [f"{int(re.search('NSETS ([0-9]+)', cards)[1]):5d}", "", cards.rstrip("\n")]
    write_group(lines, [cell for cell in cells if cell[axis] > 0], number, 1, False)
    write_group(lines, [cell for cell in cells if cell[axis] == 0], number, 2, True)
    lines += ["    2"]
    for material, coefficient in ((1, 1.0), (2, 10000.0)):
        lines += [f"{material:5d}    2"] + [f"{c:20.6f}{coefficient:20.6f}" for c in (0.0, 1000.0)]
    lines += ["    1    1", "     1.000", "     1.000", "    1.0000", "    1", "  0.00000E+00", "    0    0    0",
              "    1    0    0    0    0    0    0    1    1    0    0", "    1    1", f"{0.0:10.3f}{1.0 / LAYER:10.3f}", "       0.0", "STOP"]
    print("\n".join(lines))


main()
