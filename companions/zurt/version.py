"""The version, from one place: CMakeLists.txt of the source tree, which leaves the file VERSION in an installed package."""
import os
import re

FOLDER = os.path.dirname(os.path.abspath(__file__))


def read_version():
    """As "1.1.0"."""
    installed = os.path.join(FOLDER, "VERSION")
    if os.path.exists(installed):
        with open(installed, encoding="ascii") as file:
            return file.read().strip()
    with open(os.path.join(FOLDER, "..", "..", "CMakeLists.txt"), encoding="utf-8") as file:
        return re.search(r"project\(zurt VERSION ([\d.]+)", file.read()).group(1)


VERSION = read_version()
