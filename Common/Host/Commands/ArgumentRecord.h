#pragma once

enum class ArgumentKind
{
    Text, // anything
    Expression,
    Command,
    CommandList, // separated by ";" or what the option -l says
    Variable,
    StatusItem,
    Setting, // "[section]key"
    Counter,
    Event,
    Log,
    Test,
    File,
    Topic, // of Help: a command, a function or one that it tells about
    ExitCodePattern,
    Number,
    WholeNumber
};

/// A part of what a command takes behind its options, for those who only look at command lines (completion, a check of
/// scripts).
struct ArgumentRecord
{
    ArgumentKind kind;
    const wchar_t* separator = L""; // in front of the part, but the first: a keyword in any case, or "=", or a blank
    bool isOptional = false;        // it may be left out with its separator
    bool mayBeEmpty = false;        // the command does not mind when nothing stands behind the separator
    double least = 0;               // of a number
    double greatest = 0;
    const wchar_t* noun = L""; // what a number is: "time from 0 to 86400 seconds"
};

/// A number within limits; other texts are refused as "<text> is no <noun>".
struct NumberArgument : ArgumentRecord
{
    constexpr NumberArgument(double least, double greatest, const wchar_t* noun)
        : ArgumentRecord{ArgumentKind::Number, L"", false, false, least, greatest, noun}
    {}
};

struct WholeNumberArgument : ArgumentRecord
{
    constexpr WholeNumberArgument(int least, int greatest, const wchar_t* noun)
        : ArgumentRecord{ArgumentKind::WholeNumber, L"", false, false, static_cast<double>(least),
              static_cast<double>(greatest), noun}
    {}
};
