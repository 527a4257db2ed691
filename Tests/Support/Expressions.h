#pragma once

#include "ExpressionEvaluator.h"
#include "ExpressionEvaluatorException.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

/// An expression and what it gives: a number or boolean as it prints, a text in single quotes, or an error as "number
/// message @position" (for an exit code that is not the evaluator's, its text instead of the number).
struct ExpressionRow
{
    std::string expression;
    std::string outcome;
};

inline std::string DescribeValue(const EEToken& value)
{
    const std::string text = value.ToString().ToUtf8();
    return value.GetDataType() == DT_STR ? "'" + text + "'" : text;
}

inline std::string DescribeError(const ExpressionEvaluator& evaluator)
{
    ExitCode code;
    WString message;
    int position = 0;
    if (!evaluator.TryGetErrorMessage(code, message, &position))
        return "failed without an error";
    const bool own = code.GetCommandId() == 0 && code.GetModule() == evaluatorModule;
    const std::string number = own ? std::to_string(code.GetNumber()) : code.ToString().ToUtf8();
    return number + " " + message.ToUtf8() + " @" + std::to_string(position);
}

inline std::string Outcome(ExpressionEvaluator& evaluator, const std::string& expression)
{
    EEToken value;
    if (!evaluator.TryEvaluate(WString::FromUtf8(expression), value))
        return DescribeError(evaluator);
    return DescribeValue(value);
}

inline std::string Outcome(const std::string& expression)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    return Outcome(evaluator, expression);
}

/// Each row with an evaluator of its own.
inline void CheckExpressions(std::initializer_list<ExpressionRow> rows)
{
    for (const ExpressionRow& row : rows)
        EXPECT_EQ(Outcome(row.expression), row.outcome) << row.expression;
}
