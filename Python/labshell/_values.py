"""Named values as mappings."""

from collections.abc import Mapping, MutableMapping

from . import _labshell


class Values(_labshell.Table, MutableMapping):
    """Values by name, in any case; a name keeps the spelling that it had first."""

    __slots__ = ()

    def clear(self):
        for name in self:
            self.pop(name, None)

    def __repr__(self):
        return f"{type(self).__name__}({dict(self)!r})"


class Sections(Mapping):
    """The settings by section; one that is not there yet is made by its first setting."""

    __slots__ = ("_bench",)

    def __init__(self, bench):
        self._bench = bench

    def __getitem__(self, section):
        _labshell.require_bench(self._bench)
        return Values("config", section)

    def get(self, section, default=None):
        return self[section] if section in self else default

    def __contains__(self, section):
        return isinstance(section, str) and any(section.lower() == name.lower() for name in self)

    def __iter__(self):
        return iter(_labshell.get_sections(self._bench))

    def __len__(self):
        return len(_labshell.get_sections(self._bench))

    def __repr__(self):
        return f"{type(self).__name__}({ {name: dict(self[name]) for name in self}!r})"
