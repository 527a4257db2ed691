#pragma once

#include "Commands/LineSource.h"
#include "Instrument/Environment.h"
#include "Text/WString.h"

/// Makes commands of what people type at the prompt. A line whose first word is the name of a command stays as it is.
/// Otherwise
///
///     ?  ?Calc          are Help and Help Calc,
///     quit              is Exit,
///     x=5               is Set x=5,
///     1+2  Round(x, 1)  is Calc 1+2: a line that begins with what only an expression begins with (a digit, a quote,
///     x+1  x + 1        a parenthesis, a sign, a reference, or a name that an operator or parenthesis touches), or
///     x  pi             with the name of a value, behind which stands an operator or nothing; an operator between
///                       blanks is enough where the name is not known,
///
/// and all else stays for the report that there is no such command.
class PromptCommands : public LineSource
{
public:
    /// The environment is that which the commands are run in.
    PromptCommands(LineSource& typed, const Environment& environment) : source(typed), environment(environment) {}

    bool TryReadLine(std::string& line) override;
    /// The last line as it was typed; the command that it became ends with it, but where the line has no expression.
    const WString& GetTyped() const noexcept { return typed; }

private:
    LineSource& source;
    const Environment environment;
    WString typed;

    WString MakeCommand() const;
    bool BeginsWithName(const WString& name, const WString& rest) const;
    bool IsPartOfExpression(const WString& beginning, const WString& word) const;
};
