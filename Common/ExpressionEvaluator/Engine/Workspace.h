#pragma once

#include "Item.h"
#include "Stack.h"
#include "TextArena.h"

#include <vector>

/// How far the conversion of a sub-expression has got.
struct SubExpression
{
    enum State
    {
        AfterOperator, // a binary operator, "(", or nothing yet
        AfterSign,     // a unary operator
        AfterOperand
    };

    State state = AfterOperator; // what has just been read, and so what may come next
    int depth = 0;               // parentheses opened in it and not yet closed
};

/// An operator that waits for its right operand, or an opening parenthesis.
struct WaitingOperator
{
    const OperatorRow* row;
    int position;
};

/// A call whose arguments are being converted.
struct PendingCall
{
    Item function;
    SubExpression outer;     // the sub-expression that it stands in
    const wchar_t* argument; // the start of the argument that is being converted
    int given;               // arguments so far, that one included
};

/// What the stages of an evaluation work on, in storage that is kept for the next one.
///
///     tokenizer      makes items                   1 + 2 * 3
///     converter      orders them                   1 2 3 * +
///     evaluation     consumes them                 7
struct Workspace
{
    Stack<WaitingOperator> operators; // of the converter
    Stack<PendingCall> calls;
    Stack<Item> postfix;         // what the converter gives and the evaluation takes
    Stack<Item> operands;        // waiting in the evaluation
    std::vector<double> numbers; // the arguments of a routine
    TextArena texts;
    bool hasTokenCalls = false; // of functions that take tokens, in what has been converted
    bool isLogged = false;      // whether the evaluator's log is to hold what moves on and off the stacks

    /// The workspace that the thread's last owner has given back, or a new one; for whoever gives it back.
    static Workspace* Borrow();
    static void GiveBack(Workspace* workspace) noexcept;

    /// Makes the token an item that outlives it.
    void Keep(const EEToken& token, Item& item)
    {
        token.SetItemFrom(item);
        item.SetText(texts.Copy(item.GetText()));
    }

    /// Lets the postfix from `first` on view a copy of the expression instead.
    void KeepViews(std::size_t first, std::wstring_view expression);

    // The operations of the stacks, logged as those of a token stack are.

    void PushOperand(const Item& item)
    {
        Log(L"Push", item);
        operands.Push(item);
    }
    /// The top operand, which stays where it is until the next push.
    const Item& PopOperand()
    {
        Log(L"Pop", operands.GetTop());
        return operands.Pop();
    }
    void Put(const Item& item)
    {
        Log(L"Put", item);
        postfix.Push(item);
    }
    /// Puts the item that has been made in the room for the next one.
    void PutNext(const Item& item)
    {
        Log(L"Put", item);
        postfix.AddNext();
    }
    void Log(const wchar_t* operation, const Item& item) const
    {
        if (isLogged)
            WriteLog(operation, item);
    }

private:
    bool IsLarge() const noexcept;
    static void WriteLog(const wchar_t* operation, const Item& item);
};
