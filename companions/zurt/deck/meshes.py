"""Meshes of a job's problems, read as the job says."""
import os
import re

from ..errors import ZurtError
from ..mesh.numbering import renumber_for_band
from ..mesh.reading import MeshOptions, read_mesh
from .job_errors import job_error
from .problem_model import values_of


def named_blocks(section):
    """Groups of the mesh that the element groups of a problem name, each with the place of its key."""
    named = {}
    for group in section.arrays["group"]:
        for part in [group, *group.arrays["part"]]:
            for name in part.values["mesh"] or []:
                named.setdefault(name, part.place + ("mesh",))
    return named


def mesh_options(job, section):
    """MeshOptions of a problem."""
    values = values_of(section, "mesh")
    options = MeshOptions(groups=list(named_blocks(section)) or None)
    for key in ("scale", "axes", "split", "corners_only", "centres", "labels"):
        if values:
            setattr(options, key, values[key])
    if values and values["merge"] is not None:
        options.merge = values["merge"] / job.length_factor
    if values and values["move"] is not None:
        options.move = tuple(values["move"] / job.length_factor)
    return options


def mesh_path(job, section, given):
    """The mesh file of a problem: that of the command line, else of the job."""
    file = values_of(section, "mesh").get("file")
    if file is None and given is None:
        raise job_error(job, section.place, "there is no mesh: name it on the command line, or by file in [mesh]")
    return given if file is None else os.path.join(os.path.dirname(job.path), file)


def read_job_mesh(job, section, given):
    """(path, Mesh) of a problem; faults of named groups and of options name the key."""
    path, named = mesh_path(job, section, given), named_blocks(section)
    try:
        return path, read_mesh(path, mesh_options(job, section))
    except ZurtError as error:
        about = re.search('"([^"]+)"', error.message)
        if about and about.group(1) in named:
            raise job_error(job, named[about.group(1)], f"{error.message} ({path})") from None
        if error.file is None:
            raise job_error(job, section.place + ("mesh", error.message.split()[0]), error.message) from None
        raise


def numbered_mesh(job, section, mesh):
    """The mesh in the numbering of the deck, and (words before, after) of the skyline store where nodes were renumbered."""
    wanted = job.settings.values["renumber"]
    solver = (values_of(section, "model") or {"solver": "skyline"})["solver"]
    if wanted == "false" or (wanted == "auto" and solver != "skyline"):
        return mesh, None
    mesh, before, after = renumber_for_band(mesh)
    return mesh, (before, after)
