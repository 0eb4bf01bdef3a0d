"""ZUR-T from Python: run decks, read what they write, study parameters."""
from .door import Run, read, run
from .errors import ZurtError
from .program import find_program
from .study import Study, study
from .version import VERSION as __version__

__all__ = ["Run", "Study", "ZurtError", "find_program", "read", "run", "study"]
