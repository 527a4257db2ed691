#include "Conversions.h"

#include "Text/CharacterCase.h"

#include <algorithm>
#include <cmath>
#include <memory>

/// What Python's interface has made; null stands for its exception.
static PyObject* Require(PyObject* made)
{
    if (!made)
        throw py::error_already_set();
    return made;
}

static WString ToWide(PyObject* text)
{
    constexpr Py_ssize_t few = 128; // that need no memory of their own
    wchar_t characters[few];
    Py_ssize_t length = PyUnicode_GetLength(text);
    if (length <= few && PyUnicode_KIND(text) == PyUnicode_1BYTE_KIND) {
        std::copy_n(PyUnicode_1BYTE_DATA(text), length, characters);
        return WString(characters, static_cast<std::size_t>(length));
    }
    const std::unique_ptr<wchar_t, decltype(&PyMem_Free)> copy(PyUnicode_AsWideCharString(text, &length), PyMem_Free);
    if (!copy)
        throw py::error_already_set();
    return WString(copy.get(), static_cast<std::size_t>(length));
}

WString ToText(py::handle text)
{
    if (!PyUnicode_Check(text.ptr())) {
        PyErr_Format(PyExc_TypeError, "must be str, not %.200s", Py_TYPE(text.ptr())->tp_name);
        throw py::error_already_set();
    }
    WString wide = ToWide(text.ptr());
    if (wide.View().find(L'\0') != std::wstring_view::npos)
        throw py::value_error("embedded null character");
    return wide;
}

py::str ToPython(const WString& text)
{
    return py::reinterpret_steal<py::str>(
        Require(PyUnicode_FromWideChar(text.ToCString(), static_cast<Py_ssize_t>(text.Length()))));
}

py::list ToPython(const WStringArray& texts)
{
    py::list list;
    for (const WString& text : texts)
        list.append(ToPython(text));
    return list;
}

py::object ToPython(const EEToken& token)
{
    double number = 0;
    bool truth = false;
    WString text;
    if (token.TryGetValue(&number, nullptr))
        return py::float_(number);
    if (token.TryGetValue(&truth))
        return py::bool_(truth);
    if (token.TryGetValue(text))
        return ToPython(text);
    return py::none();
}

py::object ReadValue(const WString& text)
{
    double number = 0;
    bool truth = false;
    if (text.TryParseDouble(number))
        return py::float_(number);
    if (text.TryGetBool(truth))
        return py::bool_(truth);
    return ToPython(text);
}

bool IsName(const WString& text, std::wstring_view notInFront)
{
    constexpr unsigned int maxLength = 63;
    return !text.IsEmpty() && text.Length() <= maxLength && !IsDecimalDigit(text[0]) &&
        notInFront.find(text[0]) == std::wstring_view::npos && std::all_of(text.begin(), text.end(), IsNameCharacter);
}

/// Whether it is a bool, or what a comparison of NumPy's values gives.
static bool IsTruth(py::handle value)
{
    return PyBool_Check(value.ptr()) || std::string_view(Py_TYPE(value.ptr())->tp_name).starts_with("numpy.bool");
}

static bool ToTruth(py::handle value)
{
    const int truth = PyObject_IsTrue(value.ptr());
    if (truth < 0)
        throw py::error_already_set();
    return truth == 1;
}

static double ToNumber(py::handle value)
{
    const double number = PyFloat_AsDouble(value.ptr());
    if (number == -1 && PyErr_Occurred())
        throw py::error_already_set();
    return number;
}

void SetValue(EEToken& token, py::handle value)
{
    if (IsTruth(value))
        token.SetValue(ToTruth(value));
    else if (PyUnicode_Check(value.ptr()))
        token.SetValue(ToText(value));
    else
        token.SetValue(ToNumber(value));
}

/// An int for a whole number, else a null object. Some of NumPy's arrays only seem to be one.
static py::object ToWhole(py::handle value)
{
    if (!PyIndex_Check(value.ptr()))
        return {};
    auto whole = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
    if (!whole && !PyErr_ExceptionMatches(PyExc_TypeError))
        throw py::error_already_set();
    PyErr_Clear();
    return whole;
}

py::object ToPlain(py::handle value)
{
    if (IsTruth(value))
        return py::bool_(ToTruth(value));
    if (PyUnicode_Check(value.ptr()))
        return py::reinterpret_borrow<py::object>(value);
    if (py::object whole = ToWhole(value))
        return whole;
    return py::float_(ToNumber(value));
}

WString WriteValue(py::handle value)
{
    const py::object plain = ToPlain(value);
    if (PyBool_Check(plain.ptr()))
        return plain.is(py::handle(Py_True)) ? L"true" : L"false";
    if (PyUnicode_Check(plain.ptr()))
        return ToText(plain);
    if (PyLong_Check(plain.ptr()))
        return ToText(py::reinterpret_steal<py::object>(Require(PyNumber_ToBase(plain.ptr(), 10))));
    if (!std::isfinite(PyFloat_AS_DOUBLE(plain.ptr())))
        throw py::value_error("the number is not finite");
    return ToText(py::repr(plain));
}
