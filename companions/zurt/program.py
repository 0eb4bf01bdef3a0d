"""Where the program is."""
import os
import shutil

from .errors import ZurtError

TREE = os.path.abspath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))


def find_program():
    """Path of zurt: that of the variable ZURT, else of the source tree that this package lies in, else of the search path."""
    named = os.environ.get("ZURT")
    built = os.path.join(TREE, "build", "release", "zurt")
    for path in (named, built, shutil.which("zurt")):
        if path and os.access(path, os.X_OK) and os.path.isfile(path):
            return path
        if path and path == named:
            raise ZurtError("the variable ZURT names no program that can be run", named)
    raise ZurtError("there is no program zurt: build it (./setup), install it, or name it by the variable ZURT")
