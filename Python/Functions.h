#pragma once

#include "Conversions.h"

/// Functions of Python that expressions call.
namespace Functions {
/// Makes it a function of every expression of the process from now on; one that was made here before has that
/// definition then. It takes from `least` to `most` arguments, any number above when that is negative. Throws
/// ValueError for a name that cannot be one or that is taken, RuntimeError while something runs.
void Add(const py::str& name, const py::function& definition, int least, int most);
} // namespace Functions
