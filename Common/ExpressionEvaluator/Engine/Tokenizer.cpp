#include "ExpressionEvaluator.h"

#include "EvaluatorErrors.h"
#include "ExpressionEvaluatorFunctions.h"
#include "NameCharacters.h"
#include "OperatorTable.h"
#include "Services/Clock.h"
#include "Text/CharacterCase.h"
#include "Text/NumberText.h"

#include <numbers>

namespace {
constexpr std::size_t maxStringLength = 1000;
constexpr std::size_t maxNameLength = 63;

/// A name that needs no variable, unless the evaluator's flags hide it.
struct BuiltInName
{
    const wchar_t* name;
    unsigned int hiddenBy;
    void (*set)(EEToken&);
};

constexpr BuiltInName builtInNames_lc[] = {
    {L"true", 0, [](EEToken& token) { token.SetValue(true); }},
    {L"false", 0, [](EEToken& token) { token.SetValue(false); }},
    {L"PI", 0, [](EEToken& token) { token.SetValue(std::numbers::pi); }},
    {L"LF", 0, [](EEToken& token) { token.SetValue(L"\n"); }},
    {L"RND", 0, [](EEToken& token) { token.SetValue(GetRandomNumber()); }},
    {L"Timer", 0, [](EEToken& token) { token.SetValue(static_cast<double>(GetTickCount())); }},
    {L"e", EvaluatorFlags::noConstantE, [](EEToken& token) { token.SetValue(std::numbers::e); }},
};

bool TrySetBuiltIn(EEToken& token, const WString& name, unsigned int flags)
{
    for (const BuiltInName& row : builtInNames_lc)
        if ((row.hiddenBy & flags) == 0 && name.Equals(row.name, true)) {
            row.set(token);
            return true;
        }
    return false;
}

/// The keyword that the word is, an operator of letters, or null.
const wchar_t* FindKeyword(std::wstring_view word)
{
    for (const OperatorRow* row = operatorTable_gb; row->name[0]; ++row) {
        const bool isKeyword = row->name[0] >= L'a' && row->name[0] <= L'z';
        if (isKeyword && EqualsIgnoreCase(word, row->name))
            return row->name;
    }
    return nullptr;
}

/// The type of a token that is one character, TT_NONE for the start of a longer one.
int SingleCharacterType(wchar_t ch)
{
    switch (ch) {
    case 0: return TT_END;
    case L'(': return TT_LEFTP;
    case L')': return TT_RIGHTP;
    case L',': return TT_PRMSEP;
    case L'+':
    case L'-':
    case L'&': return TT_DUALOP;
    case L'*':
    case L'/':
    case L'=':
    case L'^': return TT_BINARYOP;
    default: return TT_NONE;
    }
}

/// comparison: "<" | "<=" | "<>" | ">" | ">="
void ReadComparison(EEToken& token, wchar_t** cursor)
{
    const wchar_t* at = *cursor;
    const bool two = at[1] == L'=' || (at[0] == L'<' && at[1] == L'>');
    const wchar_t name[] = {at[0], two ? at[1] : L'\0', L'\0'};
    token.SetToken(TT_BINARYOP, name);
    *cursor += two ? 2 : 1;
}
} // namespace

/// token: any single character of the table above | comparison | string | number | reference | word; blanks before it
bool ExpressionEvaluator::GetToken(EEToken& token, wchar_t** cursor)
{
    while (**cursor == L' ' || **cursor == L'\t')
        ++*cursor;
    token.SetPosition(static_cast<int>(*cursor - record.expressionStart) + 1);

    const wchar_t ch = **cursor;
    if (const int type = SingleCharacterType(ch); type != TT_NONE) {
        token.SetToken(type, ch);
        *cursor += type != TT_END;
        return true;
    }
    switch (ch) {
    case L'<':
    case L'>': ReadComparison(token, cursor); return true;
    case L'"': return ReadString(token, cursor);
    case L'%': return TryGetSystemVariable(token, cursor);
    default: return ch == L'.' || (ch >= L'0' && ch <= L'9') ? ReadNumber(token, cursor) : ReadWord(token, cursor);
    }
}

/// string: a quote, characters, a quote; a backslash before a backslash or a quote stands for that character
bool ExpressionEvaluator::ReadString(EEToken& token, wchar_t** cursor)
{
    wchar_t text[maxStringLength + 1];
    std::size_t length = 0;
    wchar_t* at = *cursor + 1;
    for (; *at != L'"'; ++at) {
        if (*at == 0)
            return Fail(Errors::StringUnterminated, at);
        if (*at == L'\\' && (at[1] == L'\\' || at[1] == L'"'))
            ++at;
        if (length == maxStringLength)
            return Fail(Errors::StringTooLong, at);
        text[length++] = *at;
    }
    text[length] = 0;
    token.SetType(TT_OPERAND);
    token.SetValue(text);
    *cursor = at + 1;
    return true;
}

/// number: what wcstod takes, without a sign; directly before a name character it is the start of a word ("12xyz",
/// "1.2.3")
bool ExpressionEvaluator::ReadNumber(EEToken& token, wchar_t** cursor)
{
    const wchar_t* end = nullptr;
    const double value = ReadDouble(*cursor, &end);
    if (end == *cursor)
        return Fail(Errors::InvalidNumber, *cursor);
    if (validChars->Contains(*end))
        return ReadWord(token, cursor);
    token.SetType(TT_OPERAND);
    token.SetValue(value);
    token.SetText(*cursor, static_cast<std::size_t>(end - *cursor));
    *cursor += end - *cursor;
    return true;
}

/// word: function "(" | keyword " " | variable
bool ExpressionEvaluator::ReadWord(EEToken& token, wchar_t** cursor)
{
    const wchar_t* start = *cursor;
    const std::size_t length = validChars->RunLength(start);
    const std::wstring_view word(start, length);
    if (length == 0)
        return Fail(Errors::InvalidNameCharacter, start + 1);

    if (start[length] == L'(') {
        wchar_t name[maxNameLength + 1] = {};
        for (std::size_t i = 0; i < length && i < maxNameLength; ++i)
            name[i] = ToLower(start[i]);
        int parameterCount = -1;
        fnTable_gb.IsFunction(name, &parameterCount);
        token.SetToken(TT_FUNCOP, name);
        token.SetNoPrm(parameterCount);
        *cursor += length + 1;
        return true;
    }
    if (start[length] == L' ')
        if (const wchar_t* keyword = FindKeyword(word)) {
            token.SetToken(TT_BINARYOP, keyword);
            *cursor += length;
            return true;
        }
    if (length > maxNameLength)
        return Fail(Errors::VariableNameTooLong, start);
    *cursor += length;
    ReadVariable(token, WString(word), start);
    return true;
}

/// The value of a variable of the map, of the environment, or of a built-in name, in this order; else the token becomes
/// a missing variable.
void ExpressionEvaluator::ReadVariable(EEToken& token, const WString& name, const wchar_t* at)
{
    const int position = token.GetPosition();
    if (map)
        token = *map->GetVariable(name.ToCString());
    else
        token.SetNA();
    const bool inEnvironment = token.IsNa() && hasEnvironment; // which logs it
    if (inEnvironment)
        TryGetEnvironmentVariableValue(token, name, false, at);
    if (token.IsNa() && !TrySetBuiltIn(token, name, flags)) {
        token.SetMissingVariable(name);
        record.missingVariable = name;
    }
    token.SetPosition(position);
    if (!inEnvironment)
        LogIfEnabled(L"", name, token);
}
