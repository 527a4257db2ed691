#include "OperandReader.h"

#include "Commands/Reference.h"
#include "EvaluatorErrors.h"
#include "ExpressionEvaluator.h"
#include "ExpressionFindings.h"
#include "Text/CharacterCase.h"

#include <algorithm>

using namespace ValueKinds;

namespace {
/// The name between the braces of a reference.
WString GetInnerName(const WString& reference)
{
    return WString(reference.View().substr(3, reference.Length() - 4));
}

/// The text in quotes, as it stands in an expression; empty for an empty one.
WString Quote(const WString& text)
{
    return text.IsEmpty() ? text : L"\"" + text + L"\"";
}

/// What a reference may yield that yields `value` now. A status item keeps its type, but may be deleted.
unsigned int GetKinds(wchar_t kind, const EEToken& value)
{
    const unsigned int kinds = Of(value);
    const bool isTyped = kind == L'U' || (kind == L'S' && (kinds == Number || kinds == Boolean));
    return isTyped ? (kind == L'U' ? Number : kinds) | Error : Any;
}

/// A built-in name whose value changes from one moment to the next.
bool IsEverChanging(const WString& name)
{
    return EqualsIgnoreCase(name.View(), L"RND") || EqualsIgnoreCase(name.View(), L"Timer");
}
} // namespace

AbstractValue OperandReader::Read(const EEToken& token)
{
    if (token.IsMissingVariable())
        return token.GetText()[0] == L'%' ? ReadReference(token) : ReadName(token);
    if (IsName(token) && isKnown && isKnown(NameAt(token))) // which hides the built-in name
        return AbstractValue::Unknown(Any, token.GetPosition());
    return AbstractValue::Known(token);
}

bool OperandReader::IsName(const EEToken& token) const
{
    const wchar_t first = expression[static_cast<std::size_t>(token.GetPosition() - 1)];
    return first != L'"' && first != L'.' && !IsDecimalDigit(first);
}

WString OperandReader::NameAt(const EEToken& token) const
{
    const std::size_t start = static_cast<std::size_t>(token.GetPosition() - 1);
    return WString(expression.substr(start, FindItemEnd(expression, start) - start));
}

AbstractValue OperandReader::ReadReference(const EEToken& token)
{
    const WString& reference = token.GetText();
    EEToken value;
    if (reference[1] == L'E') {
        const WString name = GetInnerName(reference);
        if (!IsSet(name) && IsFirst(token)) {
            const WString similar = FindSimilarVariable(name);
            const bool isVariable = !similar.IsEmpty() && similar[0] != L'%';
            WarnOfMissing(Findings::UnsetVariable, token, isVariable ? L"%E{" + similar + L"}" : similar);
        }
    } else if (!Reference::Exists(reference, Environment())) {
        if (IsFirst(token))
            WarnOfMissing(Findings::UnknownReference, token, Reference::FindSimilar(reference, Environment()));
    } else if (WString message; !IsReadable(reference, value, message)) {
        hasUnreadable = true;
        found.Warn(Findings::BadReference, token.GetPosition(), message);
    }
    return AbstractValue::Unknown(GetKinds(reference[1], value), token.GetPosition());
}

bool OperandReader::IsReadable(const WString& reference, EEToken& value, WString& message)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    ExitCode code;
    return evaluator.TryEvaluate(reference, value) || !evaluator.TryGetErrorMessage(code, message, nullptr) ||
        code.GetNumber() != Errors::StatusInaccessible.number;
}

AbstractValue OperandReader::ReadName(const EEToken& token)
{
    const WString& name = token.GetText();
    const bool isVariable = IsSet(name);
    if (!isVariable && IsEverChanging(name))
        return AbstractValue::Unknown(Number, token.GetPosition());
    if (!isVariable && IsFirst(token))
        WarnOfMissing(Findings::UnsetVariable, token, FindSimilarVariable(name));
    return AbstractValue::Unknown(Any, token.GetPosition());
}

void OperandReader::LookUp(std::wstring_view function, std::span<const AbstractValue> arguments)
{
    const bool isSetting = function.ends_with(L"config") || function.starts_with(L"getconfig");
    const bool isStatus = function == L"getstatus";
    const bool isNamed = std::ranges::all_of(
        arguments, [](const AbstractValue& argument) { return argument.isKnown && !argument.MayBe(~Text); });
    if (!isNamed || arguments.size() != (isSetting ? 2u : 1u) || (!isSetting && !isStatus && function != L"getusage"))
        return;
    const WString& name = arguments[0].token.GetText();
    const WString reference = isSetting ? L"%C{[" + name + L"]" + arguments[1].token.GetText() + L"}"
                                        : (isStatus ? L"%S{" : L"%U{") + name + L"}";
    if (Reference::Exists(reference, Environment()))
        return;
    const EvaluatorError& error = isSetting ? Errors::ConfigNotFound
        : isStatus                          ? Errors::StatusNotFound
                                            : Errors::UsageNotFound;
    const WString similar = isSetting ? WString() : Reference::FindSimilar(reference, Environment());
    found.Warn(Findings::UnknownReference, arguments[0].GetPosition(), error.message,
        similar.IsEmpty() ? similar : Quote(GetInnerName(similar)));
}

/// Says what a run would say.
void OperandReader::WarnOfMissing(const wchar_t* code, const EEToken& token, const WString& suggestion)
{
    found.Warn(code, token.GetPosition(), Errors::MissingVariable.message + token.GetText(), suggestion);
}

/// A variable, or the status item that was meant.
WString OperandReader::FindSimilarVariable(const WString& name) const
{
    SimilarName similar(name);
    if (offer)
        offer(similar);
    similar.Offer(ExpressionEvaluator::GetBuiltInNames());
    if (!similar.Get().IsEmpty())
        return similar.Get();
    const WString item = L"%S{" + name + L"}";
    return Reference::Exists(item, Environment()) ? item : Reference::FindSimilar(item, Environment());
}
