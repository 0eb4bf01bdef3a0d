#!/usr/bin/env python3
"""Writes the deck of this example: a row of square cells with one impermeable cylinder each, between two reservoirs.

The channel lies along x from 0 to CELLS; cells are cubes of size 1 with a cylinder along z in the middle of each.
Reservoirs of the same cross-section lie to both sides of it, as few long bricks of a material with a large coefficient.
The left one starts at concentration 1, the rest at 0. Usage: make_deck.py [--option value ...] > zurt.dat
"""
import argparse
import math
import random

# Corners of a brick in the order of the element card, as steps along x, y, z.
CORNERS = [(1, 1, 1), (0, 1, 1), (0, 0, 1), (1, 0, 1), (1, 1, 0), (0, 1, 0), (0, 0, 0), (1, 0, 0)]


def parse():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cells", type=int, default=2, help="cells along x")
    parser.add_argument("--mesh", type=int, default=12, help="bricks to a side of a cell")
    parser.add_argument("--fraction", type=float, default=0.2, help="volume fraction of the cylinders; 0: none of influence")
    parser.add_argument("--reservoir", type=float, default=40.0, help="length of a reservoir")
    parser.add_argument("--steps", type=int, default=12)
    parser.add_argument("--size", type=float, default=4.0, help="size of a time step")
    parser.add_argument("--nfstep", type=int, default=0, help="steps of one run of the fit; 0: all")
    parser.add_argument("--nfitmax", type=int, default=40)
    parser.add_argument("--fiterr", type=float, default=1e-4)
    parser.add_argument("--axis", choices="xyz", default="z", help="axis of the cylinders")
    parser.add_argument("--iheq", type=int, default=1, help="1: fit the wall distance behind the curve")
    parser.add_argument("--idcc", type=int, default=1, help="1: fit the diffusion curve")
    parser.add_argument("--table", default="0.1:0.3,100:0.7,300:1", help="correction factors, distance in nm:factor, comma separated")
    parser.add_argument("--ehm", type=int, default=1, help="IEHM")
    parser.add_argument("--nfit", type=int, default=1, help="NFIT")
    parser.add_argument("--direct", type=int, default=0, help="IDIRECTD")
    parser.add_argument("--solver", type=int, default=0, help="SolverSelector")
    parser.add_argument("--d", type=float, default=1.0, help="coefficient of the channel")
    parser.add_argument("--depth", type=int, default=1, help="bricks along z")
    parser.add_argument("--nprint", type=int, default=1)
    parser.add_argument("--igraf", type=int, default=1000)
    parser.add_argument("--dreservoir", type=float, default=1e3, help="coefficient of the reservoirs")
    parser.add_argument("--epstr", type=float, default=1e-8)
    parser.add_argument("--along", type=int, default=0, help="bricks along x between the reservoirs; 0: cubes")
    parser.add_argument("--slope", type=float, default=0.0, help="of the channel's coefficient, relative, by concentration")
    parser.add_argument("--fibres", type=int, default=0,
                        help="instead of a cylinder in each cell, so many fibres from side to side at random places")
    parser.add_argument("--free", action="store_true", help="all cards free, for models that outgrow the columns: zurt --free")
    parser.add_argument("--diameter", type=float, default=0.02, help="of these fibres")
    return parser.parse_args()


def cylinders(args, wide):
    """Axes of all cylinders, from end to end."""
    if args.fibres:
        chance = random.Random(1)
        size = (args.cells, 1.0, wide)
        for _ in range(args.fibres):
            axis = chance.randrange(3)
            ends = [[chance.uniform(0.0, length) for length in size] for _ in range(2)]
            ends[0][axis], ends[1][axis] = 0.0, size[axis]
            yield ends
        return
    for cell in range(args.cells):
        cx = cell + 0.5
        yield {"z": ((cx, 0.5, 0.0), (cx, 0.5, wide)), "y": ((cx, 0.0, wide / 2), (cx, 1.0, wide / 2)),
               "x": ((0.0, 0.5, wide / 2), (float(args.cells), 0.5, wide / 2))}[args.axis]


def freed(cards):
    """The same cards in free format: a slash ends each, and what stands behind it keeps its default."""
    first = next(i for i, card in enumerate(cards) if not card.startswith("C "))
    return cards[:first + 1] + ["1" + cards[first + 1][1:]] + [card + " /" for card in cards[first + 2:-1]] + cards[-1:]


def main():
    args = parse()
    n, long = args.mesh, args.along or args.mesh * args.cells
    h = 1.0 / n
    x = [-args.reservoir, -args.reservoir / 2] + [i * (args.cells / long if args.along else h) for i in range(long + 1)]
    x += [args.cells + args.reservoir / 2, args.cells + args.reservoir]
    ny, nz = n, args.depth
    across = (ny + 1) * (nz + 1)
    wide = nz * h
    out = []

    def node(i, j, k):
        return (i * (nz + 1) + k) * (ny + 1) + j + 1

    NP = len(x) * across
    out += ["C A row of square cells with one impermeable cylinder each, between two reservoirs; written by make_deck.py."]
    out += [f"C {line}" for line in __doc__.splitlines()[2:4]]
    out.append("C Device decks are fixed format decks. Cards, in this order: title; format card (INDFOR 2, NDS 3, NANOCH 3);")
    out.append("C two device cards (the box of the fibres); basic data; control; execution; periods; nodes; homogenization")
    out.append("C card; fibre set, its cylinders and its table; element group; diffusion curves of the reservoirs and of the")
    out.append("C channel; nanochannel table; outlet cards; boundary card (NPOC 2); start values.")
    out.append("Cylinders between two reservoirs")
    out.append(f"2 3 3 {args.solver}")
    out.append(f"{args.cells:10.4f}{1.0:10.4f}{wide:10.4f}")
    out.append("")
    out.append(f"{NP:10d}    1    2    1    1{args.nprint:5d}    0   -1    0{args.igraf:5d}{args.direct:5d}")
    out.append(f"{1:5d}{0:5d}{0:5d}{40:5d}{0.0:10.2e}{args.epstr:10.2e}{1:5d}{0:5d}")
    out.append("    1    0")
    out.append(f"{args.steps:10d}")
    out.append(f"{args.size:10.3e}")
    for i, place in enumerate(x):
        for k in range(nz + 1):
            for j in range(ny + 1):
                out.append(f"{node(i, j, k):10d}    0     {place:15.8e}{j * h:15.8e}{k * h:15.8e}{0.0:15.8e}{0:5d}")
    nfstep = args.nfstep or args.steps
    out.append(f"{1:5d}{args.ehm:5d}{args.nfit:5d}{nfstep:5d}{args.nfitmax:5d}{args.fiterr:10.6f}"
               f"{1:5d}{0:5d}{0:5d}{1:5d}{args.iheq:5d}{args.idcc:5d}{0:5d}{0:5d}")
    if args.idcc == 0:
        out.append(f"{args.d:16.6e}{args.d:16.6e}")
    diameter = 2.0 * math.sqrt(args.fraction / math.pi) if args.fraction > 0 else 1e-5
    if args.fibres:
        diameter = args.diameter
    axes = list(cylinders(args, wide))
    out.append(f"{1:5d}{len(axes):5d}{0:5d}{0:5d}{diameter:10.6f}{1.0:10.6f}{0.5:10.4f}")
    out.append(f"{0.0:10.4f}{0.0:10.4f}{0.0:10.4f}{0.0:10.4f}{0.0:10.4f}{0.0:10.4f}")
    out.append(f"{2:5d}{2:5d}{2:5d}{float(args.cells):10.4f}{1.0:10.4f}{wide:10.4f}")
    for fibre, ends in enumerate(axes):
        out.append(f"{fibre + 1:5d}{2:5d}{diameter:10.6f}")
        for number, end in enumerate(ends):
            out.append(f"{number + 1:5d}{end[0]:10.6f}{end[1]:10.6f}{end[2]:10.6f}")
    rows = [tuple(float(part) for part in row.split(":")) for row in args.table.split(",")]
    rows = ([(1e-6, rows[0][1])] if len(rows) == 1 else []) + rows
    out.append(f"{len(rows):5d}{1:5d}")
    for start in range(0, len(rows), 8):
        out.append("".join(f"{row[0]:10.3e}" for row in rows[start:start + 8]))
    out.append(f"{1.0:10.4f}")
    out += [f"{row[1]:10.4f}" for row in rows]
    columns = len(x) - 1
    out.append(f"{3:5d}{columns * ny * nz:10d}{0:5d}{0:5d}{0:5d}{0:5d}")
    out.append(f"{1:5d}     {8:5d}{0:5d}{0:5d}{2:5d}{2:5d}{2:5d}")
    number = 0
    for i in range(columns):
        material = 2 if 2 <= i < columns - 2 else 1
        for k in range(nz):
            for j in range(ny):
                number += 1
                corners = "".join(f"{node(i + a, j + b, k + c):8d}" for a, b, c in CORNERS)
                out.append(f"{number:8d}{corners}{material:3d}{0:3d}{0:3d}{0:3d}{0:3d}{0:3d}")
    out.append("    2")
    for material, D, slope in ((1, args.dreservoir, 0.0), (2, args.d, args.slope)):
        out.append(f"{material:5d}{2:5d}")
        for c in (-10.0, 10.0):
            out.append(f"{c:20.10e}{D * (1.0 + slope * c):20.10e}")
    out.append("    1    1\n 1.0000e+3\n 1.0000e+0\n 1.0000e+0")
    out.append("    1\n      0.00000\n    0    0    0")
    out.append(f"{2:5d}" + "    0" * 10)
    out.append(f"{0.0:10.3e}    0    1")
    out.append(f"{1:5d}{1:5d} {NP}" if args.free else f"{1:5d}{1:5d}{NP:5d}")
    out.append("    0")
    out.append(f"{1.0:10.3e}    0    1")
    out.append(f"{1:5d}{1:5d} {3 * across}" if args.free else f"{1:5d}{1:5d}{3 * across:5d}")
    out.append("    0")
    out.append("STOP")
    print("\n".join(freed(out) if args.free else out))


main()
