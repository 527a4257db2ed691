#include "ExpressionEvaluator.h"

#include "EvaluatorErrors.h"
#include "Instrument/System.h"
#include "Text/ReferenceText.h"

#include <cwchar>
#include <limits>

using ReferenceText::Fault;

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

/// The text up to the end of a reference, or up to its own: what follows need not be measured.
std::wstring_view ViewToBrace(const wchar_t* text)
{
    const wchar_t* brace = std::wcschr(text, L'}');
    return brace ? std::wstring_view(text, brace + 1) : std::wstring_view(text);
}

/// Takes the name of what was read at `start`, and moves the cursor behind it; or records what is wrong.
bool TryTakeName(ExpressionEvaluator& evaluator, const ReferenceText::Reference& reference, wchar_t* start,
    wchar_t** cursor, WString& name)
{
    wchar_t* const end = start + reference.end;
    if (reference.fault == Fault::Opening)
        return evaluator.Fail(Errors::ReferenceStartExpected, end + 1);
    if (reference.fault == Fault::Closing)
        return evaluator.Fail(Errors::ReferenceEndExpected, end);
    *cursor = end;
    name = WString(reference.name);
    return true;
}

/// Puts the value of an item into the token; false when its type is none that expressions read, or its text is not of
/// the type.
bool TrySetStatus(EEToken& token, const StatusValue& item)
{
    switch (item.type) {
    case ST_Bool:
        if (bool value = false; item.TryGetBool(value))
            return token.SetValue(value), true;
        return false;
    case ST_Double:
        if (double value = 0; item.TryGetDouble(value))
            return token.SetValue(value), true;
        return false;
    case ST_String:
        if (WString value; item.TryGetString(value))
            return token.SetValue(value), true;
        return false;
    case ST_ExitCode:
        if (ExitCode value; item.TryGetExitCode(value))
            return token.SetValue(value.ToCString()), true;
        return false;
    case ST_Int:
        if (int value = 0; item.TryGetInt(value, smallestInt, largestInt))
            return token.SetValue(static_cast<double>(value)), true;
        return false;
    case ST_UInt:
    case ST_UInt64:
        if (unsigned int value = 0; item.TryGetUInt(value, 0, largestUInt))
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
    wchar_t* const start = *cursor;
    if (*start != L'%')
        return false;
    token.SetNA(); // for the log, should nothing be read
    const ReferenceText::Reference reference = ReferenceText::Read(ViewToBrace(start));
    *cursor = start + 2;
    if (reference.fault == Fault::Kind)
        return Fail(Errors::ReferenceTypeInvalid, *cursor);
    if (reference.kind == L'E' && !hasEnvironment)
        return Fail(Errors::EnvironmentUnsupported, *cursor);

    WString name;
    if (!TryTakeName(*this, reference, start, cursor, name))
        return false;
    const wchar_t* at = start + 4; // the errors of a value are placed behind the first character of its name
    switch (reference.kind) {
    case L'S': return TryGetStatusValue(token, name, at);
    case L'C': return TryGetConfigValue(token, name, at);
    case L'U': return TryGetUsageLogValue(token, name, at);
    default: return TryGetEnvironmentVariableValue(token, name, true, at);
    }
}

bool ExpressionEvaluator::TryGetSystemVariableName(wchar_t** cursor, WString& name)
{
    name.Clear();
    return TryTakeName(*this, ReferenceText::ReadName(ViewToBrace(*cursor)), *cursor, cursor, name);
}

bool ExpressionEvaluator::TryGetStatusValue(EEToken& token, const WString& name, const wchar_t* at)
{
    const bool read = TryGetStatusValueNoLog(token, name, at);
    LogIfEnabled(L"Status:", name, token);
    return read;
}

bool ExpressionEvaluator::TryGetStatusValueNoLog(EEToken& token, const WString& name, const wchar_t* at)
{
    StatusValue item;
    if (!ReadsInstrument() || !System::status.TryGet(name, item)) {
        token.SetMissingVariable(Reference(L"%S{", name));
        return true;
    }
    if (TrySetStatus(token, item))
        return true;
    const WString message = WString::Format(Errors::StatusInaccessible.message, static_cast<int>(item.type));
    ErrMsg(Errors::StatusInaccessible.number, at, message.ToCString());
    return false;
}

bool ExpressionEvaluator::TryGetConfigValue(EEToken& token, const WString& name, const wchar_t* at)
{
    const bool read = TryGetConfigValueNoLog(token, name, at);
    LogIfEnabled(L"Config:", name, token);
    return read;
}

bool ExpressionEvaluator::TryGetConfigValueNoLog(EEToken& token, const WString& name, const wchar_t* at)
{
    const ReferenceText::SettingName setting = ReferenceText::ReadSettingName(name.View());
    if (setting.fault != Fault::None) {
        const bool unclosed = setting.fault == Fault::SectionEnd;
        const EvaluatorError& error = unclosed ? Errors::ConfigSectionUnclosed : Errors::ConfigSectionMissing;
        ErrMsg(error.number, at, WString::Format(error.message, name).ToCString());
        return false;
    }
    WString text;
    if (ReadsInstrument() && System::config.TryGetString(WString(setting.section), WString(setting.key), text))
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
    if (ReadsInstrument() && System::usage.TryGetUsageValue(name.ToCString(), value))
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
