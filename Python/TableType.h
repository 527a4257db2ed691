#pragma once

#include "Tables.h"

/// The class Table of Python, from which Values derives.
namespace TableType {
void AddTo(py::module_& module);
} // namespace TableType
