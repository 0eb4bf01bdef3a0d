#!/usr/bin/env python3
"""Draws docs/homogenization_fit.svg and docs/homogenization_flow.svg from runs of the program on a channel of cylinders.

Usage: tools/plot_homogenization.py [PROGRAM]; without it build/release/zurt. Decks come from the generator of
examples/homogenization. No figure is kept here but the references: those of a square array of impermeable cylinders.
"""
import os
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
GENERATOR = os.path.join(ROOT, "examples", "homogenization", "make_deck.py")
REFERENCES = {0.2: 0.666531, 0.4: 0.425351}  # Perrins, McKenzie, McPhedran, Proc. R. Soc. Lond. A 369 (1979)
MESHES = (8, 12, 16, 20, 24, 28, 32)
COLOURS = ("#1f5fa8", "#c0392b")
LEFT, TOP, WIDTH, HEIGHT = 70.0, 30.0, 480.0, 280.0


def run(program, **options):
    """The lines of MASS-X.LST of one run; ends this script when the program does not end well."""
    arguments = [part for name, value in options.items() for part in ("--" + name, str(value))]
    deck = subprocess.run([sys.executable, GENERATOR, *arguments], check=True, capture_output=True, text=True).stdout
    with tempfile.TemporaryDirectory() as folder:
        with open(os.path.join(folder, "zurt.dat"), "w") as file:
            file.write(deck)
        subprocess.run([program], cwd=folder, input="\n\n\n", text=True, check=True, stdout=subprocess.DEVNULL)
        with open(os.path.join(folder, "MASS-X.LST")) as file:
            return file.read().splitlines()


def rows_after(lines, words, heads):
    start = max(i for i, line in enumerate(lines) if words in line) + heads
    return [[float(item.replace("D", "E")) for item in line.split()] for line in lines[start:]]


def fitted(program, fraction, mesh):
    lines = run(program, mesh=mesh, fraction=fraction)
    at = next((i for i, line in enumerate(lines) if "FITTED PARAMETERS" in line), None)
    if at is None:
        sys.exit(f"no fit at fraction {fraction}, mesh {mesh}")
    return float(lines[at + 2].split()[0].replace("D", "E"))


def ticks(low, high, count):
    return [low + (high - low) * i / count for i in range(count + 1)]


def draw(name, title, labels, curves, x_range, y_range, y_format):
    """Curves are (legend, points, dashed); ranges are of the axes."""
    def place(x, y):
        return (LEFT + WIDTH * (x - x_range[0]) / (x_range[1] - x_range[0]),
                TOP + HEIGHT * (y_range[1] - y) / (y_range[1] - y_range[0]))

    out = ['<svg xmlns="http://www.w3.org/2000/svg" width="580" height="380" font-family="sans-serif" font-size="12">',
           '<rect width="580" height="380" fill="white"/>',
           f'<rect x="{LEFT}" y="{TOP}" width="{WIDTH}" height="{HEIGHT}" fill="none" stroke="#444"/>',
           f'<text x="{LEFT}" y="20" font-size="14">{title}</text>',
           f'<text x="{LEFT + WIDTH / 2}" y="352" text-anchor="middle">{labels[0]}</text>',
           f'<text x="16" y="{TOP + HEIGHT / 2}" text-anchor="middle" transform="rotate(-90 16 {TOP + HEIGHT / 2})">'
           f'{labels[1]}</text>']
    for x in ticks(*x_range, 6):
        px, _ = place(x, y_range[0])
        out.append(f'<text x="{px:.1f}" y="{TOP + HEIGHT + 18}" text-anchor="middle">{x:g}</text>')
    for y in ticks(*y_range, 5):
        _, py = place(x_range[0], y)
        out.append(f'<line x1="{LEFT}" x2="{LEFT + WIDTH}" y1="{py:.1f}" y2="{py:.1f}" stroke="#ddd"/>')
        out.append(f'<text x="{LEFT - 6}" y="{py + 4:.1f}" text-anchor="end">{y:{y_format}}</text>')
    for number, (legend, points, dashed) in enumerate(curves):
        colour = COLOURS[number % len(COLOURS)]
        places = [place(*point) for point in points]
        path = " ".join(f"{px:.1f},{py:.1f}" for px, py in places)
        dash = ' stroke-dasharray="6 4"' if dashed else ""
        out.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="1.8"{dash}/>')
        if not dashed:
            out += [f'<circle cx="{px:.1f}" cy="{py:.1f}" r="3" fill="{colour}"/>' for px, py in places]
        y = TOP + 20 + 18 * number
        out.append(f'<line x1="380" x2="410" y1="{y - 4}" y2="{y - 4}" stroke="{colour}" stroke-width="1.8"{dash}/>')
        out.append(f'<text x="416" y="{y}">{legend}</text>')
    with open(os.path.join(ROOT, "docs", name), "w") as file:
        file.write("\n".join(out + ["</svg>", ""]))


def main():
    program = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else os.path.join(ROOT, "build", "release", "zurt"))
    curves = []
    for fraction, reference in REFERENCES.items():
        points = [(mesh, fitted(program, fraction, mesh) / reference) for mesh in MESHES]
        for mesh, ratio in points:
            print(f"fraction {fraction} mesh {mesh:3d}  {ratio * reference:.5f}  {ratio:.4f}")
        curves.append((f"fraction {fraction}", points, False))
    draw("homogenization_fit.svg", "Fitted over exact coefficient, square arrays of cylinders",
         ("bricks to a side of a cell", "fitted / exact"), curves, (8, 32), (0.92, 1.02), ".2f")

    # One run of the fit takes all steps; its flows are those of the medium, the direct calculation's those of the fibres.
    steps, size = 12, 4.0
    medium = rows_after(run(program, mesh=16, fraction=0.2, table="0.001:1,1000:1", nprint=1, steps=steps, size=size),
                        "CHANGE OF MASS", 2)
    fibres = rows_after(run(program, mesh=16, fraction=0.2, table="0.001:1,1000:1", direct=1, steps=steps, size=size),
                        "CHANGE OF MASS", 2)
    flows = [("model with fibres", [(row[0] * size, row[1]) for row in fibres], False),
             ("fitted medium", [(row[1], row[2]) for row in medium], True)]
    for (time, a), (_, b) in zip(flows[0][1], flows[1][1]):
        print(f"time {time:5.1f}  fibres {a:.5e}  medium {b:.5e}")
    top = 1.1 * max(flow for _, points, _ in flows for _, flow in points)
    draw("homogenization_flow.svg", "Flow through the inlet, fraction 0.2, 16 bricks to a side", ("time", "flow"),
         flows, (0.0, steps * size), (0.0, top), ".3f")


main()
