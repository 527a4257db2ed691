#pragma once

#include "Text/WString.h"

/// How a function is called, and what it does, as the texts of the plug-ins say.
struct FunctionForm
{
    WString form;    // "Round(number, decimals)"
    WString meaning; // the first sentence; may be empty
    WString entry{}; // all lines; empty where no text describes it
};

/// The form of a function of that name, which is read once. One that no text describes has its name and a parenthesis.
FunctionForm GetFunctionForm(const WString& name);
