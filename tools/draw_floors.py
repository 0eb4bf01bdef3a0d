#!/usr/bin/env python3
"""Draws docs/floors.svg: the folders of src/ as floors, with what stands on each and how large it is.

  tools/draw_floors.py
"""
import os

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
# From the roof down, as in the list of tools/check_sources; folders of one row do not include each other upwards either.
ROWS = [
    [("job", "order of the deck and of the run;", "header cards, driver, command line")],
    [("check", "the check of a deck,", "use of nodes")],
    [("homogenization", "masses, the fit and its runs,", "direct coefficient")],
    [("timeint", "one step: iteration, convergence;", "the plain pass")],
    [("results", "listing, graphics file, torsion", "")],
    [("elements", "three phases: read, form, results", "")],
    [("elements/cards", "groups, elements", ""), ("elements/surfaces", "flux, convection, radiation", ""),
     ("elements/forming", "coefficients, sums, fluxes", ""), ("elements/radial", "fibres of rings", "")],
    [("microscale", "fibres, factors of points,", "equivalent distance")],
    [("geometry", "families, shapes, rules,", "the walk over elements and points")],
    [("model", "nodes, time, materials, curves", ""), ("solver", "the linear system: skyline, tree, MUMPS", "")],
    [("run", "what a run holds: records, A and its partition, files, echo", "")],
    [("input", "deck, cards", "")],
    [("core", "views, formats, text units, stops, vectors", "")],
]
LEFT, TOP, WIDTH, HEIGHT, GAP = 20, 20, 720, 46, 8


def size_of(folder):
    """Files and lines of a folder itself."""
    where = os.path.join(ROOT, "src", folder)
    files = [name for name in os.listdir(where) if name.endswith((".h", ".cpp"))]
    lines = 0
    for name in files:
        with open(os.path.join(where, name), encoding="utf-8") as file:
            lines += sum(1 for _ in file)
    return len(files), lines


def room(folder, first, second, x, y, width):
    files, lines = size_of(folder)
    text = first + (" " + second if second and width > 400 else "")
    small = 10 if width < 300 else 12
    return [f'<rect x="{x}" y="{y}" width="{width}" height="{HEIGHT}" rx="4" fill="#eef3fa" stroke="#1f5fa8"/>',
            f'<text x="{x + 8}" y="{y + 18}" font-weight="bold">{folder}/</text>',
            f'<text x="{x + width - 8}" y="{y + 18}" text-anchor="end" fill="#666" font-size="10">{files} files, {lines} lines</text>'
            if width >= 300 else "",
            f'<text x="{x + 8}" y="{y + 36}" font-size="{small}">{text}</text>']


def main():
    height = TOP * 2 + len(ROWS) * (HEIGHT + GAP) + 20
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH + 110}" height="{height}" font-family="sans-serif" font-size="13">',
           f'<rect width="{WIDTH + 110}" height="{height}" fill="white"/>',
           '<defs><marker id="tip" markerWidth="9" markerHeight="9" refX="7" refY="4" orient="auto"><path d="M0,0 L8,4 L0,8 z" fill="#c0392b"/></marker></defs>']
    for row, folders in enumerate(ROWS):
        width = (WIDTH - GAP * (len(folders) - 1)) / len(folders)
        for place, (folder, first, second) in enumerate(folders):
            out += room(folder, first, second, LEFT + place * (width + GAP), TOP + row * (HEIGHT + GAP), width)
    bottom, x = TOP + len(ROWS) * (HEIGHT + GAP) - GAP, LEFT + WIDTH + 24
    out += [f'<line x1="{x}" x2="{x}" y1="{TOP}" y2="{bottom}" stroke="#c0392b" stroke-width="2" marker-end="url(#tip)"/>',
            f'<text x="{x + 12}" y="{(TOP + bottom) / 2}" fill="#c0392b" transform="rotate(90 {x + 12} {(TOP + bottom) / 2})" text-anchor="middle">includes point down</text>',
            "</svg>"]
    with open(os.path.join(ROOT, "docs", "floors.svg"), "w", encoding="utf-8") as file:
        file.write("\n".join(line for line in out if line) + "\n")


if __name__ == "__main__":
    main()
