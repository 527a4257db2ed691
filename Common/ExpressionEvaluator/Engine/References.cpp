#include "ExpressionEvaluator.h"

#include "EvaluatorErrors.h"
#include "Instrument/System.h"

#include <limits>

namespace {
constexpr int largestInt = std::numeric_limits<int>::max();
constexpr int smallestInt = std::numeric_limits<int>::min();
constexpr unsigned int largestUInt = std::numeric_limits<unsigned int>::max();

/// Makes an operand of the type that the text of a setting or variable shows.
void SetTypedValue(EEToken& token, const WString& text)
{
    double number = 0;
    bool truth = false;
    if (text.TryParseDouble(number))
        token.SetValue(number);
    else if (text.TryGetBool(truth))
        token.SetValue(truth);
    else
        token.SetValue(text);
}

/// The reference as it is written, which names it when it is missing.
WString Reference(const wchar_t* opening, const WString& name)
{
    return WString(opening) + name + L"}";
}

/// Reads an item into the token by the item's type.
bool TryReadStatus(EEToken& token, const WString& name, int type)
{
    const StatusTable& status = System::status;
    switch (type) {
    case ST_Bool:
        if (bool value = false; status.TryGetBool(name, value))
            return token.SetValue(value), true;
        return false;
    case ST_Double:
        if (double value = 0; status.TryGetDouble(name, value))
            return token.SetValue(value), true;
        return false;
    case ST_String:
        if (WString value; status.TryGetString(name, value))
            return token.SetValue(value), true;
        return false;
    case ST_ExitCode:
        if (ExitCode value; status.TryGetExitCode(name, value))
            return token.SetValue(value.ToCString()), true;
        return false;
    case ST_Int:
        if (int value = 0; status.TryGetInt(name, value, smallestInt, largestInt))
            return token.SetValue(static_cast<double>(value)), true;
        return false;
    case ST_UInt:
    case ST_UInt64:
        if (unsigned int value = 0; status.TryGetUInt(name, value, 0, largestUInt))
            return token.SetValue(static_cast<double>(value)), true;
        return false;
    default: return false;
    }
}
} // namespace

void ExpressionEvaluator::LogIfEnabled(const wchar_t* prefix, const WString& name, const EEToken& token)
{
    if (IsLogging())
        LogVariable(prefix, name, token);
}

/// reference: "%" kind "{" name "}"
bool ExpressionEvaluator::TryGetSystemVariable(EEToken& token, wchar_t** cursor)
{
    if (**cursor != L'%')
        return false;
    const wchar_t* reference = *cursor;
    const wchar_t kind = reference[1] & ~L' '; // the upper case of a letter
    token.SetNA();                             // for the log, should nothing be read
    *cursor += 2;
    if (kind != L'S' && kind != L'C' && kind != L'U' && kind != L'E')
        return Fail(Errors::ReferenceTypeInvalid, *cursor);
    if (kind == L'E' && !hasEnvironment)
        return Fail(Errors::EnvironmentUnsupported, *cursor);

    WString name;
    if (!TryGetSystemVariableName(cursor, name))
        return false;
    const wchar_t* at = reference + 4; // the errors of a value are placed behind the first character of its name
    switch (kind) {
    case L'S': return TryGetStatusValue(token, name, at);
    case L'C': return TryGetConfigValue(token, name, at);
    case L'U': return TryGetUsageLogValue(token, name, at);
    default: return TryGetEnvironmentVariableValue(token, name, true, at);
    }
}

bool ExpressionEvaluator::TryGetSystemVariableName(wchar_t** cursor, WString& name)
{
    name.Clear();
    if (**cursor != L'{')
        return Fail(Errors::ReferenceStartExpected, *cursor + 1);
    const wchar_t* start = *cursor + 1;
    wchar_t* end = *cursor + 1;
    while (*end != L'}')
        if (*end++ == 0)
            return Fail(Errors::ReferenceEndExpected, end - 1);
    *cursor = end + 1;
    name = WString(start, static_cast<std::size_t>(end - start)).Trim();
    return true;
}

bool ExpressionEvaluator::TryGetStatusValue(EEToken& token, const WString& name, const wchar_t* at)
{
    const bool read = TryGetStatusValueNoLog(token, name, at);
    LogIfEnabled(L"Status:", name, token);
    return read;
}

bool ExpressionEvaluator::TryGetStatusValueNoLog(EEToken& token, const WString& name, const wchar_t* at)
{
    if (!System::status.ContainsItem(name)) {
        token.SetMissingVariable(Reference(L"%S{", name));
        return true;
    }
    const int type = System::status.GetItemType(name);
    if (TryReadStatus(token, name, type))
        return true;
    ErrMsg(
        Errors::StatusInaccessible.number, at, WString::Format(Errors::StatusInaccessible.message, type).ToCString());
    return false;
}

bool ExpressionEvaluator::TryGetConfigValue(EEToken& token, const WString& name, const wchar_t* at)
{
    const bool read = TryGetConfigValueNoLog(token, name, at);
    LogIfEnabled(L"Config:", name, token);
    return read;
}

/// name: "[" section "]" key | section blank key
bool ExpressionEvaluator::TryGetConfigValueNoLog(EEToken& token, const WString& name, const wchar_t* at)
{
    const bool bracketed = name.StartsWith(L"[", false);
    const std::size_t start = bracketed ? 1 : 0;
    const std::size_t end = name.View().find_first_of(bracketed ? L"]" : L" \t");
    if (end == std::wstring_view::npos) {
        const EvaluatorError& error = bracketed ? Errors::ConfigSectionUnclosed : Errors::ConfigSectionMissing;
        ErrMsg(error.number, at, WString::Format(error.message, name).ToCString());
        return false;
    }
    const WString section = WString(name.View().substr(start, end - start)).Trim();
    const WString key = WString(name.View().substr(end + 1)).Trim();

    WString text;
    if (System::config.TryGetString(section, key, text))
        SetTypedValue(token, text);
    else
        token.SetMissingVariable(Reference(L"%C{", name));
    return true;
}

bool ExpressionEvaluator::TryGetUsageLogValue(EEToken& token, const WString& name, const wchar_t* at)
{
    const bool read = TryGetUsageLogValueNoLog(token, name, at);
    LogIfEnabled(L"Usage:", name, token);
    return read;
}

bool ExpressionEvaluator::TryGetUsageLogValueNoLog(EEToken& token, const WString& name, const wchar_t*)
{
    int value = 0;
    if (System::usage.TryGetUsageValue(name.ToCString(), value))
        token.SetValue(static_cast<double>(value));
    else
        token.SetMissingVariable(Reference(L"%U{", name));
    return true;
}

bool ExpressionEvaluator::TryGetEnvironmentVariableValue(
    EEToken& token, const WString& name, bool reference, const wchar_t* at)
{
    const bool read = TryGetEnvironmentVariableValueNoLog(token, name, reference, at);
    LogIfEnabled(L"Environment:", name, token);
    return read;
}

bool ExpressionEvaluator::TryGetEnvironmentVariableValueNoLog(
    EEToken& token, const WString& name, bool reference, const wchar_t*)
{
    if (!TryGetEnvironmentVariableValue(token, name))
        token.SetMissingVariable(reference ? Reference(L"%E{", name) : name);
    return true;
}

bool ExpressionEvaluator::TryGetEnvironmentVariableValue(EEToken& token, const WString& name)
{
    WString text;
    if (!environment.TryGetString(name, text))
        return false;
    SetTypedValue(token, text);
    return true;
}
