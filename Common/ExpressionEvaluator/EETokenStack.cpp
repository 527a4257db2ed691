#include "EETokenStack.h"

#include "EvaluatorLog.h"
#include "ExpressionEvaluatorException.h"
#include "Text/HostError.h"

#include <utility>

namespace {
void Log(const wchar_t* operation, const EEToken& token)
{
    if (eeLog_gb.IsEnabled())
        eeLog_gb.WriteLine(L"%s: %s", operation, token.GetDumpString());
}

void RequireToken(const LinkedList<EEToken>& list)
{
    if (list.IsEmpty())
        throw ExitCode(0, ExitCode::hostModule, static_cast<unsigned int>(HostError::EmptyContainer));
}
} // namespace

EETokenStack::EETokenStack(EETokenStack* other) : popped(other->popped)
{
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
    if (list.IsEmpty())
        throw ExpressionEvaluatorException(Errors::StackEmpty, 0);
    popped = std::move(list.GetHead()->value);
    list.RemoveHead();
    Log(L"Pop", popped);
    return popped;
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
