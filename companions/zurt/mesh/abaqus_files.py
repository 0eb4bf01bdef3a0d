"""Decks of Abaqus and CalculiX (.inp): nodes, elements, sets and surfaces. Everything else of such a deck is passed over."""
import gzip
import os
import re
import warnings
import zlib

import numpy

from ..errors import ZurtError
from .middles import cells_of_nodes
from .sides import sides_of_cells
from .source import SourceMesh, cell_starts

# Names of element types by their digits: continuum in space (C3D, DC3D, F3D), in the plane and axisymmetric, shells, trusses and beams.
TYPES = (
    (re.compile(r"^(?:D?C|DCC|F|AC|Q)3D(4|10|6|15|5|13|8|20|21|27)[A-Z]*$"),
     {4: "tetra", 10: "tetra", 6: "wedge", 15: "wedge", 5: "pyramid", 13: "pyramid", 8: "hexahedron", 20: "hexahedron",
      21: "hexahedron", 27: "hexahedron"}),
    (re.compile(r"^(?:CPS|CPE|CPEG|CAX|CGAX|DC2D|DCC2D|DCAX|DCCAX|AC2D|ACAX|S|STRI|M3D|DS|R3D|SFM3D)(3|6|4|8|9)[A-Z0-9]*$"),
     {3: "triangle", 6: "triangle", 4: "quad", 8: "quad", 9: "quad"}),
    (re.compile(r"^(?:DC1D|T2D|T3D|B2|B3|DCC1D|R2D)(1|2|3)[A-Z]*$"), {1: "line", 2: "line", 3: "line"}),
)
BLANK_FIELD = re.compile(r",\s*,|^\s*,")
LINES_OF_BEAMS = {"B21": 2, "B22": 3, "B31": 2, "B32": 3, "B33": 2}
# S1 to S6 as numbers of faces (edges in the plane) of families.py.
SIDES = {"hexahedron": (4, 5, 2, 1, 3, 0), "tetra": (0, 1, 2, 3), "wedge": (0, 1, 2, 3, 4), "pyramid": (0, 1, 2, 3, 4),
         "quad": (0, 1, 2, 3), "triangle": (0, 1, 2)}


def read_abaqus(path):
    """The file's mesh as a SourceMesh: element sets are groups, node sets node sets, surfaces groups of faces. May be gzipped."""
    nodes, owners, elements, sets, surfaces = [], [], [], {"NSET": {}, "ELSET": {}}, {}
    passed_over, part, place = {}, 0, ""
    for name, options, lines, line in _cards(path):
        if name == "NODE" and place != "ASSEMBLY":  # there they are reference points
            _take_nodes(path, line, lines, options, nodes, sets)
            owners.append(numpy.full(len(nodes[-1]), part))
        elif name == "ELEMENT":
            found = _take_elements(path, line, lines, options, sets)
            if found is None:
                passed_over[options.get("TYPE", "")] = passed_over.get(options.get("TYPE", ""), 0) + 1
            elif len(found[1]):
                elements.append(found)
        elif name in ("NSET", "ELSET"):
            _take_set(path, line, lines, options, name, sets)
        elif name == "SURFACE" and options.get("TYPE", "ELEMENT").upper() == "ELEMENT":
            surfaces[options.get("NAME", "surface")] = lines
        elif name == "INSTANCE" and any(row.strip() for row in lines):
            raise ZurtError("an instance that is moved or turned: write the model without parts and instances (flat)", path, line)
        if name in ("PART", "ASSEMBLY", "INSTANCE", "END PART", "END ASSEMBLY", "END INSTANCE"):
            part, place = part + 1, "ASSEMBLY" if name == "END INSTANCE" else name
    kinds = ", ".join(sorted(passed_over))
    if not sum(map(len, nodes)) or not elements:
        raise ZurtError("there are no solids, elements of the plane, shells, trusses or beams in this file"
                        + (f"; its elements are of the types {kinds}" if kinds else ": no *NODE and *ELEMENT cards"), path)
    _check_parts(path, numpy.concatenate(nodes)[:, 0], numpy.concatenate(owners))
    mesh = _mesh_of(path, nodes, elements, sets, surfaces)
    if kinds:
        mesh.notes.append(f"elements of the types {kinds} were passed over: springs, masses, contacts and the like make no elements here")
    return mesh


def _check_parts(path, numbers, owners):
    """Refuses nodes of several parts with the same numbers. numbers, owners: (k,) of all cards of nodes."""
    if (owners == owners[0]).all():
        return
    pairs = numpy.unique(numpy.stack([numbers, owners], axis=1), axis=0)[:, 0]
    twice = numpy.flatnonzero(pairs[1:] == pairs[:-1])
    if len(twice):
        raise ZurtError(f"{len(twice)} numbers of nodes stand in several parts, the first is {pairs[twice[0]]:.0f}: write the model without parts "
                        "and instances (flat)", path)


def _lines_of(path):
    try:
        with (gzip.open(path, "rt", errors="replace") if path.lower().endswith(".gz") else open(path, errors="replace")) as file:
            return file.read().split("\n")
    except (OSError, EOFError, zlib.error) as error:
        raise ZurtError(f"can't be read: {getattr(error, 'strerror', None) or error}", path)


def _keyword(row):
    """(keyword, options) of a line that begins with a star."""
    parts = [part.strip() for part in row.strip()[1:].split(",")]
    options = dict([half.strip() for half in (part + "=").split("=")[:2]] for part in parts[1:] if part)
    return parts[0].upper(), {key.upper(): value for key, value in options.items()}


def _cards(path, depth=0, data=None):
    """[(keyword, options, data lines, line number)] with included files in their places. data: lines of the card that an included file goes on
    with."""
    found, data, text = [], [] if data is None else data, _lines_of(path)
    for number, row in enumerate(text, start=1):
        if row.lstrip().startswith("**"):
            continue
        if not row.lstrip().startswith("*"):
            data.append(row)
            continue
        if row.rstrip().endswith(",") and number < len(text) and "=" in text[number]:  # goes on in the next line
            row, text[number] = row.rstrip() + text[number], "**"
        keyword, options = _keyword(row)
        other = os.path.join(os.path.dirname(path), options["INPUT"]) if options.get("INPUT") else None
        if keyword == "INCLUDE":
            if other is None or depth > 9:
                raise ZurtError("*INCLUDE without a file, or files that include one another", path, number)
            found += _cards(other, depth + 1, data)
            data = found[-1][2] if found else data
            continue
        data = _lines_of(other) if other and keyword in ("NODE", "ELEMENT", "NSET", "ELSET") else []
        found.append((keyword, options, data, number))
    return found


def _numbers(path, line, lines):
    """All numbers of data lines as one array of floats; what is left out is 0."""
    text = ",".join(row.strip().rstrip(",") for row in lines if row.strip())
    if not text:
        return numpy.empty(0)
    with warnings.catch_warnings():
        warnings.simplefilter("error", DeprecationWarning)  # what is no number makes one
        try:
            values = numpy.fromstring(text, sep=",")
        except (DeprecationWarning, ValueError):
            values = ()
    if len(values) == text.count(",") + 1 and not BLANK_FIELD.search(text):  # which numpy takes for -1
        return values
    try:
        return numpy.array([float(word.upper().replace("D", "E")) if word.strip() else 0.0 for word in text.split(",")])
    except ValueError as error:
        raise ZurtError(f"a number is expected behind this card: {error}", path, line)


def _take_nodes(path, line, lines, options, nodes, sets):
    """Adds (k, 4) numbers and coordinates; a coordinate that is left out is 0."""
    rows = [row for row in lines if row.strip()]
    table = _numbers(path, line, rows)
    width = rows[0].strip().rstrip(",").count(",") + 1 if rows else 4
    if len(table) != len(rows) * width or any(row.strip().rstrip(",").count(",") + 1 != width for row in rows):
        found = [_numbers(path, line, [row])[:4] for row in rows]
        table, width = numpy.concatenate([numpy.pad(row, (0, 4 - len(row))) for row in found]), 4
    table = table.reshape(len(rows), width)[:, :4]
    nodes.append(numpy.pad(table, ((0, 0), (0, 4 - table.shape[1]))))
    if "NSET" in options:
        _members(sets["NSET"], options["NSET"]).extend(table[:, 0].astype(numpy.int64).tolist())


def _take_elements(path, line, lines, options, sets):
    """(family, (m, 1 + nodes) numbers, line), or None for springs, masses, contacts and the like."""
    kind = options.get("TYPE", "").upper()
    family, count = None, 0
    for pattern, families in TYPES:
        match = pattern.match(kind)
        if match:
            count = LINES_OF_BEAMS.get(kind[:3], int(match.group(1)))
            family = families[int(match.group(1))]
            if kind == "STRI65":
                family, count = "triangle", 6
            break
    if family is None:
        return None
    values = _numbers(path, line, lines).astype(numpy.int64)
    if len(values) % (count + 1):
        raise ZurtError(f"elements of the type {kind} have a number and {count} nodes, but {len(values)} numbers stand here", path, line)
    table = values.reshape(-1, count + 1)
    if "ELSET" in options:
        _members(sets["ELSET"], options["ELSET"]).extend(table[:, 0].tolist())
    return family, table, line


def _members(sets, name):
    """The list of a set, whose name may be written in capitals elsewhere."""
    known = {key.upper(): key for key in sets}
    return sets.setdefault(known.get(name.upper(), name), [])


def _take_set(path, line, lines, options, kind, sets):
    name = options.get(kind)
    if not name:
        raise ZurtError(f"*{kind} without the name of its set", path, line)
    members = _members(sets[kind], name)
    known = {key.upper(): key for key in sets[kind]}
    for row in lines:
        words = [word.strip() for word in row.split(",") if word.strip()]
        if "GENERATE" in options and words:
            if not 2 <= len(words) <= 3 or not all(word.isdigit() for word in words) or words[2:] == ["0"]:
                raise ZurtError(f'first, last and step of a set are expected, not "{row.strip()}"', path, line)
            first, last, step = ([int(word) for word in words] + [1])[:3]
            members.extend(range(first, last + 1, step))
            continue
        for word in words:
            if word.lstrip("-").isdigit():
                members.append(int(word))
            elif word.upper() in known:
                members.extend(list(sets[kind][known[word.upper()]]))
            else:
                raise ZurtError(f'there is no set "{word}" ahead of this card', path, line)


def _rows_of(numbers, wanted):
    """Places in the sorted list of (numbers, places); -1 where a number does not exist."""
    ordered, places = numbers
    wanted = numpy.asarray(wanted, dtype=numpy.int64)
    found = numpy.minimum(numpy.searchsorted(ordered, wanted), len(ordered) - 1)
    return numpy.where(ordered[found] == wanted, places[found], -1)


def _sorted(numbers):
    order = numpy.argsort(numbers, kind="stable")
    return numbers[order], order


def _mesh_of(path, nodes, elements, sets, surfaces):
    table = numpy.concatenate(nodes)
    numbers, last = numpy.unique(table[::-1, 0].astype(numpy.int64), return_index=True)  # the last card of a node counts
    points = table[::-1][last, 1:]
    node_rows = numbers, numpy.arange(len(numbers))
    mesh = SourceMesh(path, points)
    tables = {}
    for family, table, line in elements:
        rows = _rows_of(node_rows, table[:, 1:])
        if (rows < 0).any():
            element, place = numpy.argwhere(rows < 0)[0]
            raise ZurtError(f"element {table[element, 0]} has the node {table[element, place + 1]}, which does not exist", path, line)
        tables.setdefault((family, table.shape[1]), []).append((table[:, 0], rows))
    for (family, _), found in tables.items():
        numbers, rows = (numpy.concatenate(columns) for columns in zip(*found))
        mesh.cells.append(cells_of_nodes(family, points, rows, numbers, path))
    element_rows = _sorted(numpy.concatenate([cells.number for cells in mesh.cells]))
    for name, members in sets["NSET"].items():
        rows = _rows_of(node_rows, members)
        mesh.node_sets[name] = numpy.unique(rows[rows >= 0])
    for name, members in sets["ELSET"].items():
        rows = _rows_of(element_rows, members)
        mesh.groups[name] = numpy.unique(rows[rows >= 0])
    _take_surfaces(mesh, surfaces, element_rows, sets["ELSET"])
    return mesh


def _take_surfaces(mesh, surfaces, element_rows, element_sets):
    """Surfaces as groups of faces. A line names an element or a set, and a side S1 ...; lines with other sides are noted."""
    starts = cell_starts(mesh.cells)
    solids = list(mesh.cells)
    known = {key.upper(): key for key in element_sets}
    for name, lines in surfaces.items():
        count, found = sum(len(cells) for cells in mesh.cells), []
        for row in lines:
            words = [word.strip().upper() for word in row.split(",") if word.strip()]
            if len(words) != 2 or not re.match(r"^S[1-6]$", words[1]):
                if words:
                    mesh.notes.append(f'the surface {name} has a line "{row.strip()}", which is passed over: sides S1 to S6 are read')
                continue
            members = [int(words[0])] if words[0].isdigit() else element_sets.get(known.get(words[0]), [])
            rows = _rows_of(element_rows, members)
            for place, cells in enumerate(solids):
                own = rows[(rows >= starts[place]) & (rows < starts[place + 1])] - starts[place]
                side = int(words[1][1]) - 1
                if len(own) and side < len(SIDES.get(cells.family, ())):
                    found += sides_of_cells(cells, own, numpy.full(len(own), SIDES[cells.family][side]))
        mesh.cells += found
        if found:
            mesh.groups[name if name not in mesh.groups else name + "-surface"] = numpy.arange(
                count, count + sum(len(cells) for cells in found))
