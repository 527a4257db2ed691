#include "ExitCodePattern.h"

#include "Text/CharacterCase.h"
#include "Text/ExitCode.h"

namespace {
// What the text of a code has had so far, a bit each: the fields before this one and whether this one has a digit.
constexpr unsigned int start = 1;
constexpr unsigned int fieldBegun = 0b101010;
constexpr unsigned int fieldEmpty = 0b010101;
constexpr unsigned int end = 1u << 5; // all three fields

constexpr unsigned int AfterDigit(unsigned int states)
{
    return (states & fieldBegun) | ((states & fieldEmpty) << 1);
}

constexpr unsigned int AfterColon(unsigned int states)
{
    return (states & fieldBegun & ~end) << 1;
}

constexpr unsigned int AfterAny(unsigned int states)
{
    return AfterDigit(states) | AfterColon(states);
}
} // namespace

bool CanMatchFailure(const WString& pattern)
{
    unsigned int states = start;
    bool hasWildcard = false;
    for (const wchar_t ch : pattern) {
        hasWildcard = hasWildcard || ch == L'*' || ch == L'?';
        if (ch == L'*') {
            for (unsigned int former = 0; former != states;) {
                former = states;
                states |= AfterAny(states);
            }
        } else {
            states = ch == L'?'      ? AfterAny(states)
                : ch == L':'         ? AfterColon(states)
                : IsDecimalDigit(ch) ? AfterDigit(states)
                                     : 0;
        }
    }
    ExitCode code;
    if (!hasWildcard)
        return ExitCode::TryParse(pattern, code) && code.ToString() == pattern && code.IsError();
    return (states & end) != 0;
}
