"""Which files of a folder belong to a run."""
import glob
import json
import os
import re
from dataclasses import dataclass, field

from ..errors import ZurtError

# What the door keeps of a run beside the program's files; a shell does the same by: zurt ... >console.txt 2>notes.txt
CONSOLE, NOTES, PROGRESS, RECORD = "console.txt", "notes.txt", "progress.txt", "run.json"


@dataclass
class RunFiles:
    """Paths of a run's files, None where there is none. histories, series: one for each problem of the deck. masses: direction to path."""
    folder: str
    name: str
    listing: str
    graphics: str = None
    histories: list = field(default_factory=list)
    series: list = field(default_factory=list)
    fibres: str = None
    masses: dict = field(default_factory=dict)
    messages: str = None
    console: str = None
    notes: str = None
    progress: str = None
    record: dict = field(default_factory=dict)


def find_files(run):
    """RunFiles of a folder, or of a listing where a folder holds several."""
    if os.path.isdir(run):
        listings = sorted(path for path in glob.glob(os.path.join(glob.escape(run), "*")) if _is_listing(path))
        if not listings:
            raise ZurtError("no listing (.lst) in this folder: it holds no run of zurt", run)
        if len(listings) > 1:
            names = ", ".join(os.path.basename(path) for path in listings)
            raise ZurtError(f"the folder holds several runs, name the listing of one: {names}", run)
        run = listings[0]
    elif not os.path.isfile(run):
        raise ZurtError("there is no such folder or listing", run)
    elif not _is_listing(run):
        raise ZurtError("name a run by its folder or its listing (.lst)", run)
    return _files_of(run)


def _is_listing(path):
    name = os.path.basename(path)
    return name.lower().endswith(".lst") and not re.fullmatch(r"(MESSAGES|MASS-[XYZ])\.LST", name)


def name_of_deck(deck):
    """What the program calls the files of a deck: its name up to the first dot or blank."""
    return os.path.basename(deck).split(".")[0].split(" ")[0]


def _files_of(listing):
    folder, base = os.path.split(listing)
    name = base[:-4]
    stem = os.path.join(folder, name)
    there = lambda path: path if os.path.isfile(path) else None
    files = RunFiles(folder or ".", name, listing, graphics=there(stem + ".unv") or there(stem + ".UNV"), fibres=there(stem + "-fibres.vtp"))
    files.histories = _numbered(stem + "-history.csv", stem + "-history-{}.csv")
    files.series = _numbered(stem + ".pvd", stem + "-p{}.pvd")
    files.masses = {axis: path for axis in "XYZ" if (path := there(os.path.join(folder, f"MASS-{axis}.LST")))}
    files.messages = there(os.path.join(folder, "MESSAGES.LST"))
    record = there(os.path.join(folder, RECORD))
    files.record = _read_record(record) if record else {}
    if name_of_deck(files.record.get("deck") or name) != name:
        files.record = {}  # of another run in this folder, and so is what was kept beside it
        return files
    files.console, files.notes, files.progress = (there(os.path.join(folder, each)) for each in (CONSOLE, NOTES, PROGRESS))
    return files


def _read_record(path):
    try:
        with open(path, encoding="utf-8") as file:
            record = json.load(file)
    except OSError as error:
        raise ZurtError(error.strerror, path) from None
    except ValueError as error:
        raise ZurtError(f"the record of the run can't be read: {error}", path) from None
    kinds = {"deck": str, "status": int, "seconds": (int, float), "arguments": list}
    if not isinstance(record, dict) or any(key in record and not isinstance(record[key], kind) for key, kind in kinds.items()):
        raise ZurtError("the record of the run is none of zurt.run's", path)
    return record


def _numbered(first, pattern):
    """Paths by problem, from the first; None for a problem without the file before one that has it."""
    paths = [first if os.path.isfile(first) else None]
    for number in range(2, 100):
        path = pattern.format(number)
        paths.append(path if os.path.isfile(path) else None)
    while paths and paths[-1] is None:
        paths.pop()
    return paths
