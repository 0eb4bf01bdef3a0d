"""The tables of docs/jobs.md, from those of the job's keys: python3 -m zurt.deck.reference prints them."""
import sys

from .job_keys import REQUIRED
from .keys_model import DERIVED, TABLES
from .quantities import KINDS, unit_of

TYPE_NAMES = {"text": "text", "flag": "true or false", "integer": "integer", "integers": "integer or list", "names": "text or list", "point": "three lengths",
              "points": "list of points", "nodes": "list of numbers"}


def type_text(key):
    """What a key takes."""
    kind, _, detail = key.type.removesuffix("+").partition(":")
    if kind in TYPE_NAMES:
        low, _, high = detail.partition("..")
        return TYPE_NAMES[kind] + (f", {low} to {high}" if high else f", {low} and above" if low else "")
    if kind == "choice":
        return ", ".join(f"`{entry.split('=')[0]}`" if entry.split("=")[0] in ("true", "false") else f"`\"{entry.split('=')[0]}\"`"
                         for entry in detail.split(","))
    if kind == "switches":
        return "list of " + ", ".join(f"`\"{name}\"`" for name in detail.split(","))
    if kind in ("curve", "pairs"):
        argument, value = detail.split(">")
        return (f"{value}, or table: {argument}, {value}" if kind == "curve" else f"table: {argument}, {value}")
    return {"quantity": detail, "list": f"list: {detail}", "matrix": f"rows: {detail}"}[kind]


def default_text(key):
    """What stands where the key is missing."""
    if key.default == REQUIRED:
        return "**must be given**"
    if key.default is None or key.default == []:
        return ""
    if isinstance(key.default, bool):
        return str(key.default).lower()
    if isinstance(key.default, list):
        return "[" + ", ".join(f"{value:g}" for value in key.default) + "]"
    return f"`{key.default}`" if isinstance(key.default, str) else f"{key.default:g}"


def field_text(key):
    """The card fields that a key makes, each once."""
    names = []
    for entry in key.fields:
        field, card = entry.split("@")
        text = f"`{field}`" if field not in ("VALUE", "ARGUMENT", "N", "P", "TIME", "F", "V", "D") else f"`{field}` ({card})"
        if text not in names:
            names.append(text)
    return ", ".join(names)


def table_lines(table):
    """One table of the reference."""
    name = f"[[{table.path}]]" if table.many else f"[{table.path}]" if table.path else "Top of the file"
    lines = [f"### {f'`{name}`' if table.path else name}", "", table.text, ""]
    if table.keys:
        lines += ["| Key | Takes | Default | Card field | Meaning |", "|---|---|---|---|---|"]
    for key in table.keys.values():
        lines.append(f"| `{key.name}` | {type_text(key)} | {default_text(key)} | {field_text(key)} | {key.text} |")
    return lines + [""]


def reference_text():
    """All tables, kinds of quantity, and the fields that no key makes."""
    lines = []
    for table in TABLES.values():
        lines += table_lines(table)
    lines += ["### Kinds of quantity", "", "| Kind | Unit |", "|---|---|"]
    for kind, powers in KINDS.items():
        if any(powers[:3]) or kind == "capacity":
            lines.append(f"| {kind} | {unit_of(kind)}{' x capacity' if powers[3] and kind != 'capacity' else ''} |")
    lines += ["", "### Fields without a key", "", "They follow from the mesh and from other keys.", "", "| Card | Fields |", "|---|---|"]
    for card, fields in DERIVED.items():
        if fields:
            lines.append(f"| {card} | {'; '.join(f'`{name}`: {how}' for name, how in fields.items())} |")
    return "\n".join(lines) + "\n"


if __name__ == "__main__":
    sys.stdout.write(reference_text())
