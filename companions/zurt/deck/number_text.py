"""Numbers as cards have them: in columns, or free."""
from decimal import ROUND_HALF_EVEN, Decimal
from functools import lru_cache
from math import isfinite


def free_real(value):
    """The shortest text that reads back as the same double."""
    text = repr(float(value))
    return text if "." in text or "e" in text else text + ".0"


def text_forms(digits, exponent, negative):
    """Ways to write 0.DIGITS x 10**exponent, always with a point, the best first. digits: without zeros at its ends."""
    sign = "-" if negative else ""
    scientific = f"{sign}{digits[0]}.{digits[1:] or '0'}E{exponent - 1}"
    if exponent <= 0:
        plain = [f"{sign}0.{'0' * -exponent}{digits}", f"{sign}.{'0' * -exponent}{digits}"]
    elif exponent >= len(digits):
        plain = [f"{sign}{digits}{'0' * (exponent - len(digits))}.0", f"{sign}{digits}{'0' * (exponent - len(digits))}."]
    else:
        plain = [f"{sign}{digits[:exponent]}.{digits[exponent:]}"]
    forms = plain + [scientific] if len(plain[0]) <= len(scientific) + 2 else [scientific] + plain
    return forms + [scientific.replace(".0E", ".E")]


@lru_cache(maxsize=65536)
def column_real(value, width):
    """Text of at most width characters, and the relative change that it makes of value: 0 where all digits fit. Infinity where nothing fits."""
    if value == 0.0:
        return "0.0", 0.0
    if not isfinite(value):
        return "*" * width, float("inf")
    exact = Decimal(repr(value))
    for places in range(len(exact.as_tuple().digits), 0, -1):
        rounded = exact.quantize(Decimal(1).scaleb(exact.adjusted() - places + 1), rounding=ROUND_HALF_EVEN)
        sign, digits, exponent = rounded.normalize().as_tuple()
        digits = "".join(map(str, digits))
        for text in text_forms(digits, exponent + len(digits), sign):
            if len(text) <= width:
                return text, abs(float(text) / value - 1.0)
    return "*" * width, float("inf")


def column_texts(values, width):
    """Texts of an array of reals of any length, each of at most width characters, and the largest absolute change."""
    texts, change = [], 0.0
    for value in values.tolist():
        text = repr(value)
        if len(text) > width or "e" in text:
            text, relative = column_real(value, width)
            change = max(change, relative * abs(value)) if relative else change
        texts.append(text)
    return texts, change
