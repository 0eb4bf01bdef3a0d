"""The one exception of this package."""


class ZurtError(Exception):
    """What went wrong, and where: file is a path or None, line counts from one or is None."""

    def __init__(self, message, file=None, line=None):
        super().__init__(message)
        self.message = message
        self.file = file
        self.line = line

    def __str__(self):
        place = ":".join(str(part) for part in (self.file, self.line) if part is not None)
        return f"{place}: {self.message}" if place else self.message
