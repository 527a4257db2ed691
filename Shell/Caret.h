#pragma once

#include "Commands/RunObserver.h"

/// Points, under the line as it was typed, at the place where an expression could not be evaluated: for one who types,
/// on standard error. What a command shows itself counts characters, and its expression alone.
class Caret : public RunObserver
{
public:
    void OnBegin(const CommandRun& run) noexcept override;
    void OnBadExpression(const CommandRun& run, const WString& expression, std::size_t place) noexcept override;

    /// Shows the line with the caret when the command that was begun last could not evaluate its expression; but not
    /// when it has just shown the place itself at the same terminal, rightly and in one piece.
    void Show(const WString& typed) const;

private:
    WString expression;      // empty when there was none, or it does not stand in the line
    std::size_t place = 0;   // in the expression
    std::size_t fromEnd = 0; // the place in the line, counted from its end
};
