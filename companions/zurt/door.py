"""The door to the program: run a deck, read a run."""
import json
import os
import signal
import subprocess
import time
from dataclasses import dataclass, field
from functools import cached_property

from .errors import ZurtError
from .notes import error_of
from .program import find_program
from .results import console, deck_header, graphics, listing, tables, vtk_files
from .results.folder import CONSOLE, NOTES, PROGRESS, RECORD, RunFiles, find_files, name_of_deck

GRACE = 10.0  # seconds that an interrupted run has to reach its next safe place


@dataclass
class Run:
    """A run and its results, each read when it is first asked for. status: of the program, None when the folder doesn't say. seconds: of the
    clock. deck: path or None. Where a result has not been written, asking for it is a ZurtError that names the option."""
    folder: str
    files: RunFiles
    deck: str = None
    status: int = None
    seconds: float = None
    arguments: list = field(default_factory=list)

    @cached_property
    def listing(self):
        """results.listing.Listing."""
        if self.files.listing is None:
            raise ZurtError("the run has written no listing", self.folder)
        return listing.read_listing(self.files.listing)

    @cached_property
    def header(self):
        """Fields of the deck's header cards by name, and "title"; empty when neither deck nor card images are there."""
        if self.deck and os.path.isfile(self.deck):
            free = True if "--free" in self.arguments else None
            return deck_header.read_deck_header(read_lines(self.deck), self.deck, free)
        cards = self.listing.cards
        return deck_header.read_deck_header([cards[k] for k in sorted(cards)], self.files.listing) if cards else {}

    @cached_property
    def notes(self):
        """Lines of the program's notes and errors, None when they were not kept."""
        return [line.rstrip() for line in read_lines(self.files.notes) if line.strip()] if self.files.notes else None

    @cached_property
    def messages(self):
        """Lines of MESSAGES.LST that say something."""
        return tables.read_messages(self.files.messages) if self.files.messages else []

    @cached_property
    def console(self):
        """results.console.Console, None when the console was not kept."""
        return console.read_console(self.files.console) if self.files.console else None

    @cached_property
    def progress(self):
        """See results.tables.read_progress; ([], no rows) when there is no such file."""
        return tables.read_progress(self.files.progress) if self.files.progress else ([], tables.numpy.zeros(0, tables.PROGRESS))

    @cached_property
    def histories(self):
        """results.tables.History of each problem."""
        return [tables.read_history(path) if path else None for path in self.files.histories]

    @property
    def history(self):
        """Structured array of the first problem's table of balances: run.history["stored"]."""
        return _first(self.histories, self.files, "a table of balances", "history=True (--history)").values

    @cached_property
    def masses(self):
        """Direction (X, Y, Z) to the results.tables.MassTable of each problem."""
        return {axis: tables.read_masses(path) for axis, path in self.files.masses.items()}

    @cached_property
    def graphics(self):
        """results.graphics.GraphicsProblem of each problem; graphics_step reads a step of them."""
        if not self.files.graphics:
            raise ZurtError("the run has no graphics file (IGRAF)", self.folder)
        return graphics.read_graphics(self.files.graphics)

    def graphics_step(self, step=-1, problem=0):
        """results.graphics.GraphicsStep: a step by its place in the file, the last one without it."""
        found = _one_of(self.graphics, problem, "problem", self.files.graphics)
        return graphics.read_step(self.files.graphics, found, _one_of(found.places, step, "written step", self.files.graphics))

    @property
    def series(self):
        """[(time, path)] of the first problem's files for ParaView."""
        return vtk_files.read_series(_first(self.files.series, self.files, "files for ParaView", "vtu=True (--vtu)"))

    def step(self, step=-1, problem=0):
        """results.vtk_files.VtuStep: a step by its place in the .pvd file, the last one without it."""
        if problem >= len(self.files.series) or not self.files.series[problem]:
            raise ZurtError("the run has no files for ParaView: run it with vtu=True (--vtu)", self.folder)
        path = self.files.series[problem]
        return vtk_files.read_vtu(_one_of(vtk_files.read_series(path), step, "written step", path)[1])

    @cached_property
    def fibres(self):
        """results.vtk_files.Fibres, None without."""
        return vtk_files.read_fibres(self.files.fibres) if self.files.fibres else None


def run(deck, folder=None, *, solver=None, tolerance=None, threads=1, history=True, probes=(), vtu=False, prescribed=None, wall_cells=None,
        words=None, free=False, force=False, timeout=None, check=True):
    """Runs a deck, a path or the text of one, and returns the Run. Options are those of `zurt --help`.

    folder: of all files of the run, made if missing; without it one named as the deck. timeout: seconds, after which the run is ended at a
    safe place. check: a run that doesn't finish is a ZurtError with the program's words, file and line, and the Run as its `run`; without
    it look at Run.status."""
    deck, folder, text = _deck_and_folder(deck, folder)
    arguments = ["--output", folder]
    for name, value in (("--solver", solver), ("--tolerance", tolerance), ("--prescribed", prescribed), ("--wall-cells", wall_cells),
                        ("--words", words)):
        arguments += [name, str(value)] if value is not None else []
    arguments += ["--threads", str(threads)] if threads != 1 else []
    arguments += ["--probe", ",".join(str(int(node)) for node in probes)] if len(probes) else []
    arguments += [name for name, wanted in (("--history", history or len(probes)), ("--vtu", vtu), ("--free", free), ("--force", force)) if wanted]
    try:
        found = _run_program(deck, folder, text, arguments, timeout)
    except OSError as error:
        raise ZurtError(error.strerror or str(error), error.filename) from None
    if found.status != 0 and check:
        raise _failure(found, timeout)
    return found


def read(folder):
    """The Run of a folder, or of a listing where a folder holds several; of the program's own making or the door's."""
    files = find_files(os.fspath(folder))
    record = files.record
    return Run(files.folder, files, record.get("deck"), record.get("status"), record.get("seconds"), record.get("arguments", []))


def read_lines(path):
    """Lines of a deck, or of what the program has said."""
    try:
        with open(path, encoding="latin-1") as file:
            return file.readlines()
    except OSError as error:
        raise ZurtError(error.strerror, path) from None


def _deck_and_folder(deck, folder):
    """(path of the deck, folder, text that the deck is written with or None)."""
    deck = os.fspath(deck)
    if "\n" in deck:
        if folder is None:
            raise ZurtError("a deck that is given as text takes a folder")
        return os.path.join(folder, "zurt.dat"), os.fspath(folder), deck
    if not os.path.isfile(deck):
        raise ZurtError("there is no such deck", deck)
    return deck, os.fspath(folder) if folder is not None else name_of_deck(deck), None


def _run_program(deck, folder, text, arguments, timeout):
    program, begin = find_program(), time.monotonic()
    os.makedirs(folder, exist_ok=True)
    kept = {name: os.path.join(folder, name) for name in (CONSOLE, NOTES, PROGRESS, RECORD)}
    earlier = _files_or_none(folder, deck)
    if (earlier.listing or os.path.isfile(kept[RECORD])) and "--force" not in arguments:
        raise ZurtError("the folder holds a run: force=True overwrites it, another folder keeps it", folder)
    for path in [kept[PROGRESS], earlier.fibres, *earlier.histories, *earlier.series]:
        if path and os.path.exists(path):
            os.remove(path)  # the program adds to the first; the others would be taken for this run's, which may write none
    if text is not None:
        _write_deck(deck, text)
    command = [program, *arguments, "--progress", kept[PROGRESS], deck]
    with open(kept[CONSOLE], "wb") as output, open(kept[NOTES], "wb") as errors:
        child = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=errors)
        status = _wait(child, timeout)
    seconds = round(time.monotonic() - begin, 3)
    record = {"deck": os.path.abspath(deck), "status": status, "seconds": seconds, "arguments": arguments}
    with open(kept[RECORD], "w", encoding="utf-8") as file:
        json.dump(record, file, indent=1)
    return Run(folder, _files_or_none(folder, deck), record["deck"], status, seconds, arguments)


def _write_deck(path, text):
    try:
        with open(path, "w", encoding="latin-1") as file:
            file.write(text)
    except UnicodeEncodeError as error:
        line = text.count("\n", 0, error.start) + 1
        raise ZurtError(f"the sign {text[error.start]} is none of those that a deck can have (Latin-1)", path, line) from None


def _wait(child, timeout):
    try:
        return child.wait(timeout)
    except subprocess.TimeoutExpired:
        child.send_signal(signal.SIGTERM)
        try:
            return child.wait(GRACE)
        except subprocess.TimeoutExpired:
            child.kill()
            return child.wait()
    except BaseException:
        child.terminate()
        child.wait()
        raise


def _files_or_none(folder, deck):
    base = name_of_deck(deck)
    for extension in (".lst", ".LST"):
        if os.path.isfile(os.path.join(folder, base + extension)):
            return find_files(os.path.join(folder, base + extension))
    return RunFiles(folder, base, None, notes=os.path.join(folder, NOTES))


def _failure(found, timeout):
    if found.status in (3, -signal.SIGKILL, -signal.SIGTERM) and timeout is not None and found.seconds >= timeout:
        error = ZurtError(f"the run took more than {timeout:g} s and was ended; what was written is whole up to its last step", found.deck)
    else:
        error = error_of(found.notes or [], found.status, found.deck, found.files.listing)
    error.run = found
    return error


def _one_of(items, place, what, path):
    """An item of a list by its place, from zero or from the end."""
    if not -len(items) <= place < len(items):
        raise ZurtError(f"there is no {what} {place}: there are {len(items)}, from 0 on" if items else f"there is no {what}", path)
    return items[place]


def _first(items, files, what, option):
    if not items or items[0] is None:
        raise ZurtError(f"the run has no {what.removeprefix('a ')}: run it with {option}", files.folder)
    return items[0]
