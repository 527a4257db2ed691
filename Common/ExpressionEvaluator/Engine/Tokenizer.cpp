#include "Tokenizer.h"

#include "ExpressionEvaluatorFunctions.h"
#include "Services/Clock.h"
#include "Text/Abort.h"
#include "Text/CharacterCase.h"

#include <algorithm>
#include <numbers>

namespace {
constexpr std::size_t maxStringLength = 1000;
constexpr std::size_t maxNameLength = 63;

/// A name that needs no variable, unless the evaluator's flags hide it.
struct BuiltInName
{
    std::wstring_view name;
    unsigned int hiddenBy;
    Item (*make)(int position);
};

constexpr BuiltInName builtInNames_lc[] = {
    {L"true", 0, [](int position) { return Item::Truth(true, position); }},
    {L"false", 0, [](int position) { return Item::Truth(false, position); }},
    {L"PI", 0, [](int position) { return Item::Number(std::numbers::pi, position); }},
    {L"LF", 0, [](int position) { return Item::Text(L"\n", position); }},
    {L"RND", EvaluatorFlags::readNothing, [](int position) { return Item::Number(GetRandomNumber(), position); }},
    {L"Timer", EvaluatorFlags::readNothing, [](int position) { return Item::Number(GetTickCount(), position); }},
    {L"e", EvaluatorFlags::noConstantE, [](int position) { return Item::Number(std::numbers::e, position); }},
};

bool TrySetBuiltIn(Item& item, std::wstring_view name, unsigned int flags)
{
    for (const BuiltInName& row : builtInNames_lc)
        if ((row.hiddenBy & flags) == 0 && EqualsIgnoreCase(name, row.name)) {
            item = row.make(item.position);
            return true;
        }
    return false;
}

/// A backslash that keeps the quote or backslash behind it from being one.
bool IsEscape(const wchar_t* at)
{
    return at[0] == L'\\' && (at[1] == L'\\' || at[1] == L'"');
}

/// The row of the keyword that the word is, an operator of letters, or null.
const OperatorRow* FindKeyword(std::wstring_view word)
{
    if (word.size() > 3)
        return nullptr;
    for (const OperatorRow* row = operatorTable_gb; row->IsKeyword(); ++row)
        if (EqualsIgnoreCase(word, row->name))
            return row;
    return nullptr;
}
} // namespace

WStringArray ExpressionEvaluator::GetBuiltInNames()
{
    WStringArray names;
    for (const BuiltInName& row : builtInNames_lc)
        names.Add(WString(row.name));
    return names;
}

int Tokenizer::Fail(const EvaluatorError& error, const wchar_t* at)
{
    evaluator.Fail(error, at);
    return TT_NONE;
}

/// comparison: "<" | "<=" | "<>" | ">" | ">="
int Tokenizer::ReadComparison(Item& item)
{
    const bool isLess = *cursor == L'<';
    if (cursor[1] == L'=')
        return TakeOperator(item, TT_BINARYOP, isLess ? Operation::LessOrEqual : Operation::GreaterOrEqual, 2);
    if (isLess && cursor[1] == L'>')
        return TakeOperator(item, TT_BINARYOP, Operation::Differ, 2);
    return TakeOperator(item, TT_BINARYOP, isLess ? Operation::Less : Operation::Greater);
}

/// string: a quote, characters, a quote; a backslash before a backslash or a quote stands for that character
int Tokenizer::ReadString(Item& item)
{
    const wchar_t* const first = cursor + 1;
    const wchar_t* at = first;
    std::size_t escapes = 0;
    for (; *at != L'"'; ++at) {
        if (*at == 0)
            return Fail(Errors::StringUnterminated, at);
        if (IsEscape(at)) {
            ++at;
            ++escapes;
        }
        if (static_cast<std::size_t>(at - first) - escapes == maxStringLength)
            return Fail(Errors::StringTooLong, at);
    }
    MoveTo(at + 1);
    std::wstring_view text(first, static_cast<std::size_t>(at - first));
    item = Item::Text(escapes == 0 ? text : Unescape(text), item.position);
    return TT_OPERAND;
}

/// The text without the backslashes of its escapes.
std::wstring_view Tokenizer::Unescape(std::wstring_view text)
{
    wchar_t characters[maxStringLength];
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (IsEscape(&text[i])) // what it takes along stands in the text too
            ++i;
        characters[length++] = text[i];
    }
    return workspace.texts.Copy({characters, length});
}

/// reference: see TryGetSystemVariable
int Tokenizer::ReadReference(Item& item)
{
    EEToken token;
    token.SetPosition(item.position);
    const bool isRead = evaluator.TryGetSystemVariable(token, &cursor);
    workspace.Keep(token, item);
    return isRead ? TT_OPERAND : TT_NONE;
}

/// word: function "(" | keyword " " | variable
int Tokenizer::ReadWord(Item& item)
{
    NameHash hash;
    const wchar_t* end = cursor;
    for (Abort::Watch watch; nameCharacters.Contains(*end); ++end) {
        watch.Step();
        hash.Add(*end);
    }
    const HashedName word{{cursor, static_cast<std::size_t>(end - cursor)}, hash.Get()};
    if (word.name.empty())
        return Fail(Errors::InvalidNameCharacter, cursor + 1);

    if (*end == L'(')
        return ReadCall(item, word);
    if (*end == L' ')
        if (const OperatorRow* keyword = FindKeyword(word.name))
            return TakeOperator(item, TT_BINARYOP, keyword->operation, word.name.size());
    if (word.name.size() > maxNameLength)
        return Fail(Errors::VariableNameTooLong);
    ReadVariable(item, word);
    MoveTo(end);
    return TT_OPERAND;
}

/// The name of a function is cut where it is too long.
int Tokenizer::ReadCall(Item& item, const HashedName& word)
{
    const std::wstring_view name = word.name.substr(0, maxNameLength);
    const bool isCut = name.size() < word.name.size();
    Take(item, TT_FUNCOP, word.name.size() + 1);
    item.function = isCut ? fnTable_gb.FindOrNull(name) : fnTable_gb.FindOrNull(word);
    item.dataType = item.function ? item.function->GetParameterCount() : -1;
    item.SetText(item.function ? item.function->GetLowerCaseName().View() : LowerCase(name));
    workspace.hasTokenCalls = workspace.hasTokenCalls || !item.function || !item.function->GetRoutine().IsGiven();
    return TT_FUNCOP;
}

std::wstring_view Tokenizer::LowerCase(std::wstring_view name)
{
    wchar_t characters[maxNameLength];
    std::transform(name.begin(), name.end(), characters, ToLower);
    return workspace.texts.Copy({characters, name.size()});
}

/// The value of a variable of the map, of the environment, or of a built-in name, in this order; else the item becomes
/// a missing variable.
void Tokenizer::ReadVariable(Item& item, const HashedName& word)
{
    const int position = item.position;
    const EEToken* const variable = evaluator.map ? evaluator.map->FindOrNull(word) : nullptr;
    const bool isInMap = variable && !variable->IsNa();
    if (isInMap)
        workspace.Keep(*variable, item);
    else
        ReadOtherName(item, word.name);
    item.position = position;
    const bool isLogged = !isInMap && evaluator.hasEnvironment; // by the environment, which was asked
    if (!isLogged && evaluator.IsLogging())
        evaluator.LogVariable(L"", WString(word.name), EEToken(item));
}

void Tokenizer::ReadOtherName(Item& item, std::wstring_view name)
{
    item = Item::Operand(DT_NONE, item.position);
    if (evaluator.hasEnvironment)
        ReadEnvironment(item, name);
    if (item.dataType != DT_NONE || TrySetBuiltIn(item, name, evaluator.flags))
        return;
    item = Item::Missing(name, item.position);
    if (workspace.calls.IsEmpty()) // an argument's error travels in its item alone
        evaluator.record.missingVariable = WString(name);
}

void Tokenizer::ReadEnvironment(Item& item, std::wstring_view name)
{
    EEToken token;
    token.SetNA();
    evaluator.TryGetEnvironmentVariableValue(token, WString(name), false, cursor);
    if (!token.IsNa())
        workspace.Keep(token, item);
}
