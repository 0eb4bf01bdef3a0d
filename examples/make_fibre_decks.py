#!/usr/bin/env python3
"""Writes the decks of the examples that are too regular to type: nanochannel_reservoirs, fibre_box, spheres and
fibrous_sheet.

    examples/make_fibre_decks.py         # each into its folder, as zurt.dat

A mesh is a grid of lines in each direction, of which a rule keeps some cells and puts each into an element group.
Rows of nodes and elements along the fastest direction of the numbering are left to the program's generation.
"""
import itertools
import pathlib
import textwrap

FOLDER = pathlib.Path(__file__).resolve().parent
BRICK = [(1, 1, 1), (0, 1, 1), (0, 0, 1), (1, 0, 1), (1, 1, 0), (0, 1, 0), (0, 0, 0), (1, 0, 0)]
QUADRILATERAL = [(1, 1, 0), (0, 1, 0), (0, 0, 0), (1, 0, 0)]


def even(low, high, cells):
    return [low + (high - low) * i / cells for i in range(cells + 1)]


def comment(text):
    """Comment lines of up to 70 columns, the width of the card image in the listing."""
    indent = "     " if text.startswith("----") else ""
    lines = textwrap.wrap(" ".join(text.split()), 68, subsequent_indent=indent)
    return "".join(f"C {line}\n" for line in lines)


def integers(*values, first=5):
    return "".join(f"{value:{5 if i else first}d}" for i, value in enumerate(values)) + "\n"


def reals(values, width, digits, per_card=8):
    text = ""
    for start in range(0, len(values), per_card):
        text += "".join(f"{value:{width}.{digits}f}" for value in values[start:start + per_card]) + "\n"
    return text


class Mesh:
    """Nodes and elements of a grid. group_of(i, j, k) is 0 for a cell that is left out; the last of `order` (axes from
    slow to fast) is the direction of the generated rows; `plane` leaves z out."""

    def __init__(self, lines, group_of, held, order, plane=False):
        self.lines, self.held, self.order = lines, held, order
        self.corners = QUADRILATERAL if plane else BRICK
        cells = [range(len(axis) - 1) if len(axis) > 1 else range(1) for axis in lines]
        self.group = {cell: group_of(*cell) for cell in itertools.product(*cells) if group_of(*cell)}
        places = {self.at(cell, corner) for cell in self.group for corner in self.corners}
        self.number = {place: n + 1 for n, place in enumerate(sorted(places, key=self.rank))}

    def at(self, cell, corner):
        return tuple(c + d for c, d in zip(cell, corner))

    def rank(self, place):
        return [place[axis] for axis in self.order]

    def point(self, place):
        return [self.lines[axis][place[axis]] for axis in range(3)]

    def behind(self, place, steps=1):
        moved = list(place)
        moved[self.order[-1]] += steps
        return tuple(moved)

    def node_cards(self):
        text, places, i = "", sorted(self.number, key=self.rank), 0
        while i < len(places):
            run = 1
            while i + run < len(places) and self.continues(places[i], places[i + run], run):
                run += 1
            generated = run > 2
            text += self.node_card(places[i], 1 if generated else 0)
            if generated:
                text += self.node_card(places[i + run - 1], 0)
            i += run if generated else 1
        return text

    def continues(self, first, place, steps):
        """Whether `place` lies in one evenly spaced row with `first`, alike held or free."""
        if place != self.behind(first, steps) or self.held(*self.point(place)) != self.held(*self.point(first)):
            return False
        axis = self.order[-1]
        x = self.lines[axis]
        return abs(x[place[axis]] - x[first[axis]] - steps * (x[first[axis] + 1] - x[first[axis]])) < 1e-9

    def node_card(self, place, step):
        x, y, z = self.point(place)
        indicator = 1 if self.held(x, y, z) else 0
        return f"{self.number[place]:10d}{indicator:5d}     {x:15.8f}{y:15.8f}{z:15.8f}{0.0:15.1f}{step:5d}\n"

    def cells_of(self, group):
        return sorted((cell for cell, g in self.group.items() if g == group), key=self.rank)

    def element_cards(self, group, source=0):
        text, cells, i = "", self.cells_of(group), 0
        while i < len(cells):
            run = 1
            while i + run < len(cells) and cells[i + run] == self.behind(cells[i], run):
                run += 1
            nodes = [self.number[self.at(cells[i], corner)] for corner in self.corners]
            numbers = "".join(f"{n:8d}" for n in [i + 1] + nodes)
            width = 3 if len(nodes) == 8 else 5
            fields = [0, source, 1 if run > 1 else 0, run - 1, 0, 0]
            text += numbers + "".join(f"{field:{width}d}" for field in fields) + "\n"
            i += run
        return text

    def group_cards(self, group, material, source=0, gauss=2):
        family = 3 if len(self.corners) == 8 else 2
        text = f"{family:5d}{len(self.cells_of(group)):10d}" + integers(0, 1 if source else 0, 0, 0)
        dimension = [gauss] * family
        text += f"{material:5d}     " + integers(4 if family == 2 else 8, 0, 0, *dimension)
        return text + self.element_cards(group, source)


def header(title, mesh, NDS, NANOCH, box, groups, materials, periods, every):
    """Format card to step sizes; no periods: a steady problem of one step."""
    text = comment("---- Title; format card: INDFOR 2, NDS, NANOCH, solver; device cards: the box of the fibres, "
                   "divisions (none)")
    text += f"{title}\n2 {NDS} {NANOCH} 0\n" + reals(box, 10, 4) + "\n"
    text += comment("---- Basic data, control and execution card")
    text += integers(len(mesh.number), groups, materials, 1 if periods else 0, max(1, len(periods)), every, 0, 2, 0,
                     every, 0, first=10)
    text += "    1    0    0   60    1.0E-8    1.0E-8    1    0\n    1\n"
    if periods:
        text += comment("---- Time steps of each period: how many, I10; how long, D10.4")
        text += "".join(f"{count:10d}" for count, _ in periods) + "\n"
        text += "".join(f"{size:10.3E}" for _, size in periods) + "\n"
    return text + comment("---- Nodes, row by row") + mesh.node_cards()


def table(distances, concentrations, rows):
    """A correction factor table: distances in nanometres, one row of factors for each."""
    text = integers(len(distances), len(concentrations))
    text += reals(distances, 10, 3) + reals(concentrations, 10, 3)
    return text + "".join(reals(row, 10, 4) for row in rows)


def fibre_set(number, kind, diameter, high, fibres, tables):
    """Set, search box and search grid card, the fibres (lists of points), the tables (one or two)."""
    text = comment(f"---- Fibre set {number}: NSETID NUMFIB IANISY NTYPE DIAM DLENGTH WALLCUT; search box, low corner "
                   "and base; counts and steps; for each fibre NFIBID NPOINTS and its points; correction factors: "
                   "NDIST NCONC, distances (nm), concentrations, a row for each distance")
    text += integers(number, len(fibres), len(tables) - 1, kind).rstrip("\n") + reals([diameter, 0.0, 1.0], 10, 6)
    text += reals([0.0] * 6, 10, 6) + "    2    2    2" + reals(high, 10, 6)
    for i, points in enumerate(fibres):
        text += integers(i + 1, len(points))
        text += "".join(f"{p + 1:5d}" + reals(point, 10, 6) for p, point in enumerate(points))
    return text + "".join(tables)


def diffusion_curves(coefficients):
    """Header, and for each material a curve of two points, alike at 0 and at 1000."""
    text = comment("---- Material header, and a diffusion curve of two points for each material") + integers(2)
    for m, coefficient in enumerate(coefficients):
        text += integers(m + 1, 2)
        text += "".join(f"{c:20.6f}{coefficient:20.6f}\n" for c in (0.0, 1000.0))
    return text + comment("---- Table of the nanochannel: one distance, one concentration, read and not used") + table(
        [1.0], [1.0], [[1.0]])


def outlet(concentration):
    return comment("---- Outlet: mode 1, its concentration, no time multiplier") + f"    1\n{concentration:13.5E}\n" + (
        integers(0, 0, 0))


def unit_source_and_zero_start():
    return (comment("---- Boundary card (one source function of one point), the function, the start of the iteration") +
            integers(1, 0, 0, 0, 0, 0, 0, 1, 1, 0, 0) + integers(1, 1) + reals([0.0, 1.0], 10, 3) + "       0.0\n")


NO_FIBRES = comment("---- Homogenization card and the card behind it: no fibre sets") + "\n\n"


def fibre_head(sets):
    return comment("---- Homogenization card: NSETS, all else 0; the card behind it") + integers(sets) + "\n"


def nanochannel_reservoirs():
    x = even(-0.2, 0.0, 2)[:-1] + even(0.0, 1.0, 20) + even(1.0, 1.1, 1)[1:]
    across = even(0.0, 0.3, 3)

    def group_of(i, j, k):
        if i < 2 or i > 21:
            return 2
        return 1 if j == k == 0 else 0

    mesh = Mesh([x, across, across], group_of, lambda *_: False, (0, 2, 1))
    left = max(number for place, number in mesh.number.items() if place[0] <= 2)
    text = comment("""
A channel 1 long and 0.1 x 0.1 wide between two closed reservoirs,
0.3 x 0.3 wide, 0.2 (left) and 0.1 (right) long. Their coefficient is
10000 times the channel's, so each is stirred. The left one, with the
channel's entrance, holds the concentration 1 at the start.
Made by examples/make_fibre_decks.py.

""")
    text += header("Nanochannel between two reservoirs", mesh, 3, 3, [1.0, 0.1, 0.1], 2, 2,
                   [(50, 0.002), (40, 0.01), (50, 0.05)], 10)
    text += NO_FIBRES + comment("---- Group 1: the channel; group 2: both reservoirs, material 2")
    text += mesh.group_cards(1, 1) + mesh.group_cards(2, 2) + diffusion_curves([1.0, 10000.0]) + outlet(0.0)
    text += comment("---- Boundary card: NPOC 2, start values by groups of nodes: 1.0 in a range of nodes, 0 elsewhere")
    text += integers(2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0) + "       1.0    0    1\n" + integers(1, 1, left) + "    0\n"
    return text + "       0.0    0    0\nSTOP\n"


def fibre_box():
    n = 12
    mesh = Mesh([even(0.0, 1.0, n)] * 3, lambda *_: 1, lambda x, y, z: x in (0.0, 1.0), (2, 1, 0))
    along_y = [[(x, 0.0, z), (x, 1.0, z)] for x in (0.25, 0.75) for z in (0.25, 0.75)]
    along_z = [[(0.5, y, 0.0), (0.5, y, 1.0)] for y in (0.25, 0.75)]
    along = table([0.0, 20.0, 50.0, 100.0], [0.0, 1.0], [[0.40, 0.50], [0.60, 0.70], [0.85, 0.90], [1.0, 1.0]])
    towards = table([0.0, 20.0, 50.0, 100.0], [0.0, 1.0], [[0.10, 0.20], [0.30, 0.40], [0.70, 0.75], [1.0, 1.0]])
    text = comment("""
A box of 1 x 1 x 1 (thousand nanometres) with four fibres along y,
200 thick, and two along z, 100 thick, which are not meshed. The faces
x = 0 and x = 1 are held at the outlet's concentration 1; the box
starts empty. Near walls diffusion is slower, more so towards the wall
than along it (set 1 has two tables) and less so where it is crowded.
Made by examples/make_fibre_decks.py.

""")
    text += header("Box with crossing fibres", mesh, 1, 1, [1.0, 1.0, 1.0], 1, 1, [(20, 0.002), (16, 0.01)], 4)
    text += fibre_head(2)
    text += fibre_set(1, 0, 0.2, [1.0, 1.0, 1.0], along_y, [along, towards])
    text += fibre_set(2, 0, 0.1, [1.0, 1.0, 1.0], along_z, [along])
    text += comment("---- The one element group") + mesh.group_cards(1, 1, gauss=3)
    text += diffusion_curves([1.0]) + outlet(1.0)
    text += comment("---- Boundary card, and the start value of all nodes")
    return text + integers(1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0) + "       0.0\nSTOP\n"


HARD = [table([1.0, 2.0], [1.0], [[1.0], [1.0]])]  # no wall effect in the fluid


def spheres():
    n = 12
    side = even(0.0, 0.5, n)
    mesh = Mesh([[-0.05] + side, side, side], lambda i, j, k: 2 if i == 0 else 1, lambda x, y, z: x == 0.5, (2, 1, 0))
    text = comment("""
An eighth of a cell of a cubic array of impermeable spheres, cell 1,
spheres a tenth of its volume. A layer of large coefficient at x = 0
with a source of 20 gives the flux 1 through the cell; x = 0.5, the
plane through the centre of the sphere, is held at 0. Steady state.
Made by examples/make_fibre_decks.py.

""")
    text += header("Cubic array of spheres", mesh, 1, 1, [0.5, 0.5, 0.5], 2, 2, [], 1)
    text += fibre_head(1) + fibre_set(1, 1, (0.6 / 3.141592653589793)**(1 / 3), [0.5] * 3, [[(0.5, 0.5, 0.5)]], HARD)
    text += comment("---- Group 1: the cell; group 2: the layer, material 2, with the source")
    text += mesh.group_cards(1, 1) + mesh.group_cards(2, 2, source=1) + diffusion_curves([1.0, 10000.0]) + outlet(0.0)
    return text + unit_source_and_zero_start().replace("     0.000     1.000\n", "     0.000    20.000\n") + "STOP\n"


def fibrous_sheet():
    n, cells = 12, 3
    x = [-0.1] + even(0.0, 1.0 * cells, 2 * n * cells)
    mesh = Mesh([x, even(0.0, 0.5, n), [0.0]], lambda i, j, k: 2 if i == 0 else 1, lambda x, y, z: x == 1.0 * cells,
                (0, 2, 1), plane=True)
    text = comment("""
A sheet of fibres seen along the fibres: a square array of circles,
cell 1, a fifth of the area, three cells deep, half a cell wide. A layer
of large coefficient at x = 0 with a source of 10 gives the flux 1
through the sheet; x = 3 is held at 0. Steady state.
Made by examples/make_fibre_decks.py.

""")
    text += header("Sheet of fibres, three cells deep", mesh, 1, 1, [3.0, 0.5, 0.0], 2, 2, [], 1)
    centres = [[(cell + 0.5, 0.5, 0.0)] for cell in range(cells)]
    text += fibre_head(1) + fibre_set(1, 1, (0.8 / 3.141592653589793)**0.5, [3.0, 0.5, 0.0], centres, HARD)
    text += comment("---- Group 1: the sheet; group 2: the layer, material 2, with the source")
    text += mesh.group_cards(1, 1, gauss=3) + mesh.group_cards(2, 2, source=1)
    text += diffusion_curves([1.0, 10000.0]) + outlet(0.0)
    return text + unit_source_and_zero_start().replace("     0.000     1.000\n", "     0.000    10.000\n") + "STOP\n"


for make in (nanochannel_reservoirs, fibre_box, spheres, fibrous_sheet):
    (FOLDER / make.__name__ / "zurt.dat").write_text(make())
