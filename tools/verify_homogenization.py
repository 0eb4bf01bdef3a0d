#!/usr/bin/env python3
"""Holds the homogenization against exact values: arrays of cylinders and of spheres, layers, directions, random fibres.

Usage: tools/verify_homogenization.py [STUDY] [--program P] [--wall-cells N] [--meshes 8,16,32] [--document]
A cell lies between two reservoirs that are long elements of a large coefficient; concentrations begin with the straight line
between the reservoirs, so that nothing but them changes from step to step. Status 1 when a check fails.
"""
import argparse
import math
import os
import random
import subprocess
import sys
import tempfile
from dataclasses import dataclass, field, replace
from itertools import product

from svg_plot import plot

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
RESERVOIR, COEFFICIENT, STEPS, SIZE, TOLERANCE, FITERR = 4000.0, 1000.0, 4, 1000.0, 1e-5, 1e-6

# --- exact values ---------------------------------------------------------------------------------------------------


def solve(rows, right):
    """The first unknown of a linear system, by elimination."""
    rows = [[*row, value] for row, value in zip(rows, right)]
    for k in reversed(range(len(rows))):
        top = max(range(k + 1), key=lambda i: abs(rows[i][k]))
        rows[k], rows[top] = rows[top], rows[k]
        for i in range(k):
            share = rows[i][k] / rows[k][k]
            rows[i] = [a - share * b for a, b in zip(rows[i], rows[k])]
    return rows[0][-1] / rows[0][0]


def plane_sums(hexagonal, top):
    """Sums of z**-k over the points of a lattice of spacing 1, k even; that of k = 2 is the one of a long sample."""
    c = [0.0, 0.0, 0.0, 0.0]
    if hexagonal:
        c[3] = 5.0 * math.gamma(1.0 / 3.0) ** 18 / (8960.0 * math.pi ** 6)
    else:
        c[2] = 3.0 * math.gamma(0.25) ** 8 / (960.0 * math.pi ** 2)
    for n in range(4, top // 2 + 1):
        c.append(3.0 / ((2 * n + 1) * (n - 3)) * sum(c[m] * c[n - m] for m in range(2, n - 1)))
    sums = {2 * n: c[n] / (2 * n - 1) for n in range(2, len(c))}
    sums[2] = math.pi / (math.sqrt(0.75) if hexagonal else 1.0)
    return sums


def exact_cylinders(fraction, hexagonal, terms=24):
    """Across a square or hexagonal array of impermeable cylinders (Rayleigh's multipoles; Perrins et al. 1979)."""
    area = math.sqrt(0.75) if hexagonal else 1.0
    a = math.sqrt(fraction * area / math.pi)
    orders, sums = range(1, 2 * terms, 2), plane_sums(hexagonal, 4 * terms)
    rows = [[a ** (l + k) * math.comb(l + k - 1, l) * sums[l + k] + (l == k) for k in orders] for l in orders]
    return 1.0 - 2.0 * math.pi * a / area * solve(rows, [a] + [0.0] * (terms - 1))


def irregular(x, y, z, top):
    """(l-m)! P_l^m cos(m phi) / r**(l+1) for even l up to top and m = 0, 4, 8, ..."""
    r = math.sqrt(x * x + y * y + z * z)
    phi, values = math.atan2(y, x), {}
    for m in range(0, top + 1, 4):
        low, here = 0.0, math.prod((2 * k - 1) * math.hypot(x, y) / r for k in range(1, m + 1)) / r ** (m + 1)
        for l in range(m, top + 1):
            if l > m:
                low, here = here, ((2 * l - 1) * z / r * here - ((l - 1) ** 2 - m * m) / r * low) / r
            if l % 2 == 0:
                values[l, m] = here * math.cos(m * phi)
    return values


def cubic_sums(top, sizes=(3, 6, 12)):
    """Sums of these over a cubic lattice: over cubes of three sizes, and what lies beyond by extrapolation."""
    shells = [{} for _ in range(sizes[-1] + 1)]
    for place in ((i, j, k) for i in range(sizes[-1] + 1) for j in range(sizes[-1] + 1) for k in range(sizes[-1] + 1)):
        weight, shell = 2 ** sum(i > 0 for i in place), max(place)
        for key, value in (irregular(*place, top if shell <= sizes[0] else 24) if shell else {}).items():
            shells[shell][key] = shells[shell].get(key, 0.0) + weight * value
    sums = {(2, 0): 4.0 * math.pi / 3.0}
    for key in (key for key in shells[1] if key[0] > 2):
        a, b, c = (sum(shell.get(key, 0.0) for shell in shells[:size + 1]) for size in sizes)
        ratio = [(high + 0.5) / (low + 0.5) for low, high in zip(sizes, sizes[1:])]
        first = [high + (high - low) / (q ** (key[0] - 2) - 1.0) for low, high, q in ((a, b, ratio[0]), (b, c, ratio[1]))]
        sums[key] = first[1] + (first[1] - first[0]) / (ratio[1] ** key[0] - 1.0)
    return sums


def exact_spheres(fraction, top=25, sums={}):
    """A simple cubic array of impermeable spheres, by the same method (McPhedran and McKenzie 1978)."""
    if not sums:
        sums.update(cubic_sums(50))
    a = (0.75 * fraction / math.pi) ** (1.0 / 3.0)
    keys = [(l, m) for l in range(1, top + 1, 2) for m in range(0, l + 1, 4)]
    root = {(l, m): math.sqrt(math.factorial(l + m) * math.factorial(l - m)) for l, m in keys}

    def entry(l, m, k, q):
        total = sums.get((l + k, abs(m - q)), 0.0) + (sums.get((l + k, m + q), 0.0) if m else 0.0)
        return a ** (l + k + 1) * total / (root[l, m] * root[k, q]) + ((l + 1) / l if (l, m) == (k, q) else 0.0)

    rows = [[entry(l, m, k, q) for l, m in keys] for k, q in keys]
    return 1.0 - 4.0 * math.pi * a * a * solve(rows, [a] + [0.0] * (len(keys) - 1))


# --- decks ----------------------------------------------------------------------------------------------------------

CORNERS = {2: [(1, 1), (0, 1), (0, 0), (1, 0)],
           3: [(1, 1, 1), (0, 1, 1), (0, 0, 1), (1, 0, 1), (1, 1, 0), (0, 1, 0), (0, 0, 0), (1, 0, 0)]}
MIDDLES = [(1, 2), (0, 1), (1, 0), (2, 1), (1, 1)]  # of quadrilaterals, in half elements


@dataclass
class Model:
    """A cell: sizes and elements by axis, fibres as places of spheres or pairs of places, all from its low corner."""
    size: tuple
    mesh: tuple
    fibres: list = field(default_factory=list)
    diameter: float = 1e-5
    order: int = 3
    quadratic: bool = False
    axisymmetric: bool = False
    coefficients: tuple = (1.0,)
    material: object = lambda place: 0
    factors: tuple = ((0.001, 1.0), (0.002, 1.0))  # distance in nm, factor


def ints(*values):
    return "".join(f"{value:5d}" for value in values)


def reals(*values):
    return "".join(f"{value:10.7f}" if 0.0 <= value < 100.0 else f"{value:10.3e}" for value in values)


def block(model, axis, corner, reservoir, at):
    """Nodes, elements (nodes, middles, place or None in a reservoir) and start values (by plane) of a cell and its reservoirs."""
    dimension, half = len(model.size), 2 if model.quadratic else 1
    columns = (2 if dimension == 3 else 6) if reservoir else 0
    places = [[low + length * i / (n * half) for i in range(n * half + 1)]
              for low, length, n in zip(corner, model.size, model.mesh)]
    out = [reservoir * (i + 1) / (columns * half) for i in range(columns * half)]
    low, high = places[axis][0], places[axis][-1]
    places[axis] = [low - x for x in reversed(out)] + places[axis] + [high + x for x in out]
    others = [d for d in reversed(range(dimension)) if d != axis]
    slowest = len(places[axis]) > max(len(places[d]) for d in others)  # short directions are numbered first
    order = [axis, *others] if slowest else [*others, axis]
    counts = [len(places[d]) for d in order]

    def node(index):
        number = 0
        for d, count in zip(order, counts):
            number = number * count + index[d]
        return at + number + 1

    def by_axis(index, factor=1):
        return [factor * index[order.index(d)] for d in range(dimension)]

    nodes = [[places[d][i] for d, i in enumerate(by_axis(index))] for index in product(*map(range, counts))]
    elements = []
    for index in product(*(range((count - 1) // half) for count in counts)):
        first = by_axis(index, half)
        shifted = lambda steps, factor: [node([i + factor * s for i, s in zip(first, step)]) for step in steps]
        centre = [0.5 * (places[d][i] + places[d][i + half]) - corner[d] for d, i in enumerate(first)]
        elements.append((shifted(CORNERS[dimension], half), shifted(MIDDLES, 1) if model.quadratic else [],
                         centre if 0.0 < centre[axis] < model.size[axis] else None))
    across, planes = len(nodes) // len(places[axis]), len(places[axis])
    starts = [(min(1.0, max(0.0, (high - x) / (high - low))), *((at + i * across + 1, 1, at + (i + 1) * across) if slowest else (at + i + 1, planes, at + len(nodes) - planes + i + 1)))
              for i, x in enumerate(places[axis])]
    return nodes, elements, starts


def fibre_cards(model, cells, box):
    spheres = bool(model.fibres) and not isinstance(model.fibres[0][0], tuple)
    fibres = [[tuple(x + low for x, low in zip(place, corner)) for place in ((fibre,) if spheres else fibre)]
              for corner in cells for fibre in model.fibres]
    out = [ints(1, len(fibres), 0, int(spheres)) + reals(model.diameter, 1.0, 1.0), reals(*[0.0] * 6), ints(2, 2, 2) + reals(*box)]
    for number, fibre in enumerate(fibres):
        out.append(ints(number + 1, len(fibre)) + reals(model.diameter))
        out += [ints(i + 1) + reals(*place, *[0.0] * (3 - len(place))) for i, place in enumerate(fibre)]
    out += [ints(len(model.factors), 1), reals(*(row[0] for row in model.factors)), reals(1.0)]
    return out + [reals(row[1]) for row in model.factors]


def deck(model, directions, job):
    """A deck of one cell for each direction (0, 1, 2), none in the way of another. Jobs: fit, distance, direct, porosity."""
    dimension = len(model.size)
    cells = [[0.0 if e == d or len(directions) == 1 else 2.0 * (d + 1) * model.size[e] for e in range(dimension)]
             for d in directions]
    steps = 1 if job == "porosity" else STEPS
    # The medium reads its factors in the reservoirs too: for a distance these must offer no resistance to speak of.
    reservoir, coefficient = {"porosity": (0.0, 1.0), "distance": (0.1 * RESERVOIR, 1000.0 * COEFFICIENT)}.get(job, (RESERVOIR, COEFFICIENT))
    nodes, elements, starts = [], [], []
    for d, corner in zip(directions, cells):
        for whole, part in zip((nodes, elements, starts), block(model, d, corner, reservoir, len(nodes))):
            whole += part
    box = [max(corner[d] + model.size[d] for corner in cells) for d in range(dimension)] + [0.0] * (3 - dimension)
    fit = int(job in ("fit", "distance"))
    out = ["Homogenization held against exact values", "2 3 3 0", reals(*box), ""]
    out.append(f"{len(nodes):10d}" + ints(1, len(model.coefficients) + 1, 1, 1, 1, 0, -1, 0, 1000, int(job == "direct")))
    out += [ints(1, 0, 0, 40) + reals(TOLERANCE, TOLERANCE) + ints(1, 2), ints(1), f"{steps:10d}", reals(SIZE)]
    out += [f"{i + 1:10d}    0     " + "".join(f"{x:15.8e}" for x in [*place, 0.0, 0.0][:3]) for i, place in enumerate(nodes)]
    out.append(ints(int(bool(model.fibres)), fit, fit, steps, 80) + f"{FITERR:10.2e}" + ints(*(int(d in directions) for d in range(3)))
               + ints(directions[0] + 1, int(job == "distance"), int(job != "distance"), 0, 0))
    if job == "distance":
        out.append("".join(f"{model.coefficients[0]:16.6e}" for _ in range(2)))
    if model.fibres:
        out += fibre_cards(model, cells, box)
    nodes_each = 9 if model.quadratic else 2 ** dimension
    out.append(ints(dimension) + f"{len(elements):10d}" + ints(int(model.axisymmetric), 0, 0, 0))
    out.append(ints(1) + "     " + ints(nodes_each, 0, 0, *[model.order] * dimension))
    for i, (corners, middles, place) in enumerate(elements):
        material = 1 if place is None else 2 + model.material(place)
        out.append("".join(f"{number:8d}" for number in (i + 1, *corners)) + f"{material:{5 if dimension == 2 else 3}d}")
        out += ["".join(f"{number:8d}" for number in middles)] if middles else []
    out.append(ints(2))
    for i, D in enumerate((coefficient, *model.coefficients)):
        out += [ints(i + 1, 2)] + [f"{c:20.10e}{D:20.10e}" for c in (-10.0, 10.0)]
    out += [ints(1, 1), reals(1.0), reals(1.0), reals(1.0), ints(1), reals(0.0), ints(0, 0, 0)]
    starts = [start for start in starts if start[0] > 0.0]
    out.append(ints(len(starts) + 1, *[0] * 10))
    for value, first, step, last in [(0.0, 1, 1, len(nodes)), *starts]:
        out += [reals(value) + ints(0, 1), ints(first, step, last), ints(0)]
    return "\n".join(out + ["STOP", ""])


# --- runs -----------------------------------------------------------------------------------------------------------


class Runner:
    def __init__(self, program, wall_cells):
        self.program, self.wall_cells, self.seconds = program, wall_cells, 0.0  # processor seconds of the last run

    def files(self, text):
        """The mass files of a run, by direction; ends this script when the run does not end well."""
        with tempfile.TemporaryDirectory() as folder:
            name = os.path.join(folder, "cell.dat")
            with open(name, "w") as file:
                file.write(text)
            option = ["--wall-cells", str(self.wall_cells)] if self.wall_cells else []
            begun = sum(os.times()[2:4])
            run = subprocess.run([self.program, "--quiet", "--output", folder, *option, name], capture_output=True, text=True)
            self.seconds = sum(os.times()[2:4]) - begun
            if run.returncode != 0:
                sys.exit(f"status {run.returncode}: {run.stderr}")
            paths = [os.path.join(folder, f"MASS-{axis}.LST") for axis in "XYZ"]
            return [open(path).read().splitlines() if os.path.exists(path) else [] for path in paths]

    def fit(self, model, *directions, job="fit", column=0):
        """The fitted value of each direction."""
        files = self.files(deck(model, directions, job))
        return [numbers(after(files[d], "FITTED PARAMETERS", 2))[column] for d in directions]

    def direct(self, model, direction):
        """The equivalent coefficient of the last step."""
        return numbers(after(self.files(deck(model, (direction,), "direct"))[direction], "VALUES OF DIFFUSION", 1 + STEPS))[2]

    def porosity(self, model):
        return numbers(self.files(deck(model, (0,), "porosity"))[0][1])[1]


def after(lines, words, count):
    at = next((i for i, line in enumerate(lines) if words in line), None)
    return lines[at + count] if at is not None else sys.exit(f"no line with '{words}' in a mass file")


def numbers(line):
    return [float(item.replace("D", "E")) for item in line.split()]


# --- studies --------------------------------------------------------------------------------------------------------
# A study gives tables: heading, columns, rows. Errors are in per cent of the exact value.


def square(fraction, n, **options):
    return Model((1.0, 1.0), (n, n), [(0.5, 0.5)], 2.0 * math.sqrt(fraction / math.pi), **options)


def hexagonal(fraction, n, **options):
    h = math.sqrt(3.0)
    places = [(0.5, 0.5 * h), (0.0, 0.0), (1.0, 0.0), (0.0, h), (1.0, h)]
    return Model((1.0, h), (n, round(n * h)), places, math.sqrt(2.0 * fraction * h / math.pi), **options)


def along(fraction, n):
    return Model((1.0,) * 3, (n, n, 2), [((0.5, 0.5, 0.0), (0.5, 0.5, 1.0))], 2.0 * math.sqrt(fraction / math.pi))


def sphere(fraction, n):
    """An eighth of a cell."""
    return Model((0.5,) * 3, (n // 2,) * 3, [(0.0, 0.0, 0.0)], 2.0 * (0.75 * fraction / math.pi) ** (1.0 / 3.0))


class Study:
    def __init__(self, arguments):
        self.check_exact()
        self.meshes, self.runner = arguments.meshes, Runner(os.path.abspath(arguments.program), arguments.wall_cells)
        self.plain = Runner(self.runner.program, 0)
        self.failed, self.curves = [], {}

    @staticmethod
    def check_exact():
        """Published values; Maxwell's, which one multipole gives; the next multipoles."""
        published = {(0.2, False): 0.666531, (0.4, False): 0.425351, (0.6, False): 0.230318,
                     (0.2, True): 0.666665, (0.4, True): 0.428445, (0.6, True): 0.248343}
        good = all(abs(exact_cylinders(*key) - value) < 1e-6 for key, value in published.items())
        good = good and abs(exact_cylinders(0.8, True) - exact_cylinders(0.8, True, 36)) < 1e-7
        good = good and abs(exact_spheres(0.3, 1) - 0.7 / 1.15) < 1e-9 and abs(exact_spheres(0.5) - exact_spheres(0.5, 23)) < 2e-6
        if not good:
            sys.exit("the exact values are wrong")

    def check(self, what, value, limit):
        if not abs(value) <= limit:
            self.failed.append(f"{what}: {value:+.3f} %, limit {limit:.3f} %")

    def limit(self, gap, n):
        """What the error may be, in per cent: narrow gaps want more than four elements."""
        if not self.runner.wall_cells:
            return 3.0 * 32.0 / n if n == self.meshes[-1] else math.inf
        return (0.2 if gap * n >= 4.0 else 0.5) * (32.0 / n) ** 2

    def both(self, name, model, exact, direction, limit):
        """Errors of fit and direct calculation."""
        fit, direct = self.runner.fit(model, direction)[0], self.runner.direct(model, direction)
        self.check(f"{name}, fit over direct", percent(fit, direct), 0.1)
        self.check(f"{name}, fit", percent(fit, exact), limit)
        self.check(f"{name}, direct", percent(direct, exact), limit)
        return percent(fit, exact), percent(direct, exact)

    def by_mesh(self, name, model_of, exact, direction, gap, plane=False):
        """Errors of the fit by mesh, then of the direct calculation; in the plane those with nodes amid the sides follow."""
        pairs = [self.both(f"{name}, mesh {n}", model_of(n), exact, direction, self.limit(gap, n)) for n in self.meshes]
        if plane:
            n = self.meshes[-1]
            limit = 0.2 * (32.0 / n) ** 2 if self.runner.wall_cells else math.inf
            pairs.append(self.both(f"{name}, 9 nodes, mesh {n}", replace(model_of(n), quadratic=True), exact, direction, limit))
        return [pair[0] for pair in pairs] + [pair[1] for pair in pairs]

    def columns(self, plane=False):
        return [f"{way} {n}" for way in ("fit", "direct") for n in self.meshes + [f"{self.meshes[-1]}, 9 nodes"] * plane]

    def arrays(self):
        tables, kinds = [], (("square", square, 0, 7), ("hexagonal", hexagonal, 0, 8), ("hexagonal", hexagonal, 1, 8))
        for name, model, direction, count in kinds:
            rows = []
            for f in (0.1 * (i + 1) for i in range(count)):
                exact = exact_cylinders(f, model is hexagonal)
                errors = self.by_mesh(f"{name} {f:.1f} {'xy'[direction]}", lambda n: model(f, n), exact, direction, 1.0 - model(f, 1).diameter, True)
                rows.append([f"{f:.1f}", f"{exact:.6f}", *map(signed, errors)])
                self.curves.setdefault(f"{name}, {'xy'[direction]}", []).append((f, exact * (1.0 + 0.01 * errors[len(self.meshes) - 1])))
            tables.append((f"{name.capitalize()} array, across the cylinders along {'xy'[direction]}", ["fraction", "exact", *self.columns(True)], rows))
        rows = [[f"{f:.1f}", f"{1.0 - f:.6f}", *map(signed, self.by_mesh(f"along {f:.1f}", lambda n: along(f, n), 1.0 - f, 2, 1.0))]
                for f in (0.2, 0.4, 0.6)]
        return tables + [("Square array, along the cylinders", ["fraction", "exact", *self.columns()], rows)]

    def spheres(self):
        rows = []
        for f in (0.1, 0.2, 0.3, 0.4, 0.5):
            exact, model = exact_spheres(f), lambda n: sphere(f, n)
            errors = self.by_mesh(f"spheres {f:.1f}", model, exact, 0, 1.0 - model(2).diameter)
            rows.append([f"{f:.1f}", f"{(1.0 - f) / (1.0 + 0.5 * f):.6f}", f"{exact:.6f}", *map(signed, errors)])
            self.curves.setdefault("spheres", []).append((f, exact * (1.0 + 0.01 * errors[len(self.meshes) - 1])))
        return [("Spheres, simple cubic array", ["fraction", "Maxwell", "exact", *self.columns()], rows)]

    def layers(self):
        rows = []
        kinds = (("in series", 0, (1.0, 10.0), 20.0 / 11.0, 20.0 / 11.0), ("side by side", 1, (1.0, 10.0), 5.5, 7.75),
                 ("side by side, 10 below", 1, (10.0, 1.0), 5.5, 3.25))
        for tube, name, axis, D, plane, axial in ((tube, *kind) for tube in (False, True) for kind in kinds):
            model = Model((1.0, 1.0), (8, 8), coefficients=D, material=lambda place: int(place[axis] > 0.5), axisymmetric=tube)
            exact, direct = axial if tube else plane, self.runner.direct(model, 0)
            rows.append([("tube" if tube else "plane") + ", " + name, f"{exact:.5f}", "", f"{direct:.5f}"])
            self.check(rows[-1][0], percent(direct, exact), 0.01)
        for tube, open_part in ((False, 0.5), (True, 0.75)):
            model = Model((1.0, 1.0), (8, 8), [((0.0, 0.25), (1.0, 0.25))], 0.5, axisymmetric=tube)
            fit, direct = self.runner.fit(model, 0)[0], self.runner.direct(model, 0)
            rows.append([("tube" if tube else "plane") + ", impermeable up to y = 0.5", f"{open_part:.5f}", f"{fit:.5f}", f"{direct:.5f}"])
            for value in (fit, direct):
                self.check(rows[-1][0], percent(value, open_part), 0.1)
        model = Model((2.0, 1.0), (64, 2), [((0.0, 0.0), (0.0, 1.0))], factors=((1e-4, 0.25), (3000.0, 1.0)))
        exact, fit = 2.0 / math.log(3.0) - 1.0, self.runner.fit(model, 0, job="distance", column=2)[0]
        rows.append(["HEQ of the factor (1 + d) / 4, d = 0 to 2 along the flow", f"{exact:.5f}", f"{fit:.5f}", ""])
        self.check(rows[-1][0], percent(fit, exact), 0.5)
        return [("Layers", ["model", "exact", "fit", "direct"], rows)]

    def directions(self):
        rows, n = [], self.meshes[-1]
        m = min(n, 16)
        for name, model, exact in ((f"square array 0.4, mesh {n}", square(0.4, n), [exact_cylinders(0.4, False)] * 2),
                                   (f"hexagonal array 0.4, mesh {n}", hexagonal(0.4, n), [exact_cylinders(0.4, True)] * 2),
                                   (f"cylinder along z, bricks, 0.4, mesh {m}", along(0.4, m), [exact_cylinders(0.4, False)] * 2 + [0.6])):
            together = self.runner.fit(model, *range(len(exact)))
            for d, value in enumerate(exact):
                alone, direct = self.runner.fit(model, d)[0], self.runner.direct(model, d)
                rows.append([f"{name}, {'xyz'[d]}", f"{value:.5f}", *(f"{x:.5f}" for x in (together[d], alone, direct))])
                for other in (alone, direct):
                    self.check(f"{rows[-1][0]}, in one deck", percent(together[d], other), 0.1)
        return [("Several directions in one deck", ["model", "exact", "fit, one deck", "fit, own deck", "direct"], rows)]

    def convergence(self):
        tables = []
        for runner in [self.plain] + [self.runner] * bool(self.runner.wall_cells):
            rows = []
            for name, build, f in (("square", square, 0.2), ("square", square, 0.4), ("square", square, 0.6), ("hexagonal", hexagonal, 0.4)):
                for quadratic, order in ((False, 2), (False, 3), (False, 4), (False, 5), (True, 3)):
                    rows.append(self.convergence_row(runner, f"{name} {f}", build, f, order, quadratic))
            head = ["array", "nodes", "order", *(f"porosity {n}" for n in self.meshes), *(f"direct {n}" for n in self.meshes), "rate"]
            tables.append((f"Convergence, {'--wall-cells %d' % runner.wall_cells if runner.wall_cells else 'walls as staircases'}", head, rows))
        if len(tables) == 2:
            tables.append(self.times())
        return tables

    def times(self):
        rows, n = [], self.meshes[-1]
        for name, model in ((f"square 0.4, mesh {4 * n}, 4 nodes", square(0.4, 4 * n)), (f"square 0.4, mesh {2 * n}, 9 nodes", square(0.4, 2 * n, quadratic=True)),
                            (f"spheres 0.4, mesh {n}", sphere(0.4, n))):
            times = [min((runner.direct(model, 0), runner.seconds)[1] for _ in range(3)) for runner in (self.plain, self.runner)]
            rows.append([name, *(f"{seconds:.2f}" for seconds in times), f"{times[1] / times[0]:.2f}"])
        return "Processor seconds of a whole run of the direct calculation, shortest of three", ["model", "staircases", f"--wall-cells {self.runner.wall_cells}", "ratio"], rows

    def convergence_row(self, runner, name, build, fraction, order, quadratic):
        exact, porosity, errors = exact_cylinders(fraction, build is hexagonal), [], []
        for n in self.meshes:
            model = build(fraction, n // 2 if quadratic else n, order=order, quadratic=quadratic)
            porosity.append(percent(runner.porosity(model), 1.0 - fraction))
            errors.append(percent(runner.direct(model, 0), exact))
        if order == 3 and not quadratic:
            self.curves[f"{name}{', wall cells' if runner.wall_cells else ''}"] = [(n, abs(e)) for n, e in zip(self.meshes, errors)]
        first, last = abs(errors[0]), abs(errors[-1])
        rate = f"{math.log(first / last) / math.log(self.meshes[-1] / self.meshes[0]):.1f}" if min(first, last) > 0.0 else ""
        return [name, 9 if quadratic else 4, order, *map(signed, porosity), *map(signed, errors), rate]

    def random(self):
        rows = []
        for seed, count, diameter in ((1, 4, 0.3), (3, 16, 0.2)):
            chance, fibres = random.Random(seed), []
            for _ in range(count):
                axis = chance.randrange(3)
                low, high = ([chance.random() for _ in range(3)] for _ in range(2))
                low[axis], high[axis] = 0.0, 1.0
                fibres.append((tuple(low), tuple(high)))
            for n in (8, 16, 24):
                model = Model((1.0,) * 3, (n,) * 3, fibres, diameter)
                fit, direct = self.runner.fit(model, 0)[0], self.runner.direct(model, 0)
                rows.append([f"{count} of diameter {diameter}", n, f"{self.runner.porosity(model):.5f}", f"{fit:.5f}", f"{direct:.5f}", signed(percent(fit, direct))])
                self.check(f"random fibres, {rows[-1][0]}, mesh {n}", percent(fit, direct), 0.1)
        return [("Boxes of random fibres", ["fibres", "mesh", "porosity", "fit", "direct", "fit to direct"], rows)]


STUDIES = ("arrays", "spheres", "layers", "directions", "convergence", "random")


NOTES = {
    "arrays": "Impermeable cylinders, Gauss order 3. `fit 8` is the error of the fit with 8 quadrilaterals to a cell of size 1, in per "
              "cent of the exact value. Exact: Rayleigh's multipoles (Perrins, McKenzie, McPhedran 1979); along the cylinders 1 - f.\n\n"
              "![Coefficient by fraction](homogenization_arrays.svg)",
    "spheres": "Impermeable spheres in bricks of 8 nodes, Gauss order 3; the mesh is an eighth of a cell, its count that of the whole "
               "cell. Exact: multipoles of the cubic lattice (McPhedran, McKenzie 1978); Maxwell's (1 - f) / (1 + f/2) is the limit "
               "of few spheres.",
    "layers": "Layers of 1 and 10, 8 x 8 elements; in tubes y is the radius. A fit changes the curve of one material, so layers of two "
              "have none.",
    "directions": "A deck with a cell and two reservoirs of its own for each direction, and decks of one direction.",
    "convergence": "Errors in per cent of the exact value; meshes count elements of 4 nodes, or pairs of nodes of 9-node elements, to a "
                   "side. The rate is the power of the element size that the coarsest and the finest mesh give.\n\n![Error by mesh](homogenization_convergence.svg)",
    "random": "Fibres from side to side of a cube, at random places, in bricks. No exact value is known: the table holds the fit "
              "against the direct calculation and shows what refinement does."}


def percent(value, exact):
    return 100.0 * (value / exact - 1.0)


def signed(value):
    return f"{value:+.3f}"



# --- results --------------------------------------------------------------------------------------------------------


def markdown(heading, columns, rows):
    lines = ["| " + " | ".join(map(str, row)) + " |" for row in (columns, ["---"] * len(columns), *rows)]
    return "\n".join([f"**{heading}**", "", *lines, ""])


def document(study, tables, arguments):
    folder = os.path.join(ROOT, "docs")
    option = f" --wall-cells {arguments.wall_cells}" if arguments.wall_cells else ""
    meshes = ",".join(map(str, arguments.meshes))
    text = ["# Verification of the homogenization", "", f"    tools/verify_homogenization.py all{option} --meshes {meshes} --document", "",
            f"wrote this file. Reservoirs of length {RESERVOIR:g} with a coefficient of {COEFFICIENT:g}, {STEPS} steps of {SIZE:g}, start values on "
            f"the straight line between the reservoirs, `EPSTA` and `EPSTR` {TOLERANCE:g}, `FITERR` {FITERR:g}. Fits compare masses, the direct "
            "calculation shows its last step.", ""]
    for name in STUDIES:
        text += [f"## {name.capitalize()}", "", f"    tools/verify_homogenization.py {name}{option} --meshes {meshes}", "", NOTES[name], ""]
        text += [markdown(*table) for table in tables[name]]
    text += ["## Checks", "", "Checks that failed:" if study.failed else "All checks of the script hold.", *(f"- {line}" for line in study.failed)]
    with open(os.path.join(folder, "homogenization_verification.md"), "w") as file:
        file.write("\n".join(text) + "\n")
    fractions = [0.02 * i for i in range(1, 41)]
    exact = [("square, exact", [(f, exact_cylinders(f, False)) for f in fractions if f < 0.75], "line"),
             ("hexagonal, exact", [(f, exact_cylinders(f, True)) for f in fractions], "line"),
             ("spheres, exact", [(f, exact_spheres(f)) for f in fractions if f < 0.51], "line")]
    fitted = [(f"{name}: fit", study.curves[name], "points") for name in ("square, x", "hexagonal, x", "spheres")]
    plot(os.path.join(folder, "homogenization_arrays.svg"), f"Fitted coefficient, {arguments.meshes[-1]} elements to a cell",
         ("volume fraction", "coefficient"), exact + fitted, (0.0, 1.0), (0.0, 1.0))
    errors = [(name, points, "both") for name, points in study.curves.items() if points[0][0] >= 1.0]
    plot(os.path.join(folder, "homogenization_convergence.svg"), "Error of the direct coefficient, 4 nodes, order 3",
         ("elements to a side of a cell", "error, per cent"), errors, (arguments.meshes[0], arguments.meshes[-1]), (0.001, 20.0),
         (True, True), arguments.meshes)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("study", nargs="?", default="all", choices=(*STUDIES, "all"))
    parser.add_argument("--program", default=os.path.join(ROOT, "build", "release", "zurt"))
    parser.add_argument("--wall-cells", type=int, default=0, help="passed on to the program; 0: not")
    parser.add_argument("--meshes", type=lambda text: sorted(map(int, text.split(","))), default=[8, 16, 32], help="elements to a side of a cell")
    parser.add_argument("--document", action="store_true", help="run all studies and write docs/homogenization_verification.md")
    arguments = parser.parse_args()
    study, tables = Study(arguments), {}
    for name in STUDIES if arguments.document or arguments.study == "all" else (arguments.study,):
        tables[name] = getattr(study, name)()
        print("\n".join(markdown(*table) for table in tables[name]), flush=True)
    if arguments.document:
        document(study, tables, arguments)
    print("\n".join(f"FAILED {line}" for line in study.failed) or "all checks hold")
    sys.exit(1 if study.failed else 0)


if __name__ == "__main__":
    main()
