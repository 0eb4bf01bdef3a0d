"""The programs: each module has main(arguments), which returns the exit status."""
import sys

from ..errors import ZurtError
from ..version import VERSION


def run_command(name, main):
    """Ends the process: by what main returns, or by 1 behind a line that says what is wrong. name: of the program,
    which --version follows."""
    if sys.argv[1:] == ["--version"]:
        print(f"{name} {VERSION}")
        sys.exit(0)
    try:
        sys.exit(main(sys.argv[1:]))
    except ZurtError as error:
        print(f"{name}: {error}", file=sys.stderr)
        sys.exit(1)
    except BrokenPipeError:
        sys.stderr.close()
        sys.exit(1)
    except KeyboardInterrupt:
        sys.exit(130)
