"""ZUR-T from Python: run decks, read what they write."""
from .errors import ZurtError
from .program import find_program

__all__ = ["ZurtError", "find_program"]
