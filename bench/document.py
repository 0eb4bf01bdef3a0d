"""Texts of docs/performance.md: numbers, tables, the machine, and the template with its places filled.

Imported by run_benchmarks and by the modules of its sections. A place is {{section.name}}; the prose of the template holds
no figures of its own.
"""
import math
import os
import platform
import re
import subprocess


def short(value, unit=""):
    """Three digits that count, and a dash where there is no figure."""
    if value is None:
        return "-"
    decimals = 0 if value == 0 else max(0, 2 - math.floor(math.log10(abs(value)) + 1e-12))
    return f"{value:.{decimals}f}{' ' if unit else ''}{unit}"


def ratio(value, other, decimals=2):
    return f"{value / other:.{decimals}f}" if value is not None and other else "-"


def span(values, unit=""):
    """The least and the greatest: "8.5 to 10.8"; one figure if they look alike."""
    values = [value for value in values if value is not None]
    if not values:
        return "(not measured)"
    low, high = short(min(values)), short(max(values))
    return (low if low == high else f"{low} to {high}") + (f" {unit}" if unit else "")


def percent(part, whole):
    return f"{100.0 * part / whole:.0f} %"


def table(head, rows):
    """A table in Markdown."""
    lines = [head, ["---"] * len(head), *rows]
    return "\n".join("| " + " | ".join(map(str, line)) + " |" for line in lines)


# --- the machine ------------------------------------------------------------------------------------------------------

def first_line(path, key=""):
    """What stands behind the key in a file of lines, or the first line; empty when there is none."""
    try:
        with open(path) as file:
            return next((line[len(key):].strip().lstrip(":=").strip().strip('"') for line in file if line.startswith(key)),
                        "")
    except OSError:
        return ""


def caches():
    folder = "/sys/devices/system/cpu/cpu0/cache"
    found = []
    for index in sorted(os.listdir(folder)) if os.path.isdir(folder) else []:
        level, kind, size = (first_line(os.path.join(folder, index, name)) for name in ("level", "type", "size"))
        if level and kind != "Instruction":
            found.append(f"L{level} {size}")
    return ", ".join(found) or "unknown"


def version(*command):
    try:
        lines = subprocess.run(command, capture_output=True, text=True).stdout.strip().splitlines()
    except OSError:
        return "none"
    return lines[0] if lines else "none"


def describe_machine():
    """Pairs of what and its description."""
    flags = first_line("/proc/cpuinfo", "flags").split()
    sets = [name for flag, name in (("avx2", "AVX2"), ("fma", "FMA"), ("avx512f", "AVX-512")) if flag in flags]
    memory = first_line("/proc/meminfo", "MemTotal").split()
    return [("processor", f"{os.cpu_count()} x {first_line('/proc/cpuinfo', 'model name') or platform.processor()}, family "
             f"{first_line('/proc/cpuinfo', 'cpu family')}{', ' + ', '.join(sets) if sets else ''}"
             f"{', a virtual machine' if 'hypervisor' in flags else ''}"),
            ("caches of a core", caches()),
            ("memory", f"{int(memory[0]) / 2 ** 20:.0f} GiB" if memory else "unknown"),
            ("system", f"{first_line('/etc/os-release', 'PRETTY_NAME')}, Linux {platform.release()}"),
            ("compiler", version("c++", "--version")),
            ("Fortran compiler of the yardsticks", version("gfortran", "--version")),
            ("peer", version("ccx", "-v").replace("This is Version", "CalculiX"))]


# --- the template -----------------------------------------------------------------------------------------------------

def fill(template, figures):
    """The template with its places filled; "not measured" where there is no figure."""
    return re.sub(r"\{\{([\w.]+)\}\}", lambda place: figures.get(place.group(1), "(not measured)"), template)


def chapters_of(template, names):
    """Those chapters (from one ## to the next) that have places of the sections named."""
    chapters = re.split(r"(?m)^(?=## )", template)[1:]
    return "\n".join(chapter.strip() + "\n" for chapter in chapters
                     if any(f"{{{{{name}." in chapter for name in names))
