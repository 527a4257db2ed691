#include "EETokenMap.h"

#include <algorithm>

std::atomic<int> EETokenMap::liveCount{0};

int GetDebugObjectCountExpressionEvaluator_CTokenMap()
{
    return EETokenMap::liveCount;
}

namespace {
template <typename Value>
EEToken ValueToken(Value value)
{
    EEToken token;
    token.SetValue(value);
    return token;
}
} // namespace

EETokenMap::EETokenMap(int bucketCount) : variables(static_cast<unsigned int>(std::max(bucketCount, 1)))
{
    defaultToken.SetNA();
}

void EETokenMap::SetVariable(const wchar_t* name, EEToken* token)
{
    EEToken value;
    value = token;
    SetVariable(name, value);
}

void EETokenMap::SetVariable(const wchar_t* name, EEToken& token)
{
    const auto stored = std::make_shared<EEToken>(token);
    stored->ClearError();
    variables.Insert(name, stored);
}

void EETokenMap::SetVariable(const wchar_t* name, const wchar_t* value)
{
    EEToken token = ValueToken(value);
    SetVariable(name, token);
}

void EETokenMap::SetVariable(const wchar_t* name, double value)
{
    EEToken token = ValueToken(value);
    SetVariable(name, token);
}

void EETokenMap::SetVariable(const wchar_t* name, bool value)
{
    EEToken token = ValueToken(value);
    SetVariable(name, token);
}

EEToken* EETokenMap::GetVariable(const wchar_t* name)
{
    Object* found = variables.GetObjectOrNull(name ? name : L"");
    return found ? static_cast<EEToken*>(found) : &defaultToken;
}

const EEToken* EETokenMap::FindOrNull(const HashedName& name) const noexcept
{
    return static_cast<const EEToken*>(variables.GetObjectOrNull(name));
}

bool EETokenMap::GetVariable(const wchar_t* name, WString& text, const wchar_t* defaultText)
{
    const EEToken* token = GetVariable(name);
    const bool found = token != &defaultToken;
    text = found || !defaultText ? token->ToString() : WString(defaultText);
    return found;
}

void EETokenMap::AddVariables(EETokenMap& other)
{
    for (ObjectHashTableIterator entry = other.Begin(); !entry.IsAtEnd(); entry.MoveToNext())
        variables.Insert(entry.GetKey(), entry.GetObject());
}
