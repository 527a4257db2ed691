#include "PromptCommands.h"

#include "Commands/CommandLine.h"
#include "Commands/CommandRunner.h"
#include "Commands/ScriptAssistant.h"
#include "Text/CharacterCase.h"

#include <algorithm>

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
    return BeginsLikeExpression(text) || BeginsWithValue(name, rest) ? MakeCalc(typed) : typed;
}

/// name [ operator ... ], where the name has a value: that of a variable, or one of its own, such as pi
bool PromptCommands::BeginsWithValue(const WString& name, const WString& rest) const
{
    constexpr View operators = L"+-*/^&<>=";
    if (!environment.ContainsKey(name) && !IsPartOfExpression(name))
        return false;
    if (rest.IsEmpty() || operators.find(rest[0]) != View::npos)
        return true;
    WString word;
    WString behind;
    CommandLine::SplitName(rest, word, behind);
    return IsPartOfExpression(name + L" " + word);
}

/// Whether an expression that begins like that may have its last word there, as the completion knows.
bool PromptCommands::IsPartOfExpression(const WString& text) const
{
    const ScriptAssistant* const assistant = ScriptAssistant::GetOrNull();
    if (!assistant)
        return false;
    const WString line = L"Calc " + text;
    const Completion completion = assistant->Complete(line.View(), line.Length(), environment);
    const View word = line.View().substr(completion.start);
    return std::ranges::any_of(completion.candidates,
        [&](const Completion::Candidate& candidate) { return EqualsIgnoreCase(candidate.text.Trim().View(), word); });
}
