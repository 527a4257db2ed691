#pragma once

#include "Commands/OptionRecord.h"
#include "HostApi.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <vector>

/// The options of a command line: each a letter or word behind a dash, with its value attached ("-v", "-c10",
/// "-er9015:*"). Which part is name and which is value is settled when a command asks; names match in any case. Of an
/// option given twice the last counts. Every operation returns false when the option is absent, and throws
/// ExitCode(exitNumber) when it is there with a value that does not serve.
class HOST_API Options
{
public:
    Options() = default;
    /// Takes the options without their dashes.
    explicit Options(const WStringArray& texts);

    bool TryGetFlag(const wchar_t* name, unsigned int exitNumber);
    bool TryGetInt(const wchar_t* name, unsigned int exitNumber, int& value, int min, int max);
    bool TryGetDouble(const wchar_t* name, unsigned int exitNumber, double& value, double min, double max);
    bool TryGetString(
        const wchar_t* name, unsigned int exitNumber, WString& value, unsigned int minLength, unsigned int maxLength);

    /// The same by the row that describes the option.
    bool TryGetFlag(const FlagOption& row);
    bool TryGetInt(const WholeNumberOption& row, int& value);
    bool TryGetDouble(const NumberOption& row, double& value);
    bool TryGetString(const TextOption& row, WString& value);

    /// True while an option was given that no operation asked for.
    bool ContainsUnusedOptions() const noexcept;
    /// The first such option with its dash, or an empty text.
    WString GetUnusedOption() const;
    /// The last such option: what stands right before the argument.
    WString GetLastUnusedOption() const;
    /// The option that was refused for its value, with its dash, or an empty text.
    const WString& GetRefusedOption() const noexcept { return refusedOption; }

private:
    struct Option
    {
        WString text;
        bool used = false;
    };
    std::vector<Option> options;
    WString refusedOption;

    template <typename Reader>
    bool TryRead(const wchar_t* name, unsigned int exitNumber, const Reader& read);
};
