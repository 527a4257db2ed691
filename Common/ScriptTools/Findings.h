#pragma once

#include "LineParts.h"
#include "Text/WString.h"

/// The codes of what is found in commands and scripts. FINDINGS.TXT explains each.
namespace Findings {
// Errors
inline constexpr const wchar_t* UnknownCommand = L"S001";
inline constexpr const wchar_t* UnknownOption = L"S002";
inline constexpr const wchar_t* BadOptionValue = L"S003";
inline constexpr const wchar_t* WrongArguments = L"S004";
inline constexpr const wchar_t* MissingKeyword = L"S005";
inline constexpr const wchar_t* MissingList = L"S006";
inline constexpr const wchar_t* MissingQuote = L"S007";
inline constexpr const wchar_t* MalformedReference = L"S008";
inline constexpr const wchar_t* BadName = L"S009";
inline constexpr const wchar_t* NoScript = L"S010";
inline constexpr const wchar_t* Recursion = L"S011";
inline constexpr const wchar_t* TooLong = L"S012";
inline constexpr const wchar_t* BadNumber = L"S013";
inline constexpr const wchar_t* DeletedAndAssigned = L"S014";
// Warnings
inline constexpr const wchar_t* DeadPattern = L"S020";
inline constexpr const wchar_t* VariableNotSet = L"S021";
inline constexpr const wchar_t* UnknownStatusItem = L"S022";
inline constexpr const wchar_t* UnknownSetting = L"S023";
inline constexpr const wchar_t* UnknownCounter = L"S024";
inline constexpr const wchar_t* Unreachable = L"S025";
inline constexpr const wchar_t* EndlessLoop = L"S026";
inline constexpr const wchar_t* CutList = L"S027";
inline constexpr const wchar_t* SwallowedFailure = L"S028";
inline constexpr const wchar_t* OptionTwice = L"S029";
inline constexpr const wchar_t* CommentBehind = L"S030";
inline constexpr const wchar_t* SpoiltBackslash = L"S031";
inline constexpr const wchar_t* NearlyElse = L"S032";
} // namespace Findings

/// A finding within a command line, at a place of that.
struct LineFinding
{
    bool isError = false;
    const wchar_t* code = L"";
    Span place{};
    WString message;
    WString suggestion{}; // may be empty
};
