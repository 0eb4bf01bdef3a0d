#!/usr/bin/env python3
"""Makes the tables that the format tests compare with, from the output of gfortran.

    python3 make_format_tables.py [directory [seed]]     (default: the directory of this script and its seed)

Cases are drawn from a generator with a fixed seed, made into a Fortran program, and come back with gfortran's own
text or value. The tables:

    format_write.tsv        format, values, |text|
    format_read_fixed.tsv   format, |record|, values, status
    format_read_list.tsv    types, |records|, values, status

Values are i:DECIMAL, r:BITS (hexadecimal, of the double) or s:TEXT with '_' for a blank; '-' is a variable that was
left alone. Line ends, tabs and carriage returns inside bars are \\n, \\t, \\r. The status is ok, eof, bad (no number)
or range (overflow). Cases are left out where the program departs from gfortran on purpose: an exponent without a
point under a format with decimals, an exponent of five digits in a fixed field (no number to gfortran, out of range
here), and an r*c that gives both integers and reals.
"""

import os
import random
import re
import struct
import subprocess
import sys
import tempfile

SEED = 20240229


def bits(value):
    return struct.pack(">d", value).hex().upper()


def from_bits(text):
    return struct.unpack(">d", bytes.fromhex(text))[0]


def neighbour(value, steps):
    """The double `steps` places further from zero."""
    return struct.unpack(">d", struct.pack(">q", struct.unpack(">q", struct.pack(">d", value))[0] + steps))[0]


# --- the values ---------------------------------------------------------------------------------------------------

INFINITE = float("inf")
EDGES = [0.0, -0.0, 1.0, -1.0, 0.5, -0.5, 1.5, 2.5, -2.5, 0.125, 0.375, -0.0625, 9.5, 9.9949999999, 99.95, 999.5,
         9999.5, 0.05, 0.005, -0.0004, 1e-5, 0.1, 0.95, 0.99999999, 9.99999999, 99999.5, 123456.789, -1234.5678,
         1.0 / 3.0, -2.0 / 3.0, 3.141592653589793, 1e5, 1e10, 1e15, 1e22, 1e23, 9.9999995e99, 1e99, 1e100, -1e100,
         9.9999995e-100, 1e-99, -1e-100, 1.7976931348623157e308, 2.2250738585072014e-308, 5e-324, -5e-324,
         INFINITE, -INFINITE, float("nan"), 4.35, 2.675, 1.005, 1e9 + 0.5]
FIXED = ["F10.3", "F10.6", "F10.0", "F4.0", "F6.2", "F4.3", "F3.2", "F5.1", "F2.1", "F1.0", "F2.0", "F3.0", "F0.2",
         "F0.0", "1PF10.3", "3PF12.4", "-2PF12.4", "-1PF4.1", "F20.12", "F7.1"]
FLOATING = ["D15.6", "D13.5", "1PD13.5", "E13.5", "E11.3", "E11.4", "E20.12", "D10.4", "D10.2", "1PE12.4", "1PE12.5",
            "1PE10.3", "1PD12.4", "1PD14.4", "E8.3", "E7.3", "E6.1", "E12.4E3", "E10.3E1", "E11.3E2", "D11.4",
            "2PE12.4", "-1PE12.4", "1PE8.1", "1PE7.0", "E25.17", "1PE24.16"]
TIGHT = ["D10.3", "D9.3", "D8.3", "E5.1", "E7.1", "1PE9.3", "1PE8.3", "1PD6.0", "F6.5", "F7.5", "F8.5", "E3.1",
         "D4.1", "F3.3", "F4.4"]


def random_real(rng):
    kind = rng.randrange(6)
    sign = rng.choice([1.0, 1.0, -1.0])
    if kind == 0:  # any exponent
        return sign * from_bits("%016X" % ((rng.randrange(1, 2047) << 52) | rng.getrandbits(52)))
    if kind == 1:  # what a run prints: sizes, times, concentrations
        return sign * rng.uniform(1.0, 10.0) * 10.0 ** rng.randrange(-8, 9)
    if kind == 2:  # short decimals, as decks hold them
        return sign * float("%d.%de%d" % (rng.randrange(100), rng.randrange(1000), rng.randrange(-3, 4)))
    if kind == 3:  # exact ties in binary fractions
        return sign * rng.randrange(1, 4000) / 2.0 ** rng.randrange(1, 9)
    if kind == 4:  # close to a power of ten, where rounding carries
        return sign * (10.0 ** rng.randrange(-12, 12)) * (1.0 - 10.0 ** -rng.randrange(2, 16))
    value = (rng.randrange(1, 20000) + 0.5) / 10.0 ** rng.randrange(0, 7)  # a last digit of 5, and its neighbours
    return sign * neighbour(value, rng.randrange(-1, 2))


def random_real_format(rng):
    scale = rng.choice([0, 0, 0, 0, 1, 1, 1, 2, -1])
    letter = rng.choice("FFEED")
    decimals = rng.randrange(0, 13)
    if letter == "F":
        decimals = max(decimals, -scale)
        width = rng.randrange(decimals + 1, decimals + 12)
        tail = ""
    else:
        decimals = max(decimals, 2)
        width = rng.randrange(decimals + 3, decimals + 10)
        tail = "E%d" % rng.randrange(1, 5) if letter == "E" and rng.randrange(6) == 0 else ""
    return ("%dP" % scale if scale else "") + "%s%d.%d%s" % (letter, width, decimals, tail)


def random_integer(rng):
    return rng.choice([0, 1, -1, 9, -9, 10, 2147483647, -2147483648, 9999, 10000, 99999, -99999, 9223372036854775807,
                       -9223372036854775808, rng.randrange(-100, 100), rng.randrange(-10 ** 6, 10 ** 6),
                       rng.randrange(-10 ** 12, 10 ** 12)])


TEXTS = ["a", "zurt.dat", "NODE CONCENTRAT", "it's", "x  y", "TABLE OF", "0123456789", ""]

# Formats of records, with the types of one pass. Values may run on into further passes.
RECORDS = [
    ("(11X,I10,10X,I5,3(3X,D15.6))", "iirrr"), ("(11X,I10,12X,I10,15X,3(D15.6,3X))", "iirrr"), ("(10I8)", "i" * 10),
    ("(4(I8,4X,E13.5))", "ir" * 4), ("(I8,4X,E13.5,2X,E13.5)", "irr"), ("(7(I5,1X,E11.4))", "ir" * 7),
    ("(I5,3X,E11.3)", "ir"), ("(4I10,1P3D13.5)", "iiiirrr"), ("(4I10,3D13.5)", "iiiirrr"), ("(8I10)", "i" * 8),
    ("(6D13.5)", "r" * 6), ("(1P6D13.5)", "r" * 6), ("(3D13.5)", "rrr"), ("(I6)", "i"), ("(80A1)", "s" * 6),
    ("(2X,I5,5X,3I5,3X,1P4D12.4,1P2D14.4)", "iiii" + "r" * 6), ("(10X,I8,13X,I5,12X,1PE12.5,I8)", "iiri"),
    ("(2X,I8,10X,3(3X,D10.4),I10,7X,3D10.2)", "irrrirrr"), ("(2X,I8,10X,3(3X,D10.4)/10I8)", "irrr" + "i" * 10),
    ("(///'1'/' S T E P  NUMBER =' I6,25X,'  T I M E =' 1PE12.5)", "ir"), ("(11X,I10,32X,I10,25X,D10.4)", "iir"),
    ("(' TOTAL NUMBER OF TIME STEPS    NDT =',I10/'TOTAL TIME =',D12.5)", "ir"), ("(19X,8D11.4)", "r" * 8),
    ("(5X,I5,5X,D16.5,5X,D16.5)", "irr"), ("(I9,2X,E12.3,2X,E12.3)", "irr"), ("(6X,I5,3D12.4)", "irrr"),
    ("(D14.5,11X,D14.5)", "rr"), ("(A,I5,A)", "sis"), ("(A20,1X,A)", "ss"), ("(1X,A,' TO',I5)", "si"),
    # reversion: to the last group of the top level with its repeat, and with the scale that stands
    ("(I5,2(1X,I3),F6.2)", "iiir"), ("(I5,(1X,F8.3))", "ir"), ("(I3,2(F7.2,(I4,'x')))", "iririr"[:5]),
    ("(F8.3,1PE12.4)", "rr"), ("(I4,(F8.3,1PE12.4))", "irr"), ("(I4,2(F8.3,2PF9.2,0PF8.3))", "i" + "r" * 6),
    ("(2(F8.3,1PE12.4))", "rrrr"), ("(1PE12.4,(F9.3),I4)", "rri"), ("('a',2(I2,'b',2(I3,'c')),'d')", "i" * 6),
    # colons, slashes, trailing blanks, literals with quotes
    ("(3(I5,:,','))", "iii"), ("(I5,3X)", "i"), ("(I5,3X/3X,I5,2X)", "ii"), ("(I5,:,' more')", "i"),
    ("('it''s',I3,\" \"\"x\"\" \")", "i"), ("(I3,'')", "i"), ("(I3,4X,'')", "i"), ("(2X,A,2X,A)", "ss"),
    ("(I2/,/I3,2/,I4)", "iii"), ("(3X,'head',2X/'foot')", ""), ("()", ""), ("(5X)", ""), ("(/)", ""),
    ("(\"it's\",2(' (',I2,')'))", "ii"), ("(I5'A'I5)", "ii"), ("(1X,6X,I2,X,I2)", "ii"), ("(i5,1p,e12.4,f8.2)", "irr"),
]


def draw(rng, kind):
    if kind == "i":
        return ("i", random_integer(rng) if rng.randrange(4) else rng.randrange(1, 1000))
    if kind == "r":
        return ("r", rng.choice(EDGES) if rng.randrange(8) == 0 else random_real(rng))
    return ("s", rng.choice(TEXTS))


def write_cases(rng):
    """(format, values) of every writing case."""
    cases = []
    for descriptor in FIXED + FLOATING + TIGHT:
        step = 1 if descriptor not in TIGHT else 2
        cases += [("(%s)" % descriptor, [("r", value)]) for value in EDGES[::step]]
    for _ in range(900):
        cases.append(("(%s)" % random_real_format(rng), [("r", random_real(rng))]))
    for width in range(0, 13):
        for least in ["", ".0", ".1", ".3", "." + str(max(width, 1))]:
            if least and width and int(least[1:]) > width:
                continue
            values = [0, -5] + [random_integer(rng) for _ in range(2)]
            cases += [("(I%d%s)" % (width, least), [("i", value)]) for value in values]
    for descriptor in ["A", "A1", "A4", "A10", "A20"]:
        cases += [("(%s)" % descriptor, [("s", text)]) for text in TEXTS]
    for form, types in RECORDS:
        lengths = [len(types)] * 3 + ([len(types) * 2, len(types) * 3, rng.randrange(len(types) + 1)] if types else [])
        for length in lengths:
            cases.append((form, [draw(rng, types[i % len(types)]) for i in range(length)]))
    return cases


# Types of the passes after the first, where reversion does not go back to the start.
LATER = {"(I5,2(1X,I3),F6.2)": "iir", "(I5,(1X,F8.3))": "r", "(I3,2(F7.2,(I4,'x')))": "riri",
         "(I4,(F8.3,1PE12.4))": "rr", "(I4,2(F8.3,2PF9.2,0PF8.3))": "r" * 6, "(1PE12.4,(F9.3),I4)": "ri",
         "(11X,I10,10X,I5,3(3X,D15.6))": "rrr", "(11X,I10,12X,I10,15X,3(D15.6,3X))": "rrr",
         "(2X,I8,10X,3(3X,D10.4),I10,7X,3D10.2)": "rrrirrr", "(2X,I8,10X,3(3X,D10.4)/10I8)": "rrr" + "i" * 10}


# --- the Fortran side ---------------------------------------------------------------------------------------------

# The list of items of a statement is fixed when it is compiled: each case is a statement of its own.
PROGRAM = """\
program answers
  implicit none
  integer :: status, i(64)
  integer(8), parameter :: untouched = int(z'FEDCBA9876543210', 8)
  real(8) :: r(64)
  character(200) :: form, record, message
  open (20, file='answers.txt')
%s
contains
  subroutine begin()
    i = -777777777
    r = transfer(untouched, r(1))
    message = ''
  end subroutine

  ! All values, one a line, and how the read ended.
  subroutine report(types)
    character(*), intent(in) :: types
    integer :: k
    do k = 1, len(types)
      if (types(k:k) == 'i' .and. i(k) == -777777777 .or. types(k:k) == 'r' .and. transfer(r(k), untouched) == untouched) then
        write (20, '(A)') '-'
      else if (types(k:k) == 'i') then
        write (20, '(A,I0)') 'i:', i(k)
      else
        write (20, '(A,Z16.16)') 'r:', r(k)
      end if
    end do
    if (status == 0) message = ''
    write (20, '(I0,1X,A)') status, trim(message)
  end subroutine
%s
end program
"""


def run_fortran(cases):
    """Compiles a program of the statements of these cases and runs it; returns its answers."""
    parts = [cases[k:k + 100] for k in range(0, len(cases), 100)]
    calls = "\n".join("call part_%d()" % k for k in range(len(parts)))
    bodies = "\n".join("subroutine part_%d()\n%s\nend subroutine" % (k, "\n".join(part)) for k, part in enumerate(parts))
    with tempfile.TemporaryDirectory() as directory:
        with open(os.path.join(directory, "answers.f90"), "w", newline="") as file:
            file.write(PROGRAM % (calls, bodies))
        subprocess.run(["gfortran", "-O0", "-fbackslash", "-ffree-line-length-none", "-o", "answers", "answers.f90"],
                       cwd=directory, check=True)
        subprocess.run(["./answers"], cwd=directory, check=True)
        with open(os.path.join(directory, "answers.txt"), newline="") as file:
            return file.read().split("\n")[:-1]


def quoted(text):
    return "'" + escaped(text).replace("'", "''") + "'"


def escaped(text):
    return text.replace("\n", "\\n").replace("\t", "\\t").replace("\r", "\\r")


def write_item(value):
    kind, content = value
    if kind == "s":
        return quoted(content)
    return "int(z'%016X', 8)" % (content % 2 ** 64) if kind == "i" else "transfer(int(z'%s', 8), r(1))" % bits(content)


def read_items(types):
    return ", ".join("%s(%d)" % (kind, k + 1) for k, kind in enumerate(types))


def shown(value):
    kind, content = value
    if kind == "i":
        return "i:%d" % content
    return "r:" + bits(content) if kind == "r" else "s:" + content.replace(" ", "_")


def make_write_table(rng):
    cases = write_cases(rng)
    for index, (form, values) in enumerate(cases):  # bring the types of later passes in line with the format
        types = next((types for known, types in RECORDS if known == form), None)
        if types:
            kinds = types + LATER.get(form, types) * len(values)
            cases[index] = (form, [v if v[0] == kind else draw(rng, kind) for v, kind in zip(values, kinds)])
    output = run_fortran(["form = %s\nwrite (20, form, iostat=status) %s\nwrite (20, '(A,I0)') '@@@@', status"
                          % (quoted(form), ", ".join(write_item(value) for value in values)) for form, values in cases])
    rows, records = [], []
    for line in output:
        if not line.startswith("@@@@"):
            records.append(line)
            continue
        form, values = cases[len(rows)]
        assert line == "@@@@0", "gfortran refuses %s %s" % (form, values)
        text = "\\n".join(records)
        rows.append("%s\t%s\t|%s|" % (form, " ".join(shown(value) for value in values), text))
        records = []
    return rows


# --- reading ------------------------------------------------------------------------------------------------------

def random_integer_text(rng):
    choice = rng.randrange(14)
    if choice < 7:
        return rng.choice(["", "", "-", "+"]) + str(rng.randrange(10 ** rng.randrange(1, 7)))
    if choice == 7:
        return str(rng.choice([2147483647, 2147483648, -2147483648, -2147483649, 4294967296, 99999999999]))
    if choice == 8:
        return rng.choice(["", "-", "+", "0", "-0", "007", "00000000012"])
    if choice == 9:
        return rng.choice(["3.0", "1.", "abc", "1e2", "--1", "1-", "+-2", "12a", "0x1F", ".5", "1,2", "*", "1_"])
    return "%d" % rng.randrange(-999, 1000)


def random_real_text(rng):
    sign = rng.choice(["", "", "", "-", "+"])
    choice = rng.randrange(20)
    if choice == 0:
        return sign + rng.choice(["Inf", "INF", "infinity", "Infinity", "NaN", "nan", "NAN(12)", "nan()"])
    if choice == 1:
        return rng.choice(["", "-", "+", ".", "abc", "1.2.3", "--1.0", "1.0E", "1.0E+", "E5", "1.5x", "1.5EE3",
                           "1.5E3.2", "in", "infi", "nan(", "1.5+-3", "0x1p3", "1.5D+", "+.", "-.E2", "1.5E3-2"])
    if choice == 2:  # at and beyond the ends of the range
        return sign + rng.choice(["1.7976931348623157E308", "1.7976931348623159E308", "1.0E309", "2.0D+400", "1.E-400",
                                  "4.9E-324", "2.4E-324", "2.5E-324", "2.2250738585072011E-308", "9.99E+9999",
                                  "1.0E-9999", "0.0E400", "1.0E10000", "1.5E00003", "123456.E-330"])
    if choice == 3:  # halfway between two doubles, and just off it
        return sign + rng.choice(["9007199254740993.0", "9007199254740993.00001", "9007199254740992.99999", "1.E23",
                                  "8.5E22", "0.1000000000000000055511151231257827", "6929495644600919.5",
                                  "3.7455744005952583E15", "0.500000000000000166533453693773481063544750213623046875"])
    if choice < 8:
        digits = "%d" % rng.randrange(10 ** rng.randrange(1, 8))
        return sign + digits
    whole = "%d" % rng.randrange(10 ** rng.randrange(1, 6)) if rng.randrange(6) else ""
    fraction = "%d" % rng.randrange(10 ** rng.randrange(1, 9)) if whole == "" or rng.randrange(5) else ""
    text = sign + whole + "." + fraction
    if rng.randrange(2):
        power = rng.randrange(-30, 30) if rng.randrange(5) else rng.randrange(-330, 320)
        spelling = rng.randrange(5)
        if spelling == 0:
            text += "%+d" % power
        else:
            text += rng.choice("EeDdQq") + ("%+03d" % power if spelling < 3 else "%d" % power)
    return text


def departs_from_fortran(descriptor, field):
    """An exponent and no point under a format with decimals, or an exponent of five digits."""
    if "E10000" in field.replace(" ", ""):
        return True
    decimals = int(descriptor.rsplit(".", 1)[1])
    return decimals != 0 and "." not in field and re.search(r"[0-9 ][EeDdQq+-]|[EeDdQq]", field.strip().lstrip("+-"))


def place(rng, text, width):
    """The text in a field of this width, at a random place, at times with blanks inside."""
    if len(text) < width and text and rng.randrange(6) == 0:
        spot = rng.randrange(len(text) + 1)
        text = text[:spot] + " " + text[spot:]
    spare = width - len(text)
    before = rng.choice([spare, spare, rng.randrange(spare + 1), 0]) if spare > 0 else 0
    return (" " * before + text).ljust(width)[:width]


REAL_FIELDS = ["F10.0", "F10.2", "F10.6", "D15.6", "D10.4", "D10.2", "E20.12", "D20.6", "F26.3", "E12.4", "F6.3", "F5.1",
               "F60.5"]
CARDS = ["(4I5,3F10.6)", "(I10,I5,5X,4D15.6,I5)", "(5I5,F10.6,9I5,D10.2,I5)", "(8D10.4)", "(3I5,6F10.0)", "(2D20.6)",
         "(I5,5X,10I5)", "(9I8,6I3)", "(2I5,2D15.5,4I5)", "(6F10.6)", "(14I5)", "(8I5,F10.3)", "(I5,3(2X,I4,F8.2))"]


def unroll(form):
    """The descriptors of a format of this script, group by group, without scale and reversion."""
    items = []
    for part in re.findall(r"\d+\([^()]*\)|[^,()]+", form[1:-1]):
        group = re.match(r"(\d+)\(([^()]*)\)", part)
        if group:
            items += unroll("(" + group.group(2) + ")") * int(group.group(1))
        else:
            repeat, rest = re.match(r"(\d*)(.*)", part).groups()
            items += ["%sX" % repeat] if rest == "X" else [rest] * int(repeat or 1)
    return items


def fixed_cases(rng):
    """(format, types, record) of every case of a record under a format."""
    cases = []
    for _ in range(330):
        width = rng.choice([1, 2, 3, 5, 5, 8, 10, 10, 12])
        cases.append(("(I%d)" % width, "i", place(rng, random_integer_text(rng), width)))
    while len(cases) < 1000:
        descriptor = rng.choice(REAL_FIELDS)
        field = place(rng, random_real_text(rng), int(re.search(r"[FED](\d+)", descriptor).group(1)))
        if not departs_from_fortran(descriptor, field):
            cases.append(("(%s)" % descriptor, "r", field))
    for index in range(130):
        form, types, record = CARDS[index % len(CARDS)], "", ""
        for item in unroll(form):
            if item.endswith("X"):
                record += " " * int(item[:-1] or 1)
                continue
            width = int(re.search(r"\d+", item).group(0))
            types += "i" if item[0] == "I" else "r"
            text = ""
            if rng.randrange(5):
                number = rng.uniform(0, 10)
                text = "%d" % rng.randrange(10 ** (width - 2)) if types[-1] == "i" else "%.*f" % (rng.randrange(5), number)
            record += place(rng, text, width)
        cut = len(record) if rng.randrange(3) else rng.randrange(len(record))
        cases.append((form, types, record[:cut]))
    return cases


def list_item(rng, kind):
    text = random_integer_text(rng) if kind == "i" else random_real_text(rng)
    while text == "" or " " in text or text.startswith("nan(") or "_" in text:
        text = random_integer_text(rng) if kind == "i" else random_real_text(rng)
    if rng.randrange(3):  # mostly plain items, so that statements run to their end
        text = "%d" % rng.randrange(-99, 1000) if kind == "i" else "%.3f" % rng.uniform(-5, 50)
    choice = rng.randrange(25)
    if choice == 0:
        return "%d*%s" % (rng.randrange(1, 4), text)
    if choice == 1:
        return "%d*" % rng.randrange(1, 4)
    if choice == 2:
        return rng.choice(["0*", "00*", "300000000*", "99999999999*", "2**", "*", "-1*", "2.*"]) + text
    if choice == 3 and rng.randrange(3) == 0:
        return "/"
    return text


SEPARATORS = [" ", " ", "  ", ",", ",", ", ", " ,", " , ", ",,", ", ,", "\t", "\t,", ";", "\n", "\n", " \n ", ",\n",
              "\n,", "\r\n", ",\r\n", "\n\n", " \n\r\n", "/"]


def list_cases(rng):
    """(types, records) of every list-directed case."""
    plain = ["1 2 3", "1,2,3", " 1 , 2 , 3 ", ",1,2", ",,1", "1,,3", "1,2,", "/", "1/2", "1 /", "3*7", "3*", "3*,5",
             "2*1 5", "2*,,4", "1\n2\n3", "1\n,2 3", "1,\n2,\n3", "1,\n,2", "\n\n1 2 3", "1\r\n2 3\r", "\t1\t2\t3\t", "1;2;3",
             "1 ;2; 3", ";1;2", "1;;2", "", "1", "1,2", "1 2 3 4 5", ",", ",,", ",\n,\n,", "1,,/", "2*,/", "2*\n9", "3.0 1 2",
             "abc", "1 abc 2", "1 2 x", "1\n/", "1 2/ 3", "1,/", " ,/", "1*5,2*6", "2*5/", "4*8", "1 2*\n,3", "1 2*,\n3", "1\n,,2", "1\n;2", "1\n;\n,2", "1;\n,2", "1;\n;2", "2*\n\n,3", "2*\n;3"]
    cases = [(types, records) for types in ("iii", "rrr") for records in plain]
    for _ in range(640):
        types = rng.choice(["i", "ii", "iii", "iiiii", "r", "rr", "rrr", "rrrr", "iir", "irrr", "ri"])
        text = rng.choice(["", "", "", " ", ",", "\n", "\t"])
        for kind in types:
            text += list_item(rng, kind) + rng.choice(SEPARATORS)
        cases.append((types, text if rng.randrange(2) else text.rstrip(" ,;/")))
    return cases


def status_of(line):
    number, _, message = line.partition(" ")
    if number in ("0", "-1"):
        return "ok" if number == "0" else "eof"
    if message.startswith("Read type"):
        return "mixed"
    return "range" if "overflow" in message else "bad"


def results(output, types):
    """Takes the lines of one case off the output: its values and its status."""
    shown_values = [output.pop(0) for _ in types]
    line = output.pop(0)
    failed = re.search(r"item (\d+)", line) if not line.startswith("0") else None
    if failed:  # what a failed item holds is nobody's promise
        first = int(failed.group(1)) - 1
        shown_values[first:] = ["-"] * (len(types) - first)
    elif "Error during floating point read" in line:  # it was the last item touched
        shown_values[max(k for k, value in enumerate(shown_values) if value != "-")] = "-"
    return " ".join(shown_values), status_of(line)


def make_fixed_table(rng):
    cases = fixed_cases(rng)
    output = run_fortran(["call begin()\nform = %s\nrecord = %s\nread (record, form, iostat=status, iomsg=message) %s\n"
                          "call report('%s')" % (quoted(form), quoted(record), read_items(types), types)
                          for form, types, record in cases])
    return ["%s\t|%s|\t%s\t%s" % ((form, record) + results(output, types)) for form, types, record in cases]


def make_list_table(rng):
    cases = list_cases(rng)
    output = run_fortran(["call begin()\nopen (30, status='scratch', form='formatted')\n%s\nrewind (30)\n"
                          "read (30, *, iostat=status, iomsg=message) %s\nclose (30)\ncall report('%s')"
                          % ("\n".join("write (30, '(A)') " + quoted(record) for record in text.split("\n")), read_items(types),
                             types) for types, text in cases])
    rows = [(types, escaped(text)) + results(output, types) for types, text in cases]
    return ["%s\t|%s|\t%s\t%s" % row for row in rows if row[3] != "mixed"]


def main():
    directory = sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.abspath(__file__))
    rng = random.Random(int(sys.argv[2]) if len(sys.argv) > 2 else SEED)
    tables = {"format_write.tsv": make_write_table(rng), "format_read_fixed.tsv": make_fixed_table(rng),
              "format_read_list.tsv": make_list_table(rng)}
    for name, rows in tables.items():
        with open(os.path.join(directory, name), "w", newline="") as file:
            file.write("".join(row + "\n" for row in rows))
        print("%s: %d cases" % (name, len(rows)))


if __name__ == "__main__":
    main()
