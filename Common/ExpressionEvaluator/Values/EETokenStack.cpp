#include "EETokenStack.h"

#include "EvaluatorLog.h"
#include "ExpressionEvaluatorException.h"
#include "Item.h"
#include "Text/HostError.h"

#include <utility>

namespace {
/// Small, so that a log which is off costs each operation no more than the question.
inline void Log(const wchar_t* operation, const EEToken& token)
{
    if (eeLog_gb.IsEnabled())
        EETokenStack::WriteLog(operation, token);
}

/// The top token, which the caller is about to remove.
EEToken& LeavingToken(const LinkedList<EEToken>& list)
{
    if (list.IsEmpty())
        throw ExpressionEvaluatorException(Errors::StackEmpty, 0);
    EEToken& token = list.GetHead()->value;
    Log(L"Pop", token);
    return token;
}

void RequireToken(const LinkedList<EEToken>& list)
{
    if (list.IsEmpty())
        throw ExitCode(0, ExitCode::hostModule, static_cast<unsigned int>(HostError::EmptyContainer));
}
} // namespace

void EETokenStack::WriteLog(const wchar_t* operation, const EEToken& token)
{
    WriteEvaluatorLog([&] { return WString::Format(L"%s: %s", operation, token.GetDumpString()); });
}

EETokenStack::EETokenStack(EETokenStack* other)
{
    if (!other)
        return;
    popped = other->popped;
    for (const auto* node = other->list.GetHead(); node; node = node->next)
        list.AddTail(node->value);
}

void EETokenStack::Push(EEToken& token) const
{
    Log(L"Push", token);
    list.AddHead(token);
}

void EETokenStack::Push(EEToken&& token) const
{
    Log(L"Push", token);
    list.AddHead(std::move(token));
}

void EETokenStack::Push(EEToken* token) const
{
    EEToken copy;
    copy = token;
    Push(std::move(copy));
}

void EETokenStack::Put(EEToken* token) const
{
    EEToken copy;
    copy = token;
    Put(std::move(copy));
}

void EETokenStack::Put(const EEToken& token) const
{
    Log(L"Put", token);
    list.AddTail(token);
}

void EETokenStack::Put(EEToken&& token) const
{
    Log(L"Put", token);
    list.AddTail(std::move(token));
}

EEToken& EETokenStack::Pop()
{
    popped = std::move(LeavingToken(list));
    list.RemoveHead();
    return popped;
}

double EETokenStack::PopNumber()
{
    const double number = LeavingToken(list).GetNumber();
    list.RemoveHead();
    return number;
}

void EETokenStack::Append(const Item& item)
{
    list.AddTail(EEToken(item));
}

void EETokenStack::Drop(std::size_t count) noexcept
{
    for (; count > 0; --count)
        list.RemoveHead();
}

EEToken& EETokenStack::Peek() const
{
    RequireToken(list);
    return list.GetHead()->value;
}

EEToken& EETokenStack::GetTail() const
{
    RequireToken(list);
    return list.GetTail()->value;
}

namespace {
wchar_t DataTypeLetter(int dataType)
{
    switch (dataType) {
    case DT_NONE: return L'u';
    case DT_NUM: return L'n';
    case DT_BOOL: return L'b';
    case DT_STR: return L's';
    default: return L'#';
    }
}

void AppendTypeMark(WString& text, const EEToken& token)
{
    switch (token.GetType()) {
    case TT_BINARYOP: text += L'b'; break;
    case TT_UNARYOP: text += L'u'; break;
    case TT_OPERAND:
        text += L'v';
        text += DataTypeLetter(token.GetDataType());
        break;
    default: break;
    }
}
} // namespace

WString EETokenStack::ToString(bool typed) const
{
    WString text;
    for (const auto* node = list.GetHead(); node; node = node->next) {
        if (typed)
            AppendTypeMark(text, node->value);
        text += node->value.ToString();
        text += L' ';
    }
    return text;
}

WString EETokenStack::GetDumpString() const
{
    WString text;
    for (const auto* node = list.GetHead(); node; node = node->next) {
        text += node->value.GetDumpString();
        text += L'\n';
    }
    return text;
}
