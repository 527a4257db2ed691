#pragma once

#include "Session.h"

/// The class Session of Python, from which Evaluator derives. It is made by Python's own interface: to find out what is
/// called how would take pybind11 longer than an evaluation takes.
namespace SessionType {
void AddTo(py::module_& module);
/// The session of an object. Throws TypeError for one of another class.
const std::shared_ptr<Session>& Get(py::handle object);
} // namespace SessionType
