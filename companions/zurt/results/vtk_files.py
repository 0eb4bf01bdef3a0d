"""Files for ParaView: the steps of a problem (.pvd, .vtu) in full precision, and the fibres (.vtp)."""
import os
import re
import struct
import xml.etree.ElementTree
import zlib
from dataclasses import dataclass

import numpy

from ..errors import ZurtError


@dataclass
class VtuStep:
    """points: (n, 3), the nodes of the mesh first, node i at i - 1. cells: list of (shape as meshio names it, (m, nodes) rows of points). fields:
    arrays at points by name (concentration, flux ...). cell_fields: name to a list of arrays, one for each entry of cells."""
    time: float
    points: numpy.ndarray
    cells: list
    fields: dict
    cell_fields: dict


@dataclass
class Fibres:
    """kind: 0 line, 1 sphere, 2 radial. set, fibre: numbers of the deck. length: 0 for spheres. radius: of each fibre. points: list of (k, 3)."""
    kind: numpy.ndarray
    set: numpy.ndarray
    fibre: numpy.ndarray
    length: numpy.ndarray
    radius: numpy.ndarray
    points: list


def read_series(path):
    """[(time, path of the .vtu)] of a .pvd file."""
    try:
        entries = xml.etree.ElementTree.parse(path).iter("DataSet")
        return [(float(entry.get("timestep")), os.path.join(os.path.dirname(path), entry.get("file"))) for entry in entries]
    except OSError as error:
        raise ZurtError(error.strerror, path) from None
    except xml.etree.ElementTree.ParseError as error:
        raise ZurtError(f"this is no list of files for ParaView: {error}", path) from None
    except (TypeError, ValueError):
        raise ZurtError("an entry of this list lacks its time or its file", path) from None


def read_vtu(path):
    """VtuStep of a .vtu file."""
    import meshio
    if not os.path.isfile(path):
        raise ZurtError("there is no such file", path)
    try:
        mesh = meshio.vtu.read(path)
    except Exception as error:  # a spoilt file leaves that reader in many ways
        raise ZurtError(f"the file can't be read: {error}", path) from None
    time = float(numpy.ravel(mesh.field_data.get("TimeValue", 0.0))[0])
    return VtuStep(time, mesh.points, [(block.type, block.data) for block in mesh.cells], dict(mesh.point_data), dict(mesh.cell_data))


def read_fibres(path):
    """Fibres of a .vtp file, of which the program's kind alone is read: arrays compressed by zlib, as raw bytes behind the text."""
    try:
        with open(path, "rb") as file:
            text, mark, raw = file.read().partition(b'<AppendedData encoding="raw">\n_')
        arrays = _arrays(text.decode("ascii"), raw) if mark else {}
        return _fibres(arrays)
    except OSError as error:
        raise ZurtError(error.strerror, path) from None
    except (ValueError, TypeError, KeyError, IndexError, struct.error, zlib.error, UnicodeDecodeError) as error:
        raise ZurtError(f"this is no whole file of fibres: {error}", path) from None


def _arrays(text, raw):
    """{(section, name): array} of the header's arrays."""
    found = {}
    for section, body in re.findall(r"<(PointData|CellData|Points|Verts|Lines)>(.*?)</\1>", text, re.S):
        for entry in re.findall(r"<DataArray ([^>]*)/>", body):
            said = dict(re.findall(r'(\w+)="([^"]*)"', entry))
            found[section, said["Name"]] = numpy.frombuffer(_inflated(raw, int(said["offset"])), said["type"].lower())
    return found


def _inflated(raw, offset):
    """A block begins with counts: of pieces, the length of each and of the last one, and their compressed lengths."""
    pieces, = struct.unpack_from("<Q", raw, offset)
    if offset + 8 * (3 + pieces) > len(raw):
        raise ValueError("an array is cut")
    lengths = struct.unpack_from(f"<{pieces}Q", raw, offset + 24)
    at, parts = offset + 8 * (3 + pieces), []
    for length in lengths:
        parts.append(zlib.decompress(raw[at:at + length]))
        at += length
    return b"".join(parts)


def _fibres(arrays):
    places, radius = arrays["Points", "points"].reshape(-1, 3), arrays["PointData", "radius"]
    rows = []
    for section in ("Verts", "Lines"):
        nodes, ends = arrays[section, "connectivity"], arrays[section, "offsets"]
        rows += numpy.split(nodes, ends[:-1]) if len(ends) else []
    if not rows or min(len(row) for row in rows) == 0:
        raise ValueError("there are no fibres, or one without a point")
    columns = [arrays["CellData", name].copy() for name in ("kind", "set", "fibre", "length")]
    return Fibres(*columns, numpy.array([radius[row[0]] for row in rows]), [places[row] for row in rows])
