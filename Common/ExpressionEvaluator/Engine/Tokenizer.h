#pragma once

#include "Containers/ObjectHashTable.h"
#include "EvaluatorErrors.h"
#include "ExpressionEvaluator.h"
#include "NameCharacters.h"
#include "Text/NumberText.h"
#include "Workspace.h"

/// Makes items of an expression, one after the other; names become values at once. Texts of items are views of the
/// expression or of the workspace. What cannot be read is recorded in the evaluator.
class Tokenizer
{
public:
    Tokenizer(
        ExpressionEvaluator& evaluator, Workspace& workspace, const wchar_t* start, const wchar_t* cursor) noexcept
        : evaluator(evaluator),
          workspace(workspace),
          nameCharacters(*evaluator.validChars),
          start(start),
          cursor(const_cast<wchar_t*>(cursor))
    {}

    /// Reads one item and moves behind it. Returns its type, or TT_NONE with the error recorded.
    int Read(Item& item);
    /// Behind what has been read.
    const wchar_t* GetCursor() const noexcept { return cursor; }

private:
    ExpressionEvaluator& evaluator;
    Workspace& workspace;
    const NameCharacters& nameCharacters;
    const wchar_t* const start;
    wchar_t* cursor; // only moved, never written through

    // These return the type of what they read, as Read does.

    int Fail(const EvaluatorError& error, const wchar_t* at);
    int Fail(const EvaluatorError& error) { return Fail(error, cursor); }
    int Take(Item& item, int type, std::size_t length);
    int TakeOperator(Item& item, int type, Operation operation, std::size_t length = 1);
    int ReadComparison(Item& item);
    int ReadString(Item& item);
    int ReadReference(Item& item);
    int ReadNumber(Item& item);
    int ReadWord(Item& item);
    int ReadCall(Item& item, const HashedName& word);

    void MoveTo(const wchar_t* at) noexcept { cursor += at - cursor; }
    std::wstring_view Unescape(std::wstring_view text);
    std::wstring_view LowerCase(std::wstring_view name);
    void ReadVariable(Item& item, const HashedName& word);
    void ReadOtherName(Item& item, std::wstring_view name);
    void ReadEnvironment(Item& item, std::wstring_view name);
};

// In line, for the loop over all tokens consists of little else.

inline int Tokenizer::Take(Item& item, int type, std::size_t length)
{
    item.SetMark(type, {cursor, length});
    cursor += length;
    return type;
}

inline int Tokenizer::TakeOperator(Item& item, int type, Operation operation, std::size_t length)
{
    item.SetOperator(type, RowOf(operation));
    cursor += length;
    return type;
}

/// number: what wcstod takes, without a sign; directly before a name character it is the start of a word ("12xyz",
/// "1.2.3")
[[gnu::always_inline]] inline int Tokenizer::ReadNumber(Item& item)
{
    double value = 0;
    const wchar_t* const end = ReadDouble(cursor, value);
    if (end == cursor)
        return Fail(Errors::InvalidNumber);
    if (nameCharacters.Contains(*end))
        return ReadWord(item);
    item.SetValue(value, {cursor, static_cast<std::size_t>(end - cursor)});
    MoveTo(end);
    return TT_OPERAND;
}

/// token: a character of these | comparison | string | number | reference | word; blanks before it
[[gnu::always_inline]] inline int Tokenizer::Read(Item& item)
{
    while (*cursor == L' ' || *cursor == L'\t')
        ++cursor;
    item.position = static_cast<int>(cursor - start) + 1;

    if ((*cursor >= L'0' && *cursor <= L'9') || *cursor == L'.')
        return ReadNumber(item);
    switch (*cursor) {
    case 0: return Take(item, TT_END, 0);
    case L'(': return Take(item, TT_LEFTP, 1);
    case L')': return Take(item, TT_RIGHTP, 1);
    case L',': return Take(item, TT_PRMSEP, 1);
    case L'+': return TakeOperator(item, TT_DUALOP, Operation::Add);
    case L'-': return TakeOperator(item, TT_DUALOP, Operation::Subtract);
    case L'&': return TakeOperator(item, TT_DUALOP, Operation::Join);
    case L'*': return TakeOperator(item, TT_BINARYOP, Operation::Multiply);
    case L'/': return TakeOperator(item, TT_BINARYOP, Operation::Divide);
    case L'=': return TakeOperator(item, TT_BINARYOP, Operation::Equal);
    case L'^': return TakeOperator(item, TT_BINARYOP, Operation::Raise);
    case L'<':
    case L'>': return ReadComparison(item);
    case L'"': return ReadString(item);
    case L'%': return ReadReference(item);
    default: return ReadWord(item);
    }
}
