#pragma once

#include "EEMissingVariableException.h"

#include <string>

/// What `action` throws, whole: "<code> <message> @<position>", with "missing <name>: " in front for a missing
/// variable; "exit code <code>" for an exit code; "nothing" when it returns.
template <typename Action>
std::string ThrownBy(const Action& action)
{
    const auto describe = [](const ExpressionEvaluatorException& error) {
        return std::to_string(error.GetCode()) + " " + error.GetMessage().ToUtf8() + " @" +
            std::to_string(error.GetPosition());
    };
    try {
        action();
    } catch (const EEMissingVariableException& error) {
        return "missing " + error.GetVariableName().ToUtf8() + ": " + describe(error);
    } catch (const ExpressionEvaluatorException& error) {
        return describe(error);
    } catch (const ExitCode& code) {
        return "exit code " + code.ToString().ToUtf8();
    }
    return "nothing";
}
