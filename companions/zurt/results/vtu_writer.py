"""VTK's XML files of unstructured grids: arrays compressed by zlib, as raw bytes behind the text. Used by zurt-convert."""
import os
import zlib
from xml.sax.saxutils import quoteattr

import numpy

BLOCK = 1 << 20
TYPES = {"vertex": 1, "line": 3, "line3": 21, "quad": 9, "quad8": 23, "hexahedron": 12, "hexahedron20": 25}
NAMES = {"f8": "Float64", "i4": "Int32", "i8": "Int64", "u1": "UInt8"}


def compressed(array):
    """Bytes of an appended array: head (blocks, their size, size of the last one, compressed sizes) and blocks."""
    data = memoryview(numpy.ascontiguousarray(array)).cast("B")
    blocks = [zlib.compress(data[first:first + BLOCK], 1) for first in range(0, len(data), BLOCK)]
    head = [len(blocks), BLOCK, len(data) % BLOCK, *map(len, blocks)]
    return b"".join([numpy.array(head, "<u8").tobytes(), *blocks])


def compress_cells(blocks):
    """Cells of blocks (name of the shape, rows of points (m, nodes)): a list of (name, array's type, components, bytes), for all steps."""
    sizes = numpy.concatenate([numpy.full(len(rows), rows.shape[1], numpy.int64) for _, rows in blocks])
    types = numpy.concatenate([numpy.full(len(rows), TYPES[kind], numpy.uint8) for kind, rows in blocks])
    connectivity = numpy.concatenate([rows.astype("<i4").ravel() for _, rows in blocks])
    return [part("connectivity", connectivity), part("offsets", numpy.cumsum(sizes)), part("types", types)]


def part(name, array):
    """An array ready to be written: (name, type, components, bytes)."""
    array = numpy.asarray(array)
    return name, NAMES[array.dtype.str[1:]], 1 if array.ndim == 1 else array.shape[1], compressed(array)


def declared(parts, offset):
    """(lines of XML for these parts, offset behind them)."""
    lines = []
    for name, kind, components, data in parts:
        several = f' NumberOfComponents="{components}"' if components > 1 else ""
        lines.append(f'<DataArray type="{kind}" Name={quoteattr(name)}{several} format="appended" offset="{offset}"/>')
        offset += len(data)
    return lines, offset


def write_vtu(path, counts, sections, time):
    """Writes a grid under another name and renames it. counts: points and cells. sections: name of the XML element (Points, Cells,
    PointData, CellData) to its parts."""
    lines, offset = [], 0
    for section, parts in sections.items():
        declarations, offset = declared(parts, offset)
        lines += [f"<{section}>", *declarations, f"</{section}>"]
    value = repr(float(time))
    text = ['<?xml version="1.0"?>',
            '<VTKFile type="UnstructuredGrid" version="1.0" byte_order="LittleEndian" header_type="UInt64" compressor="vtkZLibDataCompressor">',
            "<UnstructuredGrid>", "<FieldData>", f'<DataArray type="Float64" Name="TimeValue" NumberOfTuples="1" format="ascii">{value}</DataArray>',
            "</FieldData>", f'<Piece NumberOfPoints="{counts[0]}" NumberOfCells="{counts[1]}">', *lines, "</Piece>", "</UnstructuredGrid>",
            '<AppendedData encoding="raw">', "_"]
    with open(path + ".part", "wb") as file:
        file.write("\n".join(text).encode())
        for parts in sections.values():
            for entry in parts:
                file.write(entry[3])
        file.write(b"\n</AppendedData>\n</VTKFile>\n")
    os.replace(path + ".part", path)


def write_pvd(path, entries):
    """Writes the list of files (time, name)."""
    rows = [f'<DataSet timestep="{float(time)!r}" part="0" file={quoteattr(name)}/>' for time, name in entries]
    text = ['<?xml version="1.0"?>', '<VTKFile type="Collection" version="0.1" byte_order="LittleEndian">', "<Collection>", *rows,
            "</Collection>", "</VTKFile>", ""]
    with open(path + ".part", "w", encoding="utf-8") as file:
        file.write("\n".join(text))
    os.replace(path + ".part", path)
