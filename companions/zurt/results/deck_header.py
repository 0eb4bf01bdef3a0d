"""The header cards of a deck's first problem: title, format, basic data, control. Read from the deck or from the listing's card images."""
import re

from ..errors import ZurtError

FORMAT = [("INDFOR", 5), ("NDS", 5), ("NANOCH", 5), ("SolverSelector", 5)]
BASIC = [("NP", 10), ("NGET", 5), ("NMATT", 5), ("NSTAC", 5), ("NPER", 5), ("NPRINT", 5), ("IANIZ", 5), ("NULAZ", 5), ("ITOR", 5),
         ("IGRAF", 5), ("IDIRECTD", 5)]
CONTROL = [("INTEB", 5), ("INDSC", 5), ("IFORM", 5), ("MAXIT", 5), ("EPSTA", 10), ("EPSTR", 10), ("NJRAP", 5), ("IPASSPRINT", 5)]
DEVICE = [("ELFIB", 10), ("DFIB", 10), ("WFIB", 10), ("ELPCL", 10), ("AMOLAR", 10), ("DMOLECULE", 10)]
DIVISIONS = [("NXFIB", 5), ("NYFIB", 5), ("NZFIB", 5), ("NXPCL", 5), ("INDDEGR", 5)]
EXECUTION = [("IREST", 5)]
HOMOGENIZATION = [("NSETS", 5), ("IEHM", 5), ("NFIT", 5), ("NFSTEP", 5), ("NFITMAX", 5), ("FITERR", 10), ("INDFITX", 5), ("INDFITY", 5),
                  ("INDFITZ", 5), ("INDDEG", 5), ("IHEQ", 5), ("IDCC", 5), ("IDIAM", 5), ("IDCSF", 5)]
REALS = {"EPSTA": 2, "EPSTR": 2, "FITERR": 6, **{name: 4 for name, _ in DEVICE}}


def read_deck_header(lines, file=None, free=None):
    """{"title": text, "NP": 84 ...} of the deck's lines, and under "lines" the numbers from zero of the lines where cards stand, by the name
    of their first field. free: whether it is run by --free; without it a deck that can't be read by columns is taken for one. ZurtError when
    a card is missing or a field is no number."""
    if free is None:
        try:
            return read_deck_header(lines, file, False)
        except ZurtError:
            try:
                return read_deck_header(lines, file, True)
            except ZurtError:
                pass
            raise
    header, cards, at = _first_cards(lines, file, free)
    fixed = header["INDFOR"] == 2
    at = _take(header, cards, at, BASIC, fixed, file)
    _take(header, cards, at, CONTROL, fixed, file)
    return header


def read_homogenization(lines, file=None):
    """The same with the fields of the homogenization card, of a deck in fixed format: behind steps and nodes."""
    header, cards, at = _first_cards(lines, file, False)
    for fields in (BASIC, CONTROL, EXECUTION):
        at = _take(header, cards, at, fields, True, file)
    at += 2 * -(-header["NPER"] // 9) if header["NSTAC"] != 0 else 0
    covered, opened = 0, None  # the node whose card carries a step, and the step
    while covered < header["NP"] and at < len(cards):
        card, line = cards[at][1], cards[at][0] + 1
        number, step = (_value(name, text.replace(" ", ""), True, file, line) for name, text in (("N", card[:10]), ("K", card[80:85])))
        covered += 1 + (max(abs(number - opened[0]) // opened[1] - 1, 0) if opened else 0)
        opened, at = (number, step) if step > 0 else None, at + 1
    _take(header, cards, at, HOMOGENIZATION, True, file)
    return header


def _first_cards(lines, file, free):
    """(title, format and device cards, all cards with their lines, place of the card behind them)."""
    cards = [(k, line.rstrip("\r\n")) for k, line in enumerate(lines) if not re.match(r"C[ *-]|C$", line.rstrip("\r\n"))]
    header, at = {"title": "", "lines": {}}, 1
    if cards:
        header["title"] = cards[0][1][:80].strip()
    at = _take(header, cards, at, FORMAT, False, file)
    fixed = header["INDFOR"] == 2
    if header["NDS"] != 0 and header["NANOCH"] > 0:
        at = _take(header, cards, at, DEVICE, fixed or not free, file)
        at = _take(header, cards, at, DIVISIONS, fixed or not free, file)
        at += header["INDDEGR"] == 1
    return header, cards, at


def with_field(lines, header, fields, name, value):
    """Lines of a deck in fixed format with another whole number in a field of the card of these fields."""
    at, begin = header["lines"][fields[0][0]], 0
    for field, width in fields:
        if field == name:
            break
        begin += width
    card = lines[at].rstrip("\r\n")
    return [*lines[:at], card[:begin].ljust(begin) + f"{value:{width}d}" + card[begin + width:] + "\n", *lines[at + 1:]]


def _take(header, cards, at, fields, fixed, file):
    if at >= len(cards):
        raise ZurtError(f"the deck ends before the card of {fields[0][0]}", file, len(cards))
    header["lines"][fields[0][0]] = cards[at][0]
    if fixed:
        texts, at = _columns(cards[at][1], fields), at + 1
    else:
        texts, at = _tokens(cards, at, len(fields))
    for (name, _), text in zip(fields, texts):
        header[name] = _value(name, text, fixed, file, cards[at - 1][0] + 1)
    return at


def _columns(card, fields):
    texts, begin = [], 0
    for _, width in fields:
        texts.append(card[begin:begin + width].replace(" ", ""))
        begin += width
    return texts


def _tokens(cards, at, count):
    texts = []
    while len(texts) < count and at < len(cards):
        for word in cards[at][1].replace(",", " ").split():
            if word == "/":
                texts += ["0"] * (count - len(texts))
                break
            repeat, star, value = word.partition("*")
            texts += [value] * int(repeat) if star and repeat.isdigit() else [word]
        at += 1
    return (texts + ["0"] * count)[:count], at


def _value(name, text, fixed, file, line):
    try:
        if name not in REALS:
            return int(text or 0)
        value = float((text or "0").upper().replace("D", "E"))
        return value / 10 ** REALS[name] if fixed and text and not re.search(r"[.EeDd]", text) else value
    except ValueError:
        raise ZurtError(f"field {name}: a number is expected, not {text!r}", file, line) from None
