#!/usr/bin/env python3
"""Writes the deck of a block of nx x ny x nz eight-node bricks, to any size.

    make_block_deck.py DECK NX NY NZ [options]

Nodes are numbered with x fastest, then y, then z. Nodes of the lowest section in z, and of every further one that
--hold names, are held at zero. Each section is shifted against the one below it, so that no component of a flux is
zero. Without --steps the deck asks for a check of its input alone (steady state, NDS 0): what the reading of large
decks is timed with. With --steps it is a transient run with a diffusion curve of three points (NDS 1, or 2 for no
fluxes), which needs fixed format, since curves are always taken by columns; initial values are 1.
"""
import argparse
import sys

CURVE = [(0.0, 1.0), (0.3, 1.5), (1.0, 2.0)]
LARGEST_RUN = 999  # three columns for the count of elements that a card generates


def parse_arguments(words=None):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("deck")
    for side in ("nx", "ny", "nz"):
        parser.add_argument(side, type=int, help=f"bricks along {side[1]}")
    parser.add_argument("--format", choices=["free", "fixed"], default="free")
    parser.add_argument("--cards", choices=["single", "nodes", "rows"], default="single",
                        help="single: every node and element has a card of its own; nodes: every node, and a card "
                             "for each row of elements; rows: a card for each row of elements, two for each of nodes")
    parser.add_argument("--steps", type=int, default=0, help="time steps to run; 0: check of the input")
    parser.add_argument("--step-size", type=float, default=1.0)
    parser.add_argument("--hold", type=int, default=0, metavar="N",
                        help="hold every N-th section in z too; 0: none")
    parser.add_argument("--results", choices=["none", "last", "all"], default="none",
                        help="last: the listing at the first and the last step; all: listing and graphics file at "
                             "each step")
    parser.add_argument("--device", type=int, choices=[1, 2], default=1, help="NDS of a transient run")
    parser.add_argument("--solver", choices=["skyline", "sparse"], default="skyline")
    parser.add_argument("--accuracy", type=float, default=0.0, help="EPSTR; 0: the program's own")
    parser.add_argument("--held-from-start", action="store_true",
                        help="held sections have their zero at the start of the first step already")
    arguments = parser.parse_args(words)
    arguments.sides = (arguments.nx, arguments.ny, arguments.nz)
    if min(arguments.sides) < 1:
        parser.error("sides are 1 or more")
    if arguments.steps > 0 and arguments.format == "free":
        parser.error("--steps needs --format fixed")
    if 0.0 < arguments.accuracy < 1e-8:
        parser.error("--accuracy has eight decimals")
    return arguments


def card(free, fields):
    """One card of (value, width) pairs: an integer is written in its width; a real, of width 0, in 15 columns."""
    if free:
        return " ".join(repr(value) for value, _ in fields) + "\n"
    return "".join(f"{value:{width}d}" if width else f"{value:15.7e}" for value, width in fields) + "\n"


def integers(free, *values, first=5):
    """Integers in five columns, the first of them in `first`."""
    return card(free, [(value, 5 if i else first) for i, value in enumerate(values)])


def write_header(out, options, free):
    nx, ny, nz = options.sides
    transient = options.steps > 0
    NPRINT = {"none": -1, "last": options.steps, "all": 1}[options.results]
    IGRAF = 1 if options.results == "all" else -1
    NDS = options.device if transient else 0
    out.write(f"Block of {nx} x {ny} x {nz} bricks\n")
    out.write(f"{1 if free else 2} {NDS} 0 {2 if options.solver == 'sparse' else 0}\n")
    NP = (nx + 1) * (ny + 1) * (nz + 1)
    # NP NGET NMATT NSTAC NPER NPRINT IANIZ NULAZ ITOR IGRAF IDIRECTD
    out.write(integers(free, NP, 1, 1, int(transient), 1, NPRINT, 0, -1, 0, IGRAF, 0, first=10))
    # INTEB INDSC IFORM MAXIT EPSTA EPSTR NJRAP IPASSPRINT
    EPSTR = options.accuracy
    out.write(f"1 0 0 0 0.0 {EPSTR} 1 0\n" if free
              else f"{1:5d}{0:5d}{0:5d}{0:5d}{0.0:10.2f}{EPSTR:10.8f}{1:5d}{0:5d}\n")
    # IREST NCZK NCZR VREM0 PotentialFunctionSize
    out.write(card(free, [(int(transient), 5), (0, 5), (0, 5), (0.0, 0), (0, 5)]))
    if transient:
        out.write(integers(free, options.steps, first=10))
        out.write(f"{options.step_size:10.3e}\n")


def is_held(options, k):
    """Whether the nodes of section k in z are held."""
    return k == 0 or (options.hold > 0 and k % options.hold == 0)


def place(options, i, j, k):
    """The coordinates of a node."""
    nx, ny, _ = options.sides
    return (i + 0.25 * k) / nx, (j + 0.125 * k) / ny, k / nx


def nodes_of(low, nx, plane):
    """The nodes of the brick whose lowest one is `low`, in the order of an element card."""
    back, above = low + nx + 1, low + plane
    top = above + nx + 1
    return top + 1, top, above, above + 1, back + 1, back, low, low + 1


def write_nodes(out, options, free):
    nx, ny, nz = options.sides

    def node(i, j, k, number, K):
        held = int(is_held(options, k))
        x, y, z = place(options, i, j, k)
        if free:
            return f"{number} {held} {x!r} {y!r} {z!r} 0.0 {K}\n"
        return f"{number:10d}{held:5d}     {x:15.8e}{y:15.8e}{z:15.8e}{0.0:15.8e}{K:5d}\n"

    number = 1
    for k in range(nz + 1):
        for j in range(ny + 1):
            if options.cards == "rows" and nx > 1:
                out.write(node(0, j, k, number, 1))
                out.write(node(nx, j, k, number + nx, 0))
            else:
                out.writelines(node(i, j, k, number + i, 0) for i in range(nx + 1))
            number += nx + 1


def write_elements(out, options, free):
    nx, ny, nz = options.sides
    plane = (nx + 1) * (ny + 1)
    out.write(card(free, [(3, 5), (nx * ny * nz, 10), (0, 5), (0, 5), (0, 5), (0, 5)]))
    # NMAT3D MAT3D NP3DMX IPR3DC IPRTG3 NGAUSX NGAUSY NGAUSZ; a device group: MAT3DD, five blanks, the rest
    out.write("    1         8    0    0    2    2    2\n" if options.steps > 0
              else integers(free, 1, 1, 8, 0, 0, 2, 2, 2))

    def element(n, low, generated):
        nodes = nodes_of(low, nx, plane)
        if free:
            return "%d %d %d %d %d %d %d %d %d" % ((n,) + nodes) + f" 0 0 {int(generated > 0)} {generated} 0 0\n"
        return "%8d%8d%8d%8d%8d%8d%8d%8d%8d" % ((n,) + nodes) + f"  0  0{int(generated > 0):3d}{generated:3d}  0  0\n"

    n = 1
    for k in range(nz):
        for j in range(ny):
            low = 1 + j * (nx + 1) + k * plane
            step = 1 if options.cards == "single" else min(nx, LARGEST_RUN + 1)
            out.writelines(element(n + i, low + i, min(step, nx - i) - 1) for i in range(0, nx, step))
            n += nx


def write_material(out, options, free):
    if options.steps > 0:
        out.write(f"{len(CURVE):5d}\n")
        out.write(f"{1:5d}{len(CURVE):5d}\n")
        out.writelines(f"{c:20.10e}{D:20.10e}\n" for c, D in CURVE)
        if options.device == 1:
            out.write(integers(free, 0, 0))
        return
    # One linear material: NANLK NTABK MAXTK NANLC NTABC MAXTC, its functions, multipliers, density and limits, and
    # the one point of its conduction function.
    out.write(integers(free, 0, 1, 1, 0, 0, 0))
    reals = (1.0, 1.0, 1.0, 1.0, 1e6, -1e6)
    out.write("1 0 0 " + " ".join(map(repr, reals)) + "\n" if free
              else f"{1:5d}{0:5d}{0:5d}" + "".join(f"{value:10.1f}" for value in reals) + "\n")
    out.write(integers(free, 1, 1))
    out.write("0.0 1.0\n" if free else f"{0.0:20.1f}{1.0:20.1f}\n")


def write_initial_values(out, options, free):
    """With the boundary card, which counts their groups."""
    if not options.held_from_start:
        out.write(integers(free, *([1] + [0] * 10)))
        if options.steps > 0:
            out.write(f"{1.0:10.3e}\n")
        return
    # A first group without a node, since one group alone would be a value for all; then the ranges between held nodes.
    out.write(integers(free, *([2] + [0] * 10)) + f"{0.0:10.3e}{0:5d}{0:5d}\n{1.0:10.3e}{0:5d}{1:5d}\n")
    plane = (options.sides[0] + 1) * (options.sides[1] + 1)
    for k in range(options.sides[2] + 1):
        if not is_held(options, k):
            out.write(f"{plane * k + 1:5d}{1:5d}{plane * (k + 1):5d}\n")
    out.write(f"{0:5d}\n")


def write_deck(out, options):
    free = options.format == "free"
    write_header(out, options, free)
    write_nodes(out, options, free)
    out.write("0 0 0 0 0 0.0 0 0 0 0 0 0 0 0\n0.0 0.0\n" if free else "\n\n")  # no fibres, no homogenization
    write_elements(out, options, free)
    write_material(out, options, free)
    write_initial_values(out, options, free)
    out.write("STOP\n")


def main():
    options = parse_arguments()
    with open(options.deck, "w", buffering=1 << 20) as out:
        write_deck(out, options)
    return 0


if __name__ == "__main__":
    sys.exit(main())
