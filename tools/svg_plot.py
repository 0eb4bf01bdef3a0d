"""Plots as SVG files: points joined by lines, linear or logarithmic axes."""
import math

COLOURS = ("#1f5fa8", "#c0392b", "#2e8b57", "#8e44ad", "#d68910", "#555555", "#00838f", "#c2185b")
LEFT, TOP, WIDTH, HEIGHT = 76.0, 34.0, 470.0, 290.0


def steps(low, high, logarithmic):
    if logarithmic:
        return [10.0 ** power for power in range(math.ceil(math.log10(low) - 1e-9), math.floor(math.log10(high) + 1e-9) + 1)]
    return [low + (high - low) * i / 5 for i in range(6)]


def axis(low, high, logarithmic):
    """The share of an axis at which a value stands."""
    scale = math.log10 if logarithmic else float
    return lambda value: (scale(value) - scale(low)) / (scale(high) - scale(low))


def plot(path, title, labels, curves, x_range, y_range, logarithmic=(False, False), x_ticks=None):
    """Curves are (legend, points, style); a style is "line", "points" or "both". Points outside the ranges are left out."""
    across, up = axis(*x_range, logarithmic[0]), axis(*y_range, logarithmic[1])
    place = lambda x, y: (LEFT + WIDTH * across(x), TOP + HEIGHT * (1.0 - up(y)))
    out = ['<svg xmlns="http://www.w3.org/2000/svg" width="760" height="390" font-family="sans-serif" font-size="12">',
           '<rect width="760" height="390" fill="white"/>',
           f'<rect x="{LEFT}" y="{TOP}" width="{WIDTH}" height="{HEIGHT}" fill="none" stroke="#444"/>',
           f'<text x="{LEFT}" y="22" font-size="14">{title}</text>',
           f'<text x="{LEFT + WIDTH / 2}" y="366" text-anchor="middle">{labels[0]}</text>',
           f'<text x="18" y="{TOP + HEIGHT / 2}" text-anchor="middle" transform="rotate(-90 18 {TOP + HEIGHT / 2})">{labels[1]}</text>']
    for x in x_ticks or steps(*x_range, logarithmic[0]):
        out.append(f'<text x="{place(x, y_range[0])[0]:.1f}" y="{TOP + HEIGHT + 18}" text-anchor="middle">{x:g}</text>')
    for y in steps(*y_range, logarithmic[1]):
        height = place(x_range[0], y)[1]
        out.append(f'<line x1="{LEFT}" x2="{LEFT + WIDTH}" y1="{height:.1f}" y2="{height:.1f}" stroke="#ddd"/>')
        out.append(f'<text x="{LEFT - 6}" y="{height + 4:.1f}" text-anchor="end">{y:g}</text>')
    for number, (legend, points, style) in enumerate(curves):
        colour = COLOURS[number % len(COLOURS)]
        inside = [place(x, y) for x, y in points if 0.0 <= across(x) <= 1.0 and (y > 0.0 or not logarithmic[1]) and 0.0 <= up(y) <= 1.0]
        middle = TOP + 10 + 18 * number
        if style != "points":
            path_points = " ".join(f"{x:.1f},{y:.1f}" for x, y in inside)
            out.append(f'<polyline points="{path_points}" fill="none" stroke="{colour}" stroke-width="1.6"/>')
            out.append(f'<line x1="560" x2="586" y1="{middle}" y2="{middle}" stroke="{colour}" stroke-width="1.6"/>')
        if style != "line":
            out += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3.2" fill="{colour}"/>' for x, y in [*inside, (573.0, middle)]]
        out.append(f'<text x="592" y="{middle + 4}">{legend}</text>')
    with open(path, "w") as file:
        file.write("\n".join(out + ["</svg>", ""]))
