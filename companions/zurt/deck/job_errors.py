"""Errors of a job file: they name key and line."""
from difflib import get_close_matches

from ..errors import ZurtError
from .toml_lines import nearest_line


def place_text(place):
    """A place as a user would write it: group[2].gauss, arrays counted from 1."""
    text = ""
    for part in place:
        text += f"[{part + 1}]" if isinstance(part, int) else ("." if text else "") + part
    return text


def job_error(job, place, message):
    """The error of a key or table. place: names, and numbers from zero."""
    name = place_text(place)
    return ZurtError(f"{name}: {message}" if name else message, job.path, nearest_line(job.lines, place))


def suggest(name, known):
    """What might have been meant: a text for the end of a message."""
    near = get_close_matches(str(name), list(known), 2, 0.6)
    return f"; did you mean {' or '.join(near)}?" if near else f"; there are {', '.join(sorted(known))}" if known else ""
