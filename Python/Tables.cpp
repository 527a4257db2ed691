#include "Tables.h"

/// Throws ValueError for a name that no expression can have.
static void RequireVariableName(const WString& name)
{
    if (!IsName(name, L"."))
        throw py::value_error("a name has up to 63 letters of English, digits, '_' and '.', and begins with no digit");
}

py::object VariableTable::Get(const WString& name)
{
    const Session::Turn turn(*session);
    const EEToken& token = *session->map.GetVariable(name.ToCString());
    return token.IsNa() ? py::object() : ToPython(token);
}

void VariableTable::Set(const WString& name, py::handle value)
{
    RequireVariableName(name);
    EEToken token;
    SetValue(token, value);
    const Session::Turn turn(*session);
    session->map.SetVariable(name.ToCString(), token);
}

/// A variable without a value is none to an expression.
bool VariableTable::TryDelete(const WString& name)
{
    const Session::Turn turn(*session);
    EEToken& token = *session->map.GetVariable(name.ToCString());
    if (token.IsNa())
        return false;
    token.SetNA();
    return true;
}

WStringArray VariableTable::GetNames()
{
    const Session::Turn turn(*session);
    WStringArray names;
    for (ObjectHashTableIterator entry = session->map.Begin(); !entry.IsAtEnd(); entry.MoveToNext())
        if (!static_cast<const EEToken&>(*entry.GetObject()).IsNa())
            names.Add(entry.GetKey());
    names.Sort();
    return names;
}

py::object EnvironmentTable::Get(const WString& name)
{
    const Session::Turn turn(*session);
    WString text;
    return session->environment.TryGetString(name, text) ? ReadValue(text) : py::object();
}

void EnvironmentTable::Set(const WString& name, py::handle value)
{
    RequireVariableName(name);
    const WString text = WriteValue(value);
    const Session::Turn turn(*session);
    session->environment.SetString(name, text);
}

bool EnvironmentTable::TryDelete(const WString& name)
{
    const Session::Turn turn(*session);
    return session->environment.TryDelete(name);
}

WStringArray EnvironmentTable::GetNames()
{
    const Session::Turn turn(*session);
    WStringArray names;
    session->environment.GetKeys(names);
    names.Sort();
    return names;
}
