#pragma once

#include "Containers/LinkedList.h"
#include "EEToken.h"
#include "ExpressionEvaluatorApi.h"

/// A stack of token copies through which everything in the engine flows: postfix expressions are put at its bottom
/// and popped from its top, and every function finds its arguments on one. Takes ownership of nothing. Adding is
/// const because a stack is filled through const references too. Serves one thread at a time.
class EE_API EETokenStack
{
public:
    EETokenStack() = default;
    /// A copy of the tokens of `other` and of its popped token; empty for a null pointer.
    explicit EETokenStack(EETokenStack* other);
    virtual ~EETokenStack() = default;

    void Push(EEToken& token) const; // on top
    void Push(EEToken&& token) const;
    void Push(EEToken* token) const;      // NA for a null pointer
    void Put(const EEToken& token) const; // at the bottom
    void Put(EEToken&& token) const;
    void Put(EEToken* token) const; // NA for a null pointer

    /// Removes the top token and returns it, in a slot that the next Pop of this stack overwrites. Throws
    /// ExpressionEvaluatorException 9 on an empty stack.
    EEToken& Pop();
    /// Pop().GetNumber(), without the slot. A token whose conversion throws is not removed.
    double PopNumber();
    /// The top and the bottom token, left in place. Both throw ExitCode(0, 1, 22) on an empty stack.
    EEToken& Peek() const;
    EEToken& GetTail() const;

    bool IsEmpty() const noexcept { return list.IsEmpty(); }
    int Count() const noexcept { return static_cast<int>(list.Count()); }
    void Clear() noexcept { list.Clear(); }

    /// Each token's text and a blank, top to bottom; with `typed` marks of token and data type before it ("vn1 vn2 b+
    /// ").
    WString ToString(bool typed) const;
    /// Each token's dump and a line feed, top to bottom.
    WString GetDumpString() const;

    // For the engine, which logs by itself what its items stand for.

    void Append(const Item& item);         // at the bottom
    void Drop(std::size_t count) noexcept; // from the top; no more than there are
    template <typename Visit>
    void ForEach(const Visit& visit) const // from the top
    {
        for (const auto* node = list.GetHead(); node; node = node->next)
            visit(node->value);
    }
    static void WriteLog(const wchar_t* operation, const EEToken& token);

private:
    mutable LinkedList<EEToken> list;
    EEToken popped;
};
