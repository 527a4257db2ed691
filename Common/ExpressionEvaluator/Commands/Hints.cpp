#include "Hints.h"

#include "Commands/Reference.h"
#include "EEMissingVariableException.h"
#include "EvaluatorErrors.h"
#include "ExpressionEvaluator.h"
#include "NameCharacters.h"
#include "OperatorTable.h"
#include "Text/CharacterCase.h"
#include "Text/QuoteTracker.h"
#include "Text/ReferenceText.h"
#include "Text/SimilarName.h"

#include <algorithm>
#include <functional>

namespace {
using View = std::wstring_view;

bool IsReference(const WString& name)
{
    return name.StartsWith(L"%", false);
}

/// The length of the word or reference at the start of the text, or 0.
std::size_t MeasureName(View text)
{
    if (text.front() == L'%') {
        const ReferenceText::Reference reference = ReferenceText::Read(text);
        return reference.fault == ReferenceText::Fault::None ? reference.end : 0;
    }
    const auto isNameCharacter = [](wchar_t ch) { return NameCharacters::Default()->Contains(ch); };
    return static_cast<std::size_t>(std::ranges::find_if_not(text, isNameCharacter) - text.begin());
}

/// Calls `take` with the words, numbers and references of an expression that stand outside double quotes, each with
/// what follows it, as long as it yields true.
void VisitNames(View text, const std::function<bool(View name, View rest)>& take)
{
    QuoteTracker quotes;
    while (!text.empty()) {
        const bool isOutside = quotes.Next(text) == QuoteTracker::Role::Outside;
        const std::size_t length = isOutside ? MeasureName(text) : 0;
        if (length != 0 && !take(text.substr(0, length), text.substr(length)))
            return;
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
}

bool IsKeyword(View name)
{
    const OperatorRow* const row = FindOperator(name);
    return row && row->IsKeyword();
}

bool Exists(const WString& name, const Environment& environment)
{
    if (IsReference(name))
        return Reference::Exists(name, environment);
    const bool isBuiltIn = std::ranges::any_of(ExpressionEvaluator::GetBuiltInNames(),
        [&](const WString& builtIn) { return EqualsIgnoreCase(builtIn.View(), name.View()); });
    return isBuiltIn || environment.ContainsKey(name);
}

/// The names in an expression that nothing stands for, the first few.
WStringArray FindMissing(const WString& expression, const Environment& environment)
{
    constexpr std::size_t few = 5;
    WStringArray missing;
    VisitNames(expression.View(), [&](View text, View rest) {
        const WString name(text);
        if (!IsDecimalDigit(text.front()) && !rest.starts_with(L'(') && !IsKeyword(text) &&
            !Exists(name, environment) && std::ranges::find(missing, name) == missing.end())
            missing.Add(name);
        return missing.Count() < few;
    });
    return missing;
}

bool IsFunction(const WString& name)
{
    WStringArray names;
    ExpressionEvaluator::GetSupportedFunctions(names);
    return std::ranges::any_of(
        names, [&](const WString& function) { return EqualsIgnoreCase(function.View(), name.View()); });
}

WString NoteMissing(const WString& name, const Environment& environment)
{
    return name + L" does not exist" + Hints::AskForName(name, environment);
}

/// Of two operands in a row one may be meant to be an operator, or is a function without its arguments.
Hints::Explanation ExplainSuperfluous(const WString& expression, const Environment& environment)
{
    Hints::Explanation explanation;
    explanation.question = Hints::AskForKeyword(expression, {L"AND", L"OR", L"XOR"}, environment);
    for (const WString& name : FindMissing(expression, environment)) {
        if (IsFunction(name))
            explanation.notes.Add(name + L" is a function; what it is given stands in parentheses: " + name + L"(...)");
    }
    return explanation;
}

/// The message ends with the function's name.
WString AskForFunction(View message)
{
    WStringArray names;
    ExpressionEvaluator::GetSupportedFunctions(names);
    SimilarName similar(WString(message.substr(message.rfind(L' ') + 1)));
    similar.Offer(names);
    return similar.GetQuestion();
}

/// What a call is given, which `rest` begins with behind its name: texts in double quotes alone, else nothing.
WStringArray ReadTexts(View rest)
{
    WStringArray texts;
    const auto skipBlanks = [&] { rest.remove_prefix(std::min(rest.find_first_not_of(L" \t"), rest.size())); };
    for (wchar_t opening = L'('; rest.starts_with(opening); opening = L',') {
        rest.remove_prefix(1);
        skipBlanks();
        WString text;
        QuoteTracker quotes;
        do {
            if (rest.empty() || (!quotes.IsInside() && rest.front() != L'"'))
                return {};
            if (quotes.Next(rest) == QuoteTracker::Role::Inside)
                text += rest.front();
            rest.remove_prefix(1);
        } while (quotes.IsInside());
        texts.Add(text);
        skipBlanks();
    }
    return rest.starts_with(L')') ? texts : WStringArray();
}

/// Names what a call of a function of that name, a pattern, asks for in vain, and gives nothing for otherwise.
Hints::Explanation ExplainItem(
    const wchar_t* opening, const wchar_t* function, const WString& expression, const Environment& environment)
{
    const bool isSetting = opening[1] == L'C';
    Hints::Explanation explanation;
    VisitNames(expression.View(), [&](View name, View rest) {
        const WStringArray texts = WString(name).IsWildcardMatch(function, true) ? ReadTexts(rest) : WStringArray();
        if (texts.Count() != (isSetting ? 2 : 1))
            return true;
        const WString reference = opening + (isSetting ? L"[" + texts[0] + L"]" + texts[1] : texts[0]) + L"}";
        if (Reference::Exists(reference, environment))
            return true;
        explanation.question = Hints::AskForName(reference, environment);
        if (explanation.question.IsEmpty())
            explanation.notes.Add(NoteMissing(reference, environment));
        return false;
    });
    return explanation;
}

/// The message names what is missing, or is no more than that name.
Hints::Explanation ExplainMissing(const EvaluationError& error, const Environment& environment)
{
    const WString name = PruneVariableName(error.message);
    if (name == error.message)
        return {{}, {NoteMissing(name, environment)}};
    return {Hints::AskForName(name, environment), {}};
}
} // namespace

Hints::Explanation Hints::Explain(const EvaluationError& error, const Environment& environment)
{
    using namespace Errors;
    const unsigned int number = error.code.GetModule() == evaluatorModule ? error.code.GetNumber() : 0;
    Explanation explanation;
    switch (number) {
    case MissingVariable.number: return ExplainMissing(error, environment);
    case UnknownFunction.number: return {AskForFunction(error.message.View()), {}};
    case StatusNotFound.number: return ExplainItem(L"%S{", L"GetStatus", error.expression, environment);
    case ConfigNotFound.number: return ExplainItem(L"%C{", L"*Config*", error.expression, environment);
    case UsageNotFound.number: return ExplainItem(L"%U{", L"GetUsage", error.expression, environment);
    case MissingParameter.number: return ExplainItem(L"%E{", L"GetEnv", error.expression, environment);
    case OperandAfterOperand.number:
    case OperatorExpected.number:
    case CallAfterOperand.number: return ExplainSuperfluous(error.expression, environment);
    case ToNumberMismatch.number:
    case NumberMismatch.number:
    case BoolMismatch.number:
    case TextMismatch.number:
        for (const WString& name : FindMissing(error.expression, environment))
            explanation.notes.Add(NoteMissing(name, environment));
        return explanation;
    default: return explanation;
    }
}

WString Hints::AskForName(const WString& name, const Environment& environment)
{
    if (IsReference(name))
        return DidYouMean(Reference::FindSimilar(name, environment));
    WStringArray names;
    environment.GetKeys(names);
    names.Sort();
    SimilarName similar(name);
    similar.Offer(names);
    similar.Offer(ExpressionEvaluator::GetBuiltInNames());
    if (!similar.Get().IsEmpty())
        return similar.GetQuestion();
    const WString item = L"%S{" + name + L"}"; // which is what such a name is taken for, if not for a variable's
    return DidYouMean(Reference::Exists(item, environment) ? item : Reference::FindSimilar(item, environment));
}

WString Hints::AskForKeyword(const WString& text, const WStringArray& keywords, const Environment& environment)
{
    WString question;
    VisitNames(text.View(), [&](View word, View) {
        SimilarName similar{WString(word)};
        similar.Offer(keywords);
        const bool isKeyword = EqualsIgnoreCase(similar.Get().View(), word);
        if (!isKeyword && !similar.Get().IsEmpty() && !Exists(WString(word), environment))
            question = DidYouMean(similar.Get() + L" for \"" + WString(word) + L"\"");
        return question.IsEmpty();
    });
    return question;
}

bool Hints::IsCalculated(const WString& option)
{
    return option.Substring(1).View().find_first_of(L"<>=+-*/^&(") != View::npos;
}

bool Hints::IsContinuation(const WString& rest)
{
    return rest.IsEmpty() || View(L"<>=+-*/^&").find(rest[0]) != View::npos;
}
