"""The bench instrument."""

import atexit
import os
import shutil
import tempfile
import warnings
import weakref

from . import _labshell
from ._values import Sections, Values


_left = None  # what _close takes, of a bench that went away while something ran


def _close(number, folder):
    """Nothing is left to do for a bench that is closed, and for one of the parent in a process that was forked off."""
    if _labshell.close_bench(number) and folder:
        shutil.rmtree(folder, ignore_errors=True)


def _close_lost(number, folder):
    global _left
    try:
        _close(number, folder)
        _left = None
    except RuntimeError:
        _left = number, folder


def _close_left():
    if _left:
        _close_lost(*_left)


atexit.register(_close_left)


class Bench:
    """An instrument on the desk: settings, status values, counters and events, which commands and expressions read.

    Its data are in a folder, which is made when it is missing; without one they are in a folder that goes away with the bench.
    One bench is open in a process at a time. It is a context manager, which closes it.
    """

    def __init__(self, folder=None, *, profile=None):
        _close_left()
        self._folder = tempfile.mkdtemp(prefix="labshell-") if folder is None else os.fspath(folder)
        temporary = self._folder if folder is None else None
        try:
            self._number, reports = _labshell.open_bench(os.fsencode(self._folder), os.fsencode(profile or _labshell.PROFILE))
        except BaseException:
            if temporary:
                shutil.rmtree(temporary, ignore_errors=True)
            raise
        self._finalizer = weakref.finalize(self, _close_lost, self._number, temporary)
        atexit.unregister(_labshell.end_all)
        atexit.register(_labshell.end_all)  # before the finalizer, which nothing may disturb
        self._session = _labshell.make_command_session()
        try:
            for report in reports:
                warnings.warn(report, RuntimeWarning, stacklevel=2)
        except RuntimeWarning:  # to whom they are errors
            self.close()
            raise

    def __repr__(self):
        return f"Bench({self._folder!r})"

    def __enter__(self):
        return self

    def __exit__(self, *exception):
        self.close()

    def close(self):
        """Writes what is to be kept and lets go of the data. While a command runs it is a RuntimeError, and the bench stays open."""
        if self._finalizer.alive:
            _, _, data, _ = self._finalizer.peek()
            _close(*data)
            self._finalizer.detach()

    def _require_open(self):
        _labshell.require_bench(self._number)

    @property
    def folder(self):
        """The folder of its data."""
        return self._folder

    def run(self, line):
        """Runs a command line and returns what it wrote. A failure is a CommandError."""
        self._require_open()
        return self._session._run(line)

    def evaluate(self, expression):
        """The value of an expression, which sees the variables of the commands too."""
        self._require_open()
        return self._session.evaluate(expression)

    @property
    def variables(self):
        """The variables of the commands. They are texts, whose values here are those that expressions see."""
        self._require_open()
        return Values("environment", self._session)

    @property
    def status(self):
        """The status values: a bool, float, int or str, an ExitCode, or None for a text that cannot be made up."""
        self._require_open()
        return Values("status")

    @property
    def config(self):
        """The settings: a mapping of sections, of which each is one of keys. A section that is not there yet is made by its first
        setting."""
        self._require_open()
        return Sections(self._number)

    @property
    def usage(self):
        """The counters, whole numbers."""
        self._require_open()
        return Values("usage")

    @property
    def events(self):
        """The events, whole numbers of 32 bits. All benches of the user share them; their names have a case."""
        self._require_open()
        return Values("events")
