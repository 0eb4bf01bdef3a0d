"""The programs: each module has main(arguments), which returns the exit status."""
import sys

from ..errors import ZurtError
from ..version import VERSION


def run_command(name, main):
    """Ends the process: by what main returns, or by 1 behind a line that says what is wrong. name: of the program."""
    try:
        sys.exit(main(sys.argv[1:]))
    except ZurtError as error:
        end(name, error)
    except BrokenPipeError:
        sys.stderr.close()
        sys.exit(1)
    except OSError as error:
        end(name, ZurtError(error.strerror or str(error), error.filename))
    except MemoryError:
        end(name, "this takes more memory than there is")
    except KeyboardInterrupt:
        sys.exit(130)


def end(name, words):
    """Ends the process with status 1."""
    print(f"{name}: {words}", file=sys.stderr)
    sys.exit(1)


def add_version(parser):
    """The option --version."""
    parser.add_argument("--version", action="version", version=f"{parser.prog} {VERSION}", help="show the version and exit")
