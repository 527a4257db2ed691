#pragma once

#include "ExpressionCheck.h"

/// The findings of one expression as they are made.
class FoundList
{
public:
    FoundList(std::wstring_view expression, std::vector<ExpressionFinding>& out) noexcept
        : expression(expression), out(out), first(out.size())
    {}

    std::size_t Count() const noexcept { return out.size(); }
    /// A warning about what stands at a position as the engine counts them: from 1, or 0 for the beginning. Returns its
    /// place in the list.
    std::size_t Warn(const wchar_t* code, int position, const WString& message, const WString& suggestion = WString());
    /// A warning about the whole expression.
    void WarnOfAll(const wchar_t* code, const WString& message);
    /// What the engine says without having evaluated anything.
    void Fail(bool isSure, const wchar_t* code, int position, const WString& message);
    void MakeError(std::size_t index) { out[index].isError = true; }
    bool Is(std::size_t index, std::wstring_view code) const;
    /// What was found from there on stands where errors are tested on purpose: only what can never work counts.
    void DropTested(std::size_t begin);
    /// Puts the findings in the order of their places.
    void Finish();

private:
    const std::wstring_view expression;
    std::vector<ExpressionFinding>& out;
    const std::size_t first;
};

/// The end of the operand, name or operator that begins there.
std::size_t FindItemEnd(std::wstring_view expression, std::size_t start);
