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
    Topic // of Help: a command, a function or one that it tells about
};

/// A part of what a command takes behind its options, for those who only look at command lines (completion, a check of
/// scripts).
struct ArgumentRecord
{
    ArgumentKind kind;
    const wchar_t* separator = L""; // in front of the part, but the first: a keyword in any case, or "=", or a blank
};
