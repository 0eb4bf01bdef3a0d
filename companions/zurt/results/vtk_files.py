"""Files for ParaView: the steps of a problem (.pvd, .vtu) in full precision, and the fibres (.vtp)."""
import os
import xml.etree.ElementTree
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
        entries = list(xml.etree.ElementTree.parse(path).iter("DataSet"))
    except OSError as error:
        raise ZurtError(error.strerror, path) from None
    except xml.etree.ElementTree.ParseError as error:
        raise ZurtError(f"this is no list of files for ParaView: {error}", path) from None
    return [(float(entry.get("timestep")), os.path.join(os.path.dirname(path), entry.get("file"))) for entry in entries]


def read_vtu(path):
    """VtuStep of a .vtu file."""
    import meshio
    if not os.path.isfile(path):
        raise ZurtError("there is no such file", path)
    try:
        mesh = meshio.vtu.read(path)
    except (meshio.ReadError, ValueError, KeyError, IndexError, xml.etree.ElementTree.ParseError) as error:
        raise ZurtError(f"the file can't be read: {error}", path) from None
    time = float(numpy.ravel(mesh.field_data.get("TimeValue", 0.0))[0])
    return VtuStep(time, mesh.points, [(block.type, block.data) for block in mesh.cells], dict(mesh.point_data), dict(mesh.cell_data))


def read_fibres(path):
    """Fibres of a .vtp file."""
    from vtkmodules.util.numpy_support import vtk_to_numpy
    from vtkmodules.vtkIOXML import vtkXMLPolyDataReader
    if not os.path.isfile(path):
        raise ZurtError("there is no such file", path)
    reader = vtkXMLPolyDataReader()
    reader.SetFileName(path)
    reader.Update()
    data = reader.GetOutput()
    if data.GetNumberOfPoints() == 0:
        raise ZurtError("no fibres in this file", path)
    points, radius = vtk_to_numpy(data.GetPoints().GetData()), vtk_to_numpy(data.GetPointData().GetArray("radius"))
    rows = [[cell.GetPointId(k) for k in range(cell.GetNumberOfPoints())] for cell in map(data.GetCell, range(data.GetNumberOfCells()))]
    columns = [vtk_to_numpy(data.GetCellData().GetArray(name)).copy() for name in ("kind", "set", "fibre", "length")]
    return Fibres(*columns, numpy.array([radius[row[0]] for row in rows]), [points[row].copy() for row in rows])
