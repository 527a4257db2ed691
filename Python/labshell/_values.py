"""Named values as mappings."""

from collections.abc import Mapping, MutableMapping

from . import _labshell


class Values(MutableMapping):
    """Values by name, in any case; a name keeps the spelling that it had first."""

    __slots__ = ("_table",)

    def __init__(self, table):
        self._table = table

    def __getitem__(self, name):
        return self._table[name]

    def __setitem__(self, name, value):
        self._table[name] = value

    def __delitem__(self, name):
        del self._table[name]

    def __contains__(self, name):
        return isinstance(name, str) and name in self._table

    def __iter__(self):
        return iter(self._table.names())

    def __len__(self):
        return len(self._table.names())

    def clear(self):
        for name in self._table.names():
            self.pop(name, None)

    def __repr__(self):
        return f"{type(self).__name__}({dict(self)!r})"


class Sections(Mapping):
    """The settings by section; one that is not there yet is made by its first setting."""

    __slots__ = ()

    def __getitem__(self, section):
        return Values(_labshell.ConfigTable(section))

    def __contains__(self, section):
        return isinstance(section, str) and any(section.lower() == name.lower() for name in self)

    def __iter__(self):
        return iter(_labshell.ConfigTable.sections())

    def __len__(self):
        return len(_labshell.ConfigTable.sections())

    def __repr__(self):
        return f"{type(self).__name__}({ {name: dict(self[name]) for name in self}!r})"
