"""What the program says on standard error, as notes and as one error."""
import re

from .errors import ZurtError

_PLACE = re.compile(r"(?:deck|prescribed values) (.+?), line (\d+)(?:[,:]\s*(.*))?$", re.S)


def note_texts(lines):
    """The notes among the lines of standard error, each with the lines that go on from it."""
    return [text for kind, text in _sentences(lines) if kind == "note"]


def error_texts(lines):
    """What ended a run, as standard error has it."""
    return [text for kind, text in _sentences(lines) if kind != "note"]


def error_of(lines, status, deck=None, listing=None):
    """ZurtError of a run that did not finish: the program's words, the file and line that they name. What stopped a run by a message of the
    program stands in the listing; its notes that belong to the end come along."""
    sentences = _sentences(lines)
    errors = error_texts(lines)
    if not errors:
        reason = f"ended by signal {-status}" if status < 0 else f"status {status}"
        return ZurtError(f"the program ended without a word ({reason})", deck)
    match = _PLACE.match(errors[-1])
    if match:
        return ZurtError(match.group(3) or errors[-1], match.group(1), int(match.group(2)))
    stopped = any(kind == "stopped" for kind, _ in sentences)
    hints = [text for text in note_texts(lines) if "the run ends" in text or "working vector" in text]
    return ZurtError("\n".join([errors[-1], *hints]), listing if stopped else deck)


def _sentences(lines):
    found = []
    for line in lines:
        match = re.match(r"zurt: (note|error|stopped|interrupted): (.*)", line)
        if match:
            found.append([match.group(1), match.group(2)])
        elif found and not line.startswith("zurt:"):
            found[-1][1] += "\n" + line.strip()
    return found
