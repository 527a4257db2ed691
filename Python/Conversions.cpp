#include "Conversions.h"

#include <memory>
#include <string_view>

static WString ToWide(PyObject* text)
{
    constexpr Py_ssize_t few = 128; // that need no memory of their own
    wchar_t characters[few];
    if (PyUnicode_GetLength(text) <= few) {
        const Py_ssize_t length = PyUnicode_AsWideChar(text, characters, few);
        if (length < 0)
            throw py::error_already_set();
        return WString(characters, static_cast<std::size_t>(length));
    }
    Py_ssize_t length = 0;
    const std::unique_ptr<wchar_t, decltype(&PyMem_Free)> copy(PyUnicode_AsWideCharString(text, &length), PyMem_Free);
    if (!copy)
        throw py::error_already_set();
    return WString(copy.get(), static_cast<std::size_t>(length));
}

WString ToText(const py::str& text)
{
    WString wide = ToWide(text.ptr());
    if (wide.View().find(L'\0') != std::wstring_view::npos)
        throw py::value_error("embedded null character");
    return wide;
}

py::str ToPython(const WString& text)
{
    PyObject* const converted = PyUnicode_FromWideChar(text.ToCString(), static_cast<Py_ssize_t>(text.Length()));
    if (!converted)
        throw py::error_already_set();
    return py::reinterpret_steal<py::str>(converted);
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

/// What a comparison of NumPy's values gives is a number to Python, but meant as a boolean.
static bool IsTruth(py::handle value)
{
    return PyBool_Check(value.ptr()) || std::string_view(Py_TYPE(value.ptr())->tp_name).starts_with("numpy.bool");
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
        token.SetValue(PyObject_IsTrue(value.ptr()) == 1);
    else if (PyUnicode_Check(value.ptr()))
        token.SetValue(ToText(py::reinterpret_borrow<py::str>(value)));
    else
        token.SetValue(ToNumber(value));
}

WString WriteValue(py::handle value)
{
    if (IsTruth(value))
        return PyObject_IsTrue(value.ptr()) == 1 ? L"true" : L"false";
    if (PyUnicode_Check(value.ptr()))
        return ToText(py::reinterpret_borrow<py::str>(value));
    if (PyLong_Check(value.ptr()))
        return ToText(py::str(value));
    return ToText(py::repr(py::float_(ToNumber(value))));
}
