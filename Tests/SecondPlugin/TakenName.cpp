// A plug-in that brings functions under names that others have.

#include "ExpressionEvaluatorFunctions.h"

#include <cmath>

static const bool added_lc[] = {
    fnTable_gb.AddFn(nullptr),
    fnTable_gb.AddFn(new EEMathFunctionPointer(L"max", std::fabs)),
    fnTable_gb.AddFn(new EEMathFunctionPointer(L"Fabs", std::fabs)),
    fnTable_gb.AddFn(new EEMathFunctionPointer(L"FABS", std::fabs)),
};
