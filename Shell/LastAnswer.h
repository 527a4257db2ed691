#pragma once

#include "Commands/RunObserver.h"

#include <new>

/// Keeps in the variable "ans", while it lives, what the last Calc has calculated that was typed.
class LastAnswer : public RunObserver
{
public:
    void OnEnd(const CommandRun& run) noexcept override
    try {
        Environment environment = run.environment;
        if (!run.caller && run.outcome.command == L"Calc" && !run.outcome.returnString.IsEmpty())
            environment.SetString(L"ans", run.outcome.returnString);
    } catch (const std::bad_alloc&) { // the value has been shown all the same
    }
};
