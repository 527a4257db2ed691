#include "Commands/Options.h"

#include "Text/ExitCode.h"
#include "Text/WholeNumber.h"

namespace {
bool Accept(bool serves, unsigned int exitNumber)
{
    if (!serves)
        throw ExitCode(exitNumber);
    return true;
}
} // namespace

Options::Options(const WStringArray& texts)
{
    for (const WString& text : texts)
        options.push_back({text});
}

bool Options::TryFind(const wchar_t* name, WString& value)
{
    const WString wanted(name);
    bool found = false;
    for (Option& option : options) {
        if (!option.text.StartsWith(wanted, true))
            continue;
        option.used = true;
        found = true;
        value = option.text.Substring(static_cast<unsigned int>(wanted.Length()));
    }
    return found;
}

bool Options::TryGetFlag(const wchar_t* name, unsigned int exitNumber)
{
    WString text;
    return TryFind(name, text) && Accept(text.IsEmpty(), exitNumber);
}

bool Options::TryGetInt(const wchar_t* name, unsigned int exitNumber, int& value, int min, int max)
{
    WString text;
    return TryFind(name, text) && Accept(TryParseWhole(text.View(), value, min, max), exitNumber);
}

bool Options::TryGetDouble(const wchar_t* name, unsigned int exitNumber, double& value, double min, double max)
{
    WString text;
    return TryFind(name, text) && Accept(text.TryParseDouble(value, min, max), exitNumber);
}

bool Options::TryGetString(
    const wchar_t* name, unsigned int exitNumber, WString& value, unsigned int minLength, unsigned int maxLength)
{
    WString text;
    if (!TryFind(name, text))
        return false;
    Accept(text.Length() >= minLength && text.Length() <= maxLength, exitNumber);
    value = text;
    return true;
}

bool Options::ContainsUnusedOptions() const noexcept
{
    for (const Option& option : options) {
        if (!option.used)
            return true;
    }
    return false;
}

WString Options::GetUnusedOption() const
{
    for (const Option& option : options) {
        if (!option.used)
            return WString(L"-") + option.text;
    }
    return WString();
}
