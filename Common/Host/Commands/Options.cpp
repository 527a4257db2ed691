#include "Commands/Options.h"

#include "Text/ExitCode.h"
#include "Text/NumberText.h"

#include <algorithm>

Options::Options(const WStringArray& texts)
{
    for (const WString& text : texts)
        options.push_back({text});
}

template <typename Reader>
bool Options::TryRead(const wchar_t* name, unsigned int exitNumber, const Reader& read)
{
    if (options.empty())
        return false;
    const WString wanted(name);
    const Option* given = nullptr;
    for (Option& option : options) {
        if (!option.text.StartsWith(wanted, true))
            continue;
        option.used = true;
        given = &option;
    }
    if (!given)
        return false;
    if (!read(given->text.Substring(static_cast<unsigned int>(wanted.Length())))) {
        refusedOption = L"-" + given->text;
        throw ExitCode(exitNumber);
    }
    return true;
}

bool Options::TryGetFlag(const wchar_t* name, unsigned int exitNumber)
{
    return TryRead(name, exitNumber, [](const WString& text) { return text.IsEmpty(); });
}

bool Options::TryGetInt(const wchar_t* name, unsigned int exitNumber, int& value, int min, int max)
{
    return TryRead(name, exitNumber, [&](const WString& text) { return TryParseWhole(text.View(), value, min, max); });
}

bool Options::TryGetDouble(const wchar_t* name, unsigned int exitNumber, double& value, double min, double max)
{
    return TryRead(name, exitNumber, [&](const WString& text) { return text.TryParseDouble(value, min, max); });
}

bool Options::TryGetString(
    const wchar_t* name, unsigned int exitNumber, WString& value, unsigned int minLength, unsigned int maxLength)
{
    return TryRead(name, exitNumber, [&](const WString& text) {
        const bool serves = text.Length() >= minLength && text.Length() <= maxLength;
        if (serves)
            value = text;
        return serves;
    });
}

bool Options::TryGetFlag(const FlagOption& row)
{
    return TryGetFlag(row.name, row.exitNumber);
}

bool Options::TryGetInt(const WholeNumberOption& row, int& value)
{
    return TryGetInt(row.name, row.exitNumber, value, static_cast<int>(row.least), static_cast<int>(row.greatest));
}

bool Options::TryGetDouble(const NumberOption& row, double& value)
{
    return TryGetDouble(row.name, row.exitNumber, value, row.least, row.greatest);
}

bool Options::TryGetString(const TextOption& row, WString& value)
{
    return TryGetString(
        row.name, row.exitNumber, value, static_cast<unsigned int>(row.least), static_cast<unsigned int>(row.greatest));
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

WString Options::GetLastUnusedOption() const
{
    const auto last = std::find_if(options.rbegin(), options.rend(), [](const Option& option) { return !option.used; });
    return last == options.rend() ? WString() : WString(L"-") + last->text;
}
