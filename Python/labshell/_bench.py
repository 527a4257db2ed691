"""The bench instrument."""

import atexit
import os
import shutil
import tempfile
import warnings
import weakref

from . import _labshell
from ._values import Sections, Values


def _close(pid, folder):
    """A process that was forked off leaves the bench to the one that has opened it."""
    if os.getpid() != pid:
        return
    _labshell.close_bench()
    if folder:
        shutil.rmtree(folder, ignore_errors=True)


class Bench:
    """An instrument on the desk: settings, status values, counters and events, which commands and expressions read.

    Its data are in a folder, which is made when it is missing; without one they are in a folder that goes away with the bench.
    One bench is open in a process at a time. It is a context manager, which closes it.
    """

    def __init__(self, folder=None, *, profile=None):
        self.folder = tempfile.mkdtemp(prefix="labshell-") if folder is None else os.fspath(folder)
        temporary = self.folder if folder is None else None
        try:
            reports = _labshell.open_bench(os.fsencode(self.folder), os.fsencode(profile or _labshell.PROFILE))
        except BaseException:
            if temporary:
                shutil.rmtree(temporary, ignore_errors=True)
            raise
        self._pid = os.getpid()
        self._finalizer = weakref.finalize(self, _close, self._pid, temporary)
        atexit.unregister(_labshell.end_all)
        atexit.register(_labshell.end_all)  # before the finalizer, which nothing may disturb
        self._session = _labshell.make_command_session()
        for report in reports:
            warnings.warn(report, RuntimeWarning, stacklevel=2)

    def __enter__(self):
        return self

    def __exit__(self, *exception):
        self.close()

    def _is_own(self):
        return self._pid == os.getpid()

    def close(self):
        """Writes what is to be kept and lets go of the data. While a command runs it is a RuntimeError, and the bench stays open."""
        if self._finalizer.alive and self._is_own():
            _labshell.close_bench()
            self._finalizer()

    def _require_open(self):
        if not self._finalizer.alive:
            raise ValueError("the bench is closed")
        if not self._is_own():
            raise ValueError("the bench is open in another process")

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
        return Values("environment", self._session)

    @property
    def status(self):
        """The status values: a bool, float, int or str, an ExitCode, or None for a text that cannot be made up."""
        return Values("status")

    @property
    def config(self):
        """The settings by section and key."""
        return Sections()

    @property
    def usage(self):
        """The counters, whole numbers."""
        return Values("usage")

    @property
    def events(self):
        """The events, whole numbers of 32 bits. All benches of the user share them; their names have a case."""
        return Values("events")
