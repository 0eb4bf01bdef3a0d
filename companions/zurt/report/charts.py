"""Charts as inline SVG: lines over linear or logarithmic axes, in colours of the page (--c1 to --c8), so that they follow dark and light."""
import math
from dataclasses import dataclass
from html import escape

import numpy

WIDTH, HEIGHT = 420.0, 250.0
LEFT, RIGHT, TOP, BOTTOM = 64.0, 18.0, 10.0, 40.0
MOST_POINTS = 500
LARGEST = 1e200
UNBROKEN = "\u00a0"  # a blank at which no line ends
SUPERSCRIPTS = str.maketrans("-0123456789", "⁻⁰¹²³⁴⁵⁶⁷⁸⁹")


@dataclass
class Curve:
    """x, y: (n,), NaN where there is nothing. style: line, dashed, points or both. band: (low, high) arrays of y, drawn as an area. colour: from
    one, the place among the chart's curves without it."""
    name: str
    x: numpy.ndarray
    y: numpy.ndarray
    style: str = "line"
    band: tuple = None
    colour: int = 0


@dataclass
class Chart:
    """svg: the drawing. legend: [(name, colour, style)] of its curves. title, note: what stands above and below."""
    title: str
    svg: str
    legend: list
    note: str = ""


def line_chart(title, curves, x_label, y_label, logarithmic=False, note="", marks=(), whole_x=False, from_zero=False):
    """Chart of curves. marks: [(y, words)] of level lines. whole_x: x counts something. from_zero: the axis of y begins there, for counts.
    None when no curve has a point to show."""
    curves = [_shown(curve, k + 1, logarithmic) for k, curve in enumerate(curves)]
    curves = [curve for curve in curves if numpy.isfinite(curve.y).any()]
    if not curves:
        return None
    x_range = _range([curve.x for curve in curves], False, margin=0.0)
    bands = [each for curve in curves if curve.band for each in curve.band]
    levels = [numpy.array([y]) for y, _ in marks if not logarithmic or y > 0]
    y_range = _range([*[curve.y for curve in curves], *bands, *levels, *([numpy.zeros(1)] if from_zero else [])], logarithmic)
    place = _placing(x_range, y_range, logarithmic)
    parts = [_axes(x_range, y_range, place, logarithmic, x_label, y_label, whole_x, from_zero)]
    parts += [_band(curve, place) for curve in curves if curve.band]
    parts += [_mark(y, words, place) for y, words in marks if y_range[0] <= y <= y_range[1]]
    parts += [_curve(curve, place) for curve in curves]
    names = ", ".join(curve.name for curve in curves)
    words = f"{title}. {y_label} over {x_label}: {names}. {_ends(curves)}"
    svg = (f'<svg viewBox="0 0 {WIDTH:g} {HEIGHT:g}" role="img" aria-label="{escape(words, quote=True)}">' + "".join(parts) + "</svg>")
    return Chart(title, svg, [(curve.name, curve.colour, curve.style) for curve in curves], note)


def tidy(value, digits=4):
    """A number as people read it: 0.66507, 12 300, 4.1 × 10⁻⁷."""
    if value is None:
        return ""
    value = float(value)
    if not math.isfinite(value):
        return "–"
    if value == 0.0:
        return "0"
    power = math.floor(math.log10(abs(value)) + 1e-12)
    if -4 <= power < 6:
        text = f"{value:.{max(digits - 1 - power, 0)}f}"
        text = text.rstrip("0").rstrip(".") if "." in text else text
        whole, point, rest = text.partition(".")
        if len(whole.lstrip("-")) > 4:
            whole = f"{int(whole):,}".replace(",", " ")
        return (whole + point + rest).replace("-", "−").replace(" ", UNBROKEN)
    mantissa, exponent = f"{value:.{digits - 1}e}".split("e")
    mantissa, power = mantissa.rstrip("0").rstrip(".") if "." in mantissa else mantissa, int(exponent)
    return f"{mantissa} × 10{str(power).translate(SUPERSCRIPTS)}".replace("-", "−").replace(" ", UNBROKEN)


def _shown(curve, colour, logarithmic):
    x, y = (_drawable(numpy.asarray(each, float)) for each in (curve.x, curve.y))
    if logarithmic:
        y[~(y > 0.0)] = numpy.nan
    band = curve.band and tuple(_drawable(numpy.asarray(each, float)) for each in curve.band)
    if len(x) > MOST_POINTS:
        kept = _telling_points(y)
        x, y, band = x[kept], y[kept], band and tuple(each[kept] for each in band)
    return Curve(curve.name, x, y, curve.style, band, ((curve.colour or colour) - 1) % 8 + 1)


def _drawable(values):
    """A copy without numbers so large that axes around them have none, nor so small that their logarithms end."""
    values = numpy.where(numpy.abs(values) < LARGEST, values, numpy.nan)
    return numpy.where(numpy.abs(values) < 1.0 / LARGEST, 0.0, values)


def _telling_points(y):
    """Places of about MOST_POINTS of the points: the first, lowest and highest of each piece of the curve, and the last one, so that no peak
    is left out."""
    limits = numpy.linspace(0, len(y), MOST_POINTS // 3 + 1).astype(int)
    first = limits[:-1]
    low, high = numpy.where(numpy.isnan(y), numpy.inf, y), numpy.where(numpy.isnan(y), -numpy.inf, y)
    lowest = [begin + int(numpy.argmin(low[begin:end])) for begin, end in zip(first, limits[1:])]
    highest = [begin + int(numpy.argmax(high[begin:end])) for begin, end in zip(first, limits[1:])]
    return numpy.unique(numpy.concatenate([first, lowest, highest, [len(y) - 1]]))


def _range(arrays, logarithmic, margin=0.06):
    values = numpy.concatenate([numpy.asarray(each, float).ravel() for each in arrays])
    values = values[numpy.isfinite(values)]
    if not len(values):
        return (1.0, 10.0) if logarithmic else (0.0, 1.0)
    low, high = float(values.min()), float(values.max())
    if logarithmic:
        low, high = math.log10(low), math.log10(high)
        spare = max(0.06 * (high - low), 0.15)
        return 10.0 ** (low - spare), 10.0 ** (high + spare)
    if low > 0.0 and low < 0.6 * high and margin:
        low = 0.0
    narrow = 1e-3 * max(abs(low), abs(high))  # less would ask for ticks of many digits, which say little
    if high - low <= narrow:
        spare = max(narrow, 0.1 * abs(high) if high - low <= 1e-9 * abs(high) else 0.0) or 1.0
        return low - spare, high + spare
    return low - (margin * (high - low) if low != 0.0 else 0.0), high + (margin * (high - low) if high != 0.0 else 0.0)


def _placing(x_range, y_range, logarithmic):
    scale = math.log10 if logarithmic else float
    low, high = scale(y_range[0]), scale(y_range[1])

    def place(x, y):
        across = LEFT + (WIDTH - LEFT - RIGHT) * (x - x_range[0]) / (x_range[1] - x_range[0])
        return across, TOP + (HEIGHT - TOP - BOTTOM) * (high - scale(y)) / (high - low)
    return place


def nice_ticks(low, high, wanted=5, whole=False):
    """(values, step): round values between low and high, about `wanted` of them; whole: whole numbers."""
    raw = (high - low) / wanted
    power = 10.0 ** math.floor(math.log10(raw))
    step = next(factor * power for factor in (1.0, 2.0, 2.5, 5.0, 10.0) if factor * power >= raw * 0.999 and (factor != 2.5 or not whole))
    step = max(step, 1.0) if whole else step
    first = math.ceil(low / step - 1e-9)
    return [k * step for k in range(first, math.floor(high / step + 1e-9) + 1)], step


def _tick_text(value, step):
    if abs(value) < 1e-12 * max(step, 1e-300) or value == 0.0:
        return "0"
    size = max(abs(value), step)
    if size >= 1e5 or size < 1e-3:
        power = math.floor(math.log10(abs(value)) + 1e-9)
        mantissa = value / 10.0 ** power
        digits = max(0, power - math.floor(math.log10(step) + 1e-9))
        head = f"{mantissa:.{min(digits, 3)}f}"
        return f"{head}·10{str(power).translate(SUPERSCRIPTS)}".replace("-", "−")
    digits = max(0, -math.floor(math.log10(step) + 1e-9) + (1 if str(f"{step:.1e}").startswith("2.5") else 0))
    return f"{value:.{digits}f}".replace("-", "−")


def _log_ticks(low, high):
    first, last = math.ceil(math.log10(low) - 1e-9), math.floor(math.log10(high) + 1e-9)
    every = max(1, math.ceil((last - first + 1) / 6))
    if last - first >= 1:
        return [(10.0 ** k, "10" + str(k).translate(SUPERSCRIPTS)) for k in range(first, last + 1, every)]
    values = [(factor, k) for k in range(first - 1, last + 2) for factor in (1, 2, 5) if low <= factor * 10.0 ** k <= high]
    return [(factor * 10.0 ** k, (f"{factor}·" if factor > 1 else "") + "10" + str(k).translate(SUPERSCRIPTS)) for factor, k in values]


def _axes(x_range, y_range, place, logarithmic, x_label, y_label, whole_x, from_zero):
    bottom, right = HEIGHT - BOTTOM, WIDTH - RIGHT
    if logarithmic:
        y_ticks = _log_ticks(*y_range)
    else:
        values, step = nice_ticks(*y_range, whole=from_zero)
        y_ticks = [(value, _tick_text(value, step)) for value in values]
    values, step = nice_ticks(*x_range, whole=whole_x)
    parts = []
    for value, text in y_ticks:
        _, y = place(x_range[0], value)
        parts.append(f'<line class="g" x1="{LEFT:g}" x2="{right:g}" y1="{y:.1f}" y2="{y:.1f}"/>'
                     f'<text x="{LEFT - 5:g}" y="{y + 4:.1f}" text-anchor="end">{text}</text>')
    for value in values:
        x, _ = place(value, y_range[0])
        parts.append(f'<line class="a" x1="{x:.1f}" x2="{x:.1f}" y1="{bottom:g}" y2="{bottom + 4:g}"/>'
                     f'<text x="{x:.1f}" y="{bottom + 16:g}" text-anchor="middle">{_tick_text(value, step)}</text>')
    parts.append(f'<line class="a" x1="{LEFT:g}" x2="{right:g}" y1="{bottom:g}" y2="{bottom:g}"/>')
    if not logarithmic and y_range[0] < 0.0 < y_range[1]:
        _, y = place(x_range[0], 0.0)
        parts.append(f'<line class="a" x1="{LEFT:g}" x2="{right:g}" y1="{y:.1f}" y2="{y:.1f}"/>')
    parts.append(f'<text class="l" x="{(LEFT + right) / 2:g}" y="{HEIGHT - 6:g}" text-anchor="middle">{escape(x_label)}</text>')
    middle = (TOP + bottom) / 2
    parts.append(f'<text class="l" x="11" y="{middle:g}" text-anchor="middle" transform="rotate(-90 11 {middle:g})">{escape(y_label)}</text>')
    return "".join(parts)


def _curve(curve, place):
    parts, pieces, piece = [], [], []
    for x, y in zip(curve.x, curve.y):
        if math.isfinite(x) and math.isfinite(y):
            piece.append(place(x, y))
        elif piece:
            pieces.append(piece)
            piece = []
    pieces += [piece] if piece else []
    for piece in pieces:
        if curve.style != "points" and len(piece) > 1:
            words = " ".join(f"{x:.1f},{y:.1f}" for x, y in piece)
            dashed = ' stroke-dasharray="6 4"' if curve.style == "dashed" else ""
            parts.append(f'<polyline class="s" style="stroke:var(--c{curve.colour})" points="{words}"{dashed}/>')
        if curve.style in ("points", "both") or len(piece) == 1:
            size = 3.0 if len(curve.x) < 60 else 1.8
            parts += [f'<circle style="fill:var(--c{curve.colour})" cx="{x:.1f}" cy="{y:.1f}" r="{size:g}"/>' for x, y in piece]
    return "".join(parts)


def _band(curve, place):
    low, high = (numpy.asarray(each, float) for each in curve.band)
    there = numpy.isfinite(low) & numpy.isfinite(high)
    upper = [place(x, y) for x, y in zip(curve.x[there], high[there])]
    lower = [place(x, y) for x, y in zip(curve.x[there], low[there])]
    words = " ".join(f"{x:.1f},{y:.1f}" for x, y in upper + lower[::-1])
    return f'<polygon style="fill:var(--c{curve.colour})" opacity="0.18" points="{words}"/>'


def _mark(y, words, place):
    _, height = place(0.0, y)
    return (f'<line class="m" x1="{LEFT:g}" x2="{WIDTH - RIGHT:g}" y1="{height:.1f}" y2="{height:.1f}"/>'
            f'<text x="{LEFT + 4:g}" y="{height - 4:.1f}">{escape(words)}</text>')


def _ends(curves):
    parts = []
    for curve in curves[:4]:
        values = curve.y[numpy.isfinite(curve.y)]
        parts.append(f"{curve.name} from {tidy(values[0])} to {tidy(values[-1])}")
    return "; ".join(parts) + "."
