"""Lines of the tables and keys of a TOML file, for messages: tomllib tells values and no places."""
import re

HEADER = re.compile(r"^\s*(\[\[?)\s*([^\[\]]+?)\s*\]\]?\s*(#.*)?$")
KEY = re.compile(r"^\s*([A-Za-z0-9_\-\"'. ]+?)\s*=")


def split_name(text):
    """Parts of a dotted key."""
    return [part.strip().strip("\"'") for part in text.split(".")]


def open_brackets(text, open_string):
    """How many brackets a piece of a value opens, and the quotes of a long string that it leaves open. Strings and comments don't count."""
    depth, place = 0, 0
    while place < len(text):
        if open_string:
            end = text.find(open_string, place)
            if end < 0:
                return depth, open_string if len(open_string) == 3 else ""
            place, open_string = end + len(open_string), ""
            continue
        mark = text[place]
        if mark == "#":
            break
        if mark in "\"'":
            open_string = text[place:place + 3] if text[place:place + 3] in ('"""', "'''") else mark
            place += len(open_string)
            continue
        depth += (mark in "[{") - (mark in "]}")
        place += 1
    return depth, open_string if len(open_string) == 3 else ""


def table_place(path, counts, is_array):
    """Path of a table with the numbers of the arrays of tables that it lies in; counts keeps how many each array has had."""
    place = []
    for i, part in enumerate(path):
        place.append(part)
        name = tuple(place)
        if i == len(path) - 1 and is_array:
            counts[name] = counts.get(name, -1) + 1
        if name in counts:
            place.append(counts[name])
    return tuple(place)


def find_lines(text):
    """Place of each table and key, a tuple of names and of numbers of tables in arrays, to its line."""
    lines, counts, table, depth, long_string = {(): 1}, {}, (), 0, ""
    for number, line in enumerate(text.splitlines(), 1):
        if depth > 0 or long_string:
            change, long_string = open_brackets(line, long_string)
            depth += change
            continue
        header, key = HEADER.match(line), KEY.match(line)
        if header:
            table = table_place(split_name(header.group(2)), counts, header.group(1) == "[[")
            lines.setdefault(table, number)
        elif key:
            lines.setdefault(table + tuple(split_name(key.group(1))), number)
            depth, long_string = open_brackets(line[key.end():], "")
    return lines


def nearest_line(lines, place):
    """Line of a place, or of the nearest table around it."""
    while place and place not in lines:
        place = place[:-1]
    return lines.get(place, 1)
