"""Drawings of the performance document as SVG: curves over the size, and shares of a run as bars.

Imported by run_benchmarks; what is drawn is what the sections have measured.
"""
import math

COLOURS = ("#7f7f7f", "#56a0d3", "#1f5fa8", "#0b2e59", "#c0392b", "#2e8b57")
# The phases of a run in the order of the bars.
SHADES = ("#8c6d31", "#e7ba52", "#56a0d3", "#c0392b", "#1f5fa8", "#2e8b57", "#9b59b6", "#e377c2", "#b0b0b0")
FONT = 'font-family="sans-serif" font-size="12"'
LEFT, TOP, WIDTH, HEIGHT = 62.0, 40.0, 440.0, 300.0


def opening(width, height, title):
    return [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" {FONT}>',
            f'<rect width="{width}" height="{height}" fill="white"/>',
            f'<text x="{LEFT}" y="22" font-size="14">{title}</text>']


def write(path, lines):
    with open(path, "w") as file:
        file.write("\n".join([*lines, "</svg>"]) + "\n")


def label_heights(ends):
    """Heights for the labels of curves, as near to their last points as 15 units between labels allow."""
    order = sorted(range(len(ends)), key=lambda i: ends[i])
    heights = list(ends)
    for before, after in zip(order, order[1:]):
        heights[after] = max(heights[after], heights[before] + 15.0)
    for after, before in zip(reversed(order), list(reversed(order))[1:]):
        heights[before] = min(heights[before], heights[after] - 15.0) if heights[after] > TOP + HEIGHT else heights[before]
    return heights


def draw_curves(path, title, labels, curves):
    """Curves are (name, [(x, y)]); x is linear, y logarithmic, 1 to the power of ten above the greatest."""
    xs = sorted({x for _, points in curves for x, _ in points})
    ys = [y for _, points in curves for _, y in points]
    low, high = math.floor(math.log10(min(ys))), math.log10(max(ys) * 1.3)
    span = max(xs[-1] - xs[0], 1)

    def place(x, y):
        return (LEFT + 15 + (WIDTH - 30) * (x - xs[0]) / span,
                TOP + HEIGHT * (high - math.log10(y)) / (high - low))

    out = opening(760, 400, title)
    out.append(f'<rect x="{LEFT}" y="{TOP}" width="{WIDTH}" height="{HEIGHT}" fill="none" stroke="#444"/>')
    for mantissa, exponent in ((m, e) for e in range(low, math.ceil(high)) for m in (1, 2, 5)):
        value = mantissa * 10.0 ** exponent
        if math.log10(value) <= high:
            y = place(xs[0], value)[1]
            out.append(f'<line x1="{LEFT}" x2="{LEFT + WIDTH}" y1="{y:.1f}" y2="{y:.1f}" stroke="#ddd"/>'
                       f'<text x="{LEFT - 6}" y="{y + 4:.1f}" text-anchor="end">{value:g}</text>')
    for x in xs:
        out.append(f'<text x="{place(x, ys[0])[0]:.1f}" y="{TOP + HEIGHT + 18}" text-anchor="middle">{x:g}</text>')
    out.append(f'<text x="{LEFT + WIDTH / 2}" y="{TOP + HEIGHT + 40}" text-anchor="middle">{labels[0]}</text>'
               f'<text x="18" y="{TOP + HEIGHT / 2}" text-anchor="middle" transform="rotate(-90 18 {TOP + HEIGHT / 2})">'
               f'{labels[1]}</text>')
    heights = label_heights([place(*points[-1])[1] for _, points in curves])
    for (name, points), colour, height in zip(curves, COLOURS, heights):
        placed = [place(x, y) for x, y in points]
        out.append(f'<polyline fill="none" stroke="{colour}" stroke-width="2" points="'
                   + " ".join(f"{x:.1f},{y:.1f}" for x, y in placed) + '"/>')
        out += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3" fill="{colour}"/>' for x, y in placed]
        out.append(f'<line x1="{placed[-1][0] + 4:.1f}" y1="{placed[-1][1]:.1f}" x2="{LEFT + WIDTH + 8}" y2="{height:.1f}" '
                   f'stroke="{colour}" stroke-width="0.7"/>'
                   f'<text x="{LEFT + WIDTH + 12}" y="{height + 4:.1f}" fill="{colour}">{name}</text>')
    write(path, out)


def draw_bars(path, title, bars):
    """Bars are (label, seconds, {part: seconds}); every bar is a whole, a part without a place in it is left out."""
    names = list(bars[0][2])
    left, width, step = 150.0, 520.0, 34.0
    bottom = TOP + 10 + step * len(bars)
    out = opening(800, bottom + 64, title)
    for row, (label, total, parts) in enumerate(bars):
        y, x = TOP + 10 + step * row, left
        out.append(f'<text x="{left - 8}" y="{y + 16}" text-anchor="end">{label}</text>')
        for name, colour in zip(names, SHADES):
            share = width * max(parts[name], 0.0) / total
            if share > 0.3:
                out.append(f'<rect x="{x:.1f}" y="{y}" width="{share:.1f}" height="24" fill="{colour}"/>')
            if share > 34.0:
                out.append(f'<text x="{x + share / 2:.1f}" y="{y + 16}" text-anchor="middle" fill="white">'
                           f'{100.0 * parts[name] / total:.0f} %</text>')
            x += share
        out.append(f'<text x="{left + width + 10}" y="{y + 16}">{total:.3g} s</text>')
    for place, (name, colour) in enumerate(zip(names, SHADES)):
        x, y = left + 125.0 * (place % 5), bottom + 12 + 22.0 * (place // 5)
        out.append(f'<rect x="{x}" y="{y}" width="12" height="12" fill="{colour}"/>'
                   f'<text x="{x + 17}" y="{y + 11}">{name}</text>')
    write(path, out)
