#include "PromptCommands.h"

#include "Commands/CommandLine.h"
#include "Commands/CommandRunner.h"
#include "Commands/ScriptAssistant.h"
#include "Text/CharacterCase.h"

#include <algorithm>
#include <iterator>

namespace {
using View = std::wstring_view;

View SkipName(View text)
{
    return {std::ranges::find_if_not(text, IsNameCharacter), text.end()};
}

View SkipBlanks(View text)
{
    return {std::ranges::find_if_not(text, IsWhiteSpace), text.end()};
}

/// assignment: name "=" ..., where the name begins with a letter: "1=1" is a comparison
bool IsAssignment(View text)
{
    const View rest = IsDecimalDigit(text.front()) ? text : SkipName(text);
    return rest.size() < text.size() && SkipBlanks(rest).starts_with(L'=');
}

bool BeginsLikeExpression(View text)
{
    constexpr View openings = L"0123456789(\"%+-";
    constexpr View behindName = L"(+-*/^&<>";
    if (openings.find(text.front()) != View::npos)
        return true;
    const View rest = SkipName(text);
    return rest.size() < text.size() && !rest.empty() && behindName.find(rest.front()) != View::npos;
}

bool IsOperator(View word)
{
    constexpr View operators[] = {L"+", L"-", L"*", L"/", L"^", L"&", L"<", L">", L"=", L"<=", L">=", L"<>"};
    return std::ranges::find(operators, word) != std::end(operators);
}

/// A sign in front is not to be taken for an option.
WString MakeCalc(const WString& expression)
{
    return (expression.Trim().StartsWith(L"-", false) ? L"Calc -- " : L"Calc ") + expression;
}
} // namespace

bool PromptCommands::TryReadLine(std::string& line)
{
    if (!source.TryReadLine(line))
        return false;
    typed = WString::FromUtf8(line);
    if (line.size() <= CommandRunner::maxLineLength)
        line = MakeCommand().ToUtf8();
    return true;
}

WString PromptCommands::MakeCommand() const
{
    WString name;
    WString rest;
    CommandLine::SplitName(typed, name, rest);
    if (name.IsEmpty() || name.StartsWith(L"#", false) || CommandRegistry::FindOrNull(name))
        return typed;
    if (name[0] == L'?')
        return L"Help " + typed.Trim().Substring(1);
    if (EqualsIgnoreCase(name.View(), L"quit"))
        return L"Exit " + rest;
    const View text = SkipBlanks(typed.View());
    if (IsAssignment(text))
        return L"Set " + typed;
    return BeginsLikeExpression(text) || BeginsWithName(name, rest) ? MakeCalc(typed) : typed;
}

/// name [ operator ... ], where the name has a value, that of a variable or one of its own, such as pi; or where blanks
/// around the operator tell it from the beginning of an option
bool PromptCommands::BeginsWithName(const WString& name, const WString& rest) const
{
    constexpr View operators = L"+-*/^&<>=";
    WString word;
    WString behind;
    CommandLine::SplitName(rest, word, behind);
    if (IsOperator(word.View()) && !behind.IsEmpty() && SkipName(name.View()).empty())
        return true;
    if (rest.StartsWith(L"(", false))
        return IsPartOfExpression(name, name + L"(");
    if (!environment.ContainsKey(name) && !IsPartOfExpression(name, name))
        return false;
    return rest.IsEmpty() || operators.find(rest[0]) != View::npos || IsPartOfExpression(name + L" " + word, word);
}

/// Whether an expression that begins like that may end in the word, as the completion knows.
bool PromptCommands::IsPartOfExpression(const WString& beginning, const WString& word) const
{
    const ScriptAssistant* const assistant = ScriptAssistant::GetOrNull();
    if (!assistant)
        return false;
    const WString line = L"Calc " + beginning;
    const auto candidates = assistant->Complete(line.View(), line.Length(), environment).candidates;
    return std::ranges::any_of(candidates,
        [&](const Completion::Candidate& candidate) { return candidate.text.Trim().Equals(word.View(), true); });
}
