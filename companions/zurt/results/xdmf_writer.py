"""Series of steps in XDMF: all numbers in one HDF5 file, and a text that says where each stands. Used by zurt-convert.

Every step names the one mesh, so readers that know no references between grids show it, too.
"""
import os
from dataclasses import dataclass, field
from xml.sax.saxutils import escape, quoteattr

import h5py
import numpy

# Of each kind of element: its name, and its number in a list of several kinds, behind which points and lines have their count of nodes.
SHAPES = {"vertex": ("Polyvertex", 1), "line": ("Polyline", 2), "line3": ("Edge_3", 0x22), "quad": ("Quadrilateral", 5),
          "quad8": ("Quadrilateral_8", 0x25), "hexahedron": ("Hexahedron", 9), "hexahedron20": ("Hexahedron_20", 0x30)}
COUNTED = ("vertex", "line")
TYPES = {"f": "Float", "i": "Int"}


@dataclass
class XdmfSeries:
    """A series that is being written. base: its files without .xdmf and .h5. mesh: lines of the mesh and of what is the same in all steps.
    steps: lines of each step."""
    base: str
    store: h5py.File
    mesh: list = field(default_factory=list)
    steps: list = field(default_factory=list)


def begin_series(base, points, blocks, point_values, cell_values):
    """XdmfSeries of a mesh. points: (n, 3). blocks: [(kind, (m, nodes) rows of points)]. point_values, cell_values: [(name, array)] that
    hold for all steps, cells in the order of the blocks."""
    series = XdmfSeries(base, h5py.File(base + ".h5", "w"))
    series.mesh += _topology(series, blocks)
    series.mesh += ['<Geometry GeometryType="XYZ">', _stored(series, "mesh/points", points), "</Geometry>"]
    for center, values in (("Node", point_values), ("Cell", cell_values)):
        for name, array in values:
            series.mesh += _attribute(series, f"mesh/{name}", name, array, center)
    return series


def add_step(series, time, values):
    """Writes the values [(name, array)] at the points."""
    number = len(series.steps) + 1
    lines = [f'<Grid Name="step {number}" GridType="Uniform">', f'<Time Value="{float(time)!r}"/>', *series.mesh]
    for name, array in values:
        lines += _attribute(series, f"{number}/{name}", name, array, "Node")
    series.steps.append([*lines, "</Grid>"])


def end_series(series):
    """Writes the text of the steps that are there, under another name first."""
    series.store.close()
    lines = ['<?xml version="1.0"?>', '<Xdmf Version="3.0">', "<Domain>", '<Grid Name="steps" GridType="Collection" CollectionType="Temporal">']
    with open(series.base + ".xdmf.part", "w", encoding="utf-8") as file:
        file.write("\n".join(lines))
        for step in series.steps:
            file.write("\n" + "\n".join(step))
        file.write("\n</Grid>\n</Domain>\n</Xdmf>\n")
    os.replace(series.base + ".xdmf.part", series.base + ".xdmf")


def _topology(series, blocks):
    kinds = list(dict.fromkeys(kind for kind, _ in blocks))
    count = sum(len(rows) for _, rows in blocks)
    if len(kinds) == 1:
        rows = numpy.concatenate([rows for _, rows in blocks]).astype("<i4")
        nodes = f' NodesPerElement="{rows.shape[1]}"' if kinds[0] in COUNTED else ""
        head = f'<Topology TopologyType="{SHAPES[kinds[0]][0]}"{nodes} NumberOfElements="{count}">'
    else:
        rows = numpy.concatenate([_with_kind(kind, rows).ravel() for kind, rows in blocks])
        head = f'<Topology TopologyType="Mixed" NumberOfElements="{count}">'
    return [head, _stored(series, "mesh/cells", rows), "</Topology>"]


def _with_kind(kind, rows):
    """Rows of elements with the number of their kind ahead."""
    heads = [SHAPES[kind][1], rows.shape[1]] if kind in COUNTED else [SHAPES[kind][1]]
    return numpy.concatenate([numpy.tile(numpy.array(heads, "<i4"), (len(rows), 1)), rows.astype("<i4")], axis=1)


def _attribute(series, place, name, array, center):
    kind = "Scalar" if array.ndim == 1 else "Vector"
    return [f'<Attribute Name={quoteattr(name)} AttributeType="{kind}" Center="{center}">', _stored(series, place, array), "</Attribute>"]


def _stored(series, place, array):
    """Writes an array and returns the line that names it."""
    series.store.create_dataset(place, data=array, compression="gzip", compression_opts=1, shuffle=True)
    size = " ".join(map(str, array.shape))
    file = escape(os.path.basename(series.base) + ".h5")
    return (f'<DataItem Dimensions="{size}" NumberType="{TYPES[array.dtype.kind]}" Precision="{array.dtype.itemsize}" Format="HDF">'
            f"{file}:/{place}</DataItem>")
