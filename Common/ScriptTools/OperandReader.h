#pragma once

#include "AbstractValue.h"
#include "FoundList.h"
#include "Instrument/NameOrder.h"

#include <set>
#include <span>

/// Tells of operands what is known before a run, and what they refer to in vain.
class OperandReader
{
public:
    OperandReader(std::wstring_view expression, const IsVariableKnown& isKnown, const OfferVariables& offer,
        FoundList& found) noexcept
        : expression(expression), isKnown(isKnown), offer(offer), found(found)
    {}

    /// The operand that an evaluator has made which reads nothing.
    AbstractValue Read(const EEToken& token);
    /// Whether the bench lets expressions read what a reference names, with the value; else with what a run says. An
    /// item may be of a type that expressions do not take, which fails before anything is evaluated.
    static bool IsReadable(const WString& reference, EEToken& value, WString& message);
    /// Whether one of the references cannot be read, so that nothing is evaluated on this bench.
    bool HasUnreadable() const noexcept { return hasUnreadable; }
    /// A call, without a default, of one of the functions that read what references do.
    void LookUp(std::wstring_view function, std::span<const AbstractValue> arguments);

private:
    const std::wstring_view expression;
    const IsVariableKnown& isKnown;
    const OfferVariables& offer;
    FoundList& found;
    std::set<WString, NameOrder> missing;
    bool hasUnreadable = false;

    bool IsName(const EEToken& token) const;
    WString NameAt(const EEToken& token) const;
    /// Whether a missing name has not been told of yet; to look for similar ones takes long.
    bool IsFirst(const EEToken& token) { return missing.insert(token.GetText()).second; }
    bool IsSet(const WString& name) const { return !isKnown || isKnown(name); }
    AbstractValue ReadReference(const EEToken& token);
    AbstractValue ReadName(const EEToken& token);
    void WarnOfMissing(const wchar_t* code, const EEToken& token, const WString& suggestion);
    WString FindSimilarVariable(const WString& name) const;
};
