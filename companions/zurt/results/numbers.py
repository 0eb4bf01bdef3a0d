"""Numbers as the program writes them: D for the exponent, no letter before one of three digits, asterisks where a field is too narrow."""
import re

import numpy

from ..errors import ZurtError

_LONG_EXPONENT = re.compile(rb"(\d)([+-]\d{3})(?!\d)")
_STARS = re.compile(rb"\*+")


def parse_numbers(text, count=None, file=None):
    """Array of the numbers of `text` (bytes), separated by blanks and ends of lines.

    count: how many there must be, None for any. Fields of asterisks become NaN. ZurtError for anything else that is no number.
    """
    text = text.translate(_FORTRAN_EXPONENTS)
    pieces = text.split()
    try:
        values = numpy.array(pieces, dtype="S").astype(float) if pieces else numpy.zeros(0)
    except ValueError:
        values = _slowly(text, file)
    if count is not None and len(values) != count:
        raise ZurtError(f"{count} numbers are expected and {len(values)} found", file)
    return values


_FORTRAN_EXPONENTS = bytes.maketrans(b"Dd", b"Ee")


def _slowly(text, file):
    pieces = _STARS.sub(b" nan ", _LONG_EXPONENT.sub(rb"\1E\2", text)).split()
    try:
        return numpy.array(pieces, dtype="S").astype(float)
    except ValueError as error:
        raise ZurtError(f"a number is expected: {error}", file) from None


def number(text):
    """One number of a table, NaN where the field was too narrow."""
    return float(parse_numbers(text.encode(), 1)[0])
