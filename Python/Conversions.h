#pragma once

#include "EEToken.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <pybind11/pybind11.h>

#include <string_view>

namespace py = pybind11;

// Texts and values on their way between Python and the evaluator. For a thread that holds Python's lock.

/// Throws TypeError for what is no str, ValueError for a text with a null character, which would end an expression
/// before its end.
WString ToText(py::handle text);
py::str ToPython(const WString& text);
py::list ToPython(const WStringArray& texts);

/// A float, a bool or a str; None for a token without a value.
py::object ToPython(const EEToken& token);
/// The value that the text of a setting or a variable of commands is to an expression.
py::object ReadValue(const WString& text);

/// Whether an expression knows the text as a name: up to 63 letters of English, digits, '_' and '.'. No digit stands in
/// front, nor one of `notInFront`.
bool IsName(const WString& text, std::wstring_view notInFront);

/// The bool, str, int or float that a value is taken for, also one of NumPy's. Throws TypeError for what is none.
py::object ToPlain(py::handle value);
/// Takes a bool, a str, and whatever Python takes for a number; throws TypeError for anything else.
void SetValue(EEToken& token, py::handle value);
/// What a value is taken for, as the text of a setting or a variable of commands. Throws ValueError for a number that
/// is not finite, which would be read as a text.
WString WriteValue(py::handle value);
