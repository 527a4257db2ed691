// A plug-in that has functions alone, the texts of which stand in the section where those of the evaluator do.

#include "ExpressionEvaluatorFunctions.h"

__asm__(".pushsection .ov.FUNCTIONS.TXT,\"\"\n"
        ".ascii \"Lab.Half(x) - Half of x.\\r\\n    Lab.Half(3) -> 1.5\\r\\nLab.Third(x) - A third of x.\"\n"
        ".popsection");

static const bool added_lc =
    fnTable_gb.AddFn(new EEMathFunctionPointer(L"Lab.Half", [](double value) { return value / 2; })) &&
    fnTable_gb.AddFn(new EEMathFunctionPointer(L"Lab.Third", [](double value) { return value / 3; }));
