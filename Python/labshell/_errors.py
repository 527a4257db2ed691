"""The exceptions of the package."""

from typing import NamedTuple, Optional


class ExitCode(NamedTuple):
    """How a command or an expression ended; its text is "command:module:number"."""

    command: int
    module: int
    number: int

    def __str__(self):
        return f"{self.command}:{self.module}:{self.number}"


class Error(Exception):
    """An expression that has no value.

    code      an ExitCode, whose number tells the errors apart
    message   what is wrong, in words
    position  its place in the text: that of the token, from 1, for an error of a value, and behind what was read, from 0, for
              one of grammar
    text      the expression
    """

    def __init__(self, code, message="", position=0, text=""):
        super().__init__(code, message, position, text)
        self.code = code
        self.message = message
        self.position = position
        self.text = text

    @property
    def caret(self) -> Optional[str]:
        """Two lines, the expression and "^" under the place; of a long expression the part around it."""
        if not self.text:
            return None
        most = 70
        column = min(max(self.position, 1), len(self.text) + 1) - 1
        start = max(0, column - most * 2 // 3)
        shown = "".join(c if c.isprintable() else " " for c in self.text[start:start + most])
        return f"{shown}\n{' ' * (column - start)}^"

    def __str__(self):
        line = f"{self.code} {self.message}".rstrip()
        return f"{line}\n{self.caret}" if self.text else line


class CommandError(Error):
    """A command line that has failed.

    code      an ExitCode, whose command is that of the command that failed
    message   what is known of the failure, in words
    line      the command line
    output    what it wrote before it failed
    notes     lines that help to see how it came to that
    """

    def __init__(self, code, message="", line="", output="", notes=()):
        Exception.__init__(self, code, message, line, output, notes)
        self.code = code
        self.message = message
        self.position = 0
        self.text = ""
        self.line = line
        self.output = output
        self.notes = list(notes)

    def __str__(self):
        return "\n".join([super().__str__(), *(f"note: {note}" for note in self.notes)])
