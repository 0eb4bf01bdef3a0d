"""Runs of the examples that several tests look at, each made once."""
import atexit
import functools
import os
import shutil
import tempfile

import zurt

EXAMPLES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "examples")
_FOLDER = tempfile.mkdtemp()
atexit.register(shutil.rmtree, _FOLDER, True)


@functools.cache
def example_run(name):
    """The Run of an example with files for ParaView, and probes and prescribed values where its README has them."""
    options = {"membrane": dict(prescribed=os.path.join(EXAMPLES, "membrane", "faces.dat"), probes=[21, 41, 61])}
    return zurt.run(os.path.join(EXAMPLES, name, "zurt.dat"), os.path.join(_FOLDER, name), vtu=True, **options.get(name, {}))


def example_text(name):
    """The deck of an example."""
    with open(os.path.join(EXAMPLES, name, "zurt.dat")) as file:
        return file.read()
