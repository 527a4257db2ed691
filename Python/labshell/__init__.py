"""Expressions and commands of the lab shell.

    >>> import labshell
    >>> labshell.evaluate("1+2*3")
    7.0
    >>> labshell.run("Calc 1+2*3")
    '7'
"""

import atexit
import inspect
import os

from . import _labshell

_labshell.require_main_interpreter()  # before anything of it is used: another one finds the module made already

from ._bench import Bench
from ._errors import CommandError, Error, ExitCode
from ._values import Values

__version__ = _labshell.__version__
__all__ = ["Bench", "CommandError", "Error", "Evaluator", "ExitCode", "Values", "abort", "evaluate", "function", "run"]

atexit.register(_labshell.end_all)
os.register_at_fork(after_in_child=_labshell.leave_parent)
for _class in (Bench, CommandError, Error, ExitCode, Values):
    _class.__module__ = __name__  # where users find it


class Evaluator(_labshell.Session):
    """Evaluates expressions: ev("a*2"), or ev.evaluate("a*2"), with variables that stay.

    e_is_constant  whether the name e is 2.718...
    trace          whether the property trace tells what the last evaluation has read
    instrument     whether status values, settings, counters, time and random numbers can be read
    """

    __slots__ = ("__weakref__",)

    def __init__(self, variables=None, *, e_is_constant=True, trace=False, instrument=True):
        if not e_is_constant:
            self._add_flags(_labshell.NO_CONSTANT_E)
        if trace:
            self._add_flags(_labshell.TRACE)
        if not instrument:
            self._add_flags(_labshell.READ_NOTHING)
        if variables is not None:
            self.variables.update(variables)

    @property
    def variables(self):
        """The variables: floats, bools and strs by name, in any case."""
        return Values("variables", self)

    @property
    def trace(self):
        """What the last evaluation has read and called, a line "name=value" each, for an evaluator that traces."""
        return self._trace()

    def __repr__(self):
        return f"{type(self).__name__}({dict(self.variables)!r})"


def evaluate(expression, variables=None):
    """The value of an expression with these variables. Without a value it is an Error."""
    return Evaluator(variables).evaluate(expression)


def run(line, variables=None):
    """Runs a command line with these variables, on the bench that is open if there is one, and returns what it wrote. A
    failure is a CommandError."""
    session = _labshell.make_command_session()
    if variables is not None:
        Values("environment", session).update(variables)
    return session._run(line)


def abort():
    """Ends the commands that run in other threads, as Ctrl-C does: each is a CommandError there."""
    _labshell.abort()


def _count_arguments(definition):
    """How many arguments the function takes: at least, and at most or -1."""
    kinds = inspect.Parameter
    try:
        parameters = inspect.signature(definition).parameters.values()
    except ValueError:  # some built-in functions do not tell
        return 0, -1
    placed = [p for p in parameters if p.kind in (kinds.POSITIONAL_ONLY, kinds.POSITIONAL_OR_KEYWORD)]
    if any(p.kind == kinds.KEYWORD_ONLY and p.default is kinds.empty for p in parameters):
        raise TypeError("an expression gives no arguments by keyword")
    least = sum(p.default is kinds.empty for p in placed)
    most = -1 if any(p.kind == kinds.VAR_POSITIONAL for p in parameters) else len(placed)
    if most == 0:
        raise TypeError("an expression gives a function one argument at least")
    return least, most


def function(definition=None, *, name=None):
    """Makes a function of Python one that every expression of the process can call; a decorator.

    It takes floats, bools and strs and returns one, or None for no value. What it raises is an error of the expression. Defined
    again, the last definition counts. It is to be defined while nothing runs.
    """
    def add(definition):
        own = getattr(definition, "__name__", None) if name is None else name
        if own is None:
            raise TypeError("a name is needed")
        _labshell.add_function(own, definition, *_count_arguments(definition))
        return definition

    return add if definition is None else add(definition)
