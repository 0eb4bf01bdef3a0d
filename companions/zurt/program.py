"""Where the program is."""
import os
import shutil
import sys

from .errors import ZurtError

TREE = os.path.abspath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))


def find_program():
    """Path of zurt: that of the variable ZURT, else of the source tree that this package lies in, else the one
    beside the program that runs, else of the search path."""
    named = os.environ.get("ZURT")
    built = os.path.join(TREE, "build", "release", "zurt")
    beside = os.path.join(os.path.dirname(os.path.realpath(sys.argv[0])), "zurt")
    for path in (named, built, beside, shutil.which("zurt")):
        if path and os.access(path, os.X_OK) and os.path.isfile(path):
            return path
        if path and path == named:
            raise ZurtError("the variable ZURT names no program that can be run", named)
    raise ZurtError("there is no program zurt: build it (./setup), install it, or name it by the variable ZURT")
