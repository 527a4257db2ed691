#pragma once

enum class OptionKind
{
    Flag,
    WholeNumber,
    Number,
    Text,
    File,
    ExitCodePatterns
};

/// An option of a command: what reading it takes, and what those who only look at it (completion, a check of scripts)
/// tell their users.
struct OptionRecord
{
    const wchar_t* name; // as users type it, without the dash; matches in any case
    OptionKind kind;
    unsigned int exitNumber; // ends the command when the option has a value that does not serve
    double least;            // least and greatest value, or length of a text; none for a flag
    double greatest;
    const wchar_t* purpose; // one line for people
};

// The rows of each kind, so that no command reads an option as another kind than its table says.

struct FlagOption : OptionRecord
{
    constexpr FlagOption(const wchar_t* name, unsigned int exitNumber, const wchar_t* purpose)
        : OptionRecord{name, OptionKind::Flag, exitNumber, 0, 0, purpose}
    {}
};

struct WholeNumberOption : OptionRecord
{
    constexpr WholeNumberOption(
        const wchar_t* name, unsigned int exitNumber, int least, int greatest, const wchar_t* purpose)
        : OptionRecord{name, OptionKind::WholeNumber, exitNumber, static_cast<double>(least),
              static_cast<double>(greatest), purpose}
    {}
};

struct NumberOption : OptionRecord
{
    constexpr NumberOption(
        const wchar_t* name, unsigned int exitNumber, double least, double greatest, const wchar_t* purpose)
        : OptionRecord{name, OptionKind::Number, exitNumber, least, greatest, purpose}
    {}
};

struct TextOption : OptionRecord
{
    constexpr TextOption(const wchar_t* name, unsigned int exitNumber, unsigned int minLength, unsigned int maxLength,
        const wchar_t* purpose)
        : OptionRecord{name, OptionKind::Text, exitNumber, static_cast<double>(minLength),
              static_cast<double>(maxLength), purpose}
    {}
};

/// A text that names a file.
struct FileOption : TextOption
{
    constexpr FileOption(const wchar_t* name, unsigned int exitNumber, unsigned int minLength, unsigned int maxLength,
        const wchar_t* purpose)
        : TextOption(name, exitNumber, minLength, maxLength, purpose)
    {
        kind = OptionKind::File;
    }
};

/// Patterns of exit codes, separated by ";" or ",".
struct ExitCodePatternsOption : TextOption
{
    constexpr ExitCodePatternsOption(const wchar_t* name, unsigned int exitNumber, unsigned int minLength,
        unsigned int maxLength, const wchar_t* purpose)
        : TextOption(name, exitNumber, minLength, maxLength, purpose)
    {
        kind = OptionKind::ExitCodePatterns;
    }
};
