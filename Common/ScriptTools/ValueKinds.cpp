#include "ValueKinds.h"

#include "ExpressionEvaluatorFunctions.h"
#include "OperatorTable.h"

#include <algorithm>
#include <unordered_map>

using namespace ValueKinds;
using Manner = FunctionManner;

namespace {
/// The functions that are no routines of numbers.
constexpr FunctionRule functionRules_lc[] = {
    {L"bool", Manner::Strict, Boolean, Valued},
    {L"indexof", Manner::Strict, Number, Valued},
    {L"instr", Manner::Strict, Number, Valued},
    {L"if", Manner::Choosing, Any, Any},
    {L"initifna", Manner::Testing, Any, Any},
    {L"intercept", Manner::Strict, Number, Numeric},
    {L"icpt", Manner::Strict, Number, Numeric},
    {L"defined", Manner::Testing, Boolean, Valued},
    {L"iserr", Manner::Testing, Boolean, Any},
    {L"iserror", Manner::Testing, Boolean, Any},
    {L"isna", Manner::Testing, Boolean, Any},
    {L"isrunning", Manner::Reading, Boolean, Any},
    {L"getprocid", Manner::Reading, Number, Any},
    {L"left", Manner::Strict, Text, Valued},
    {L"len", Manner::Strict, Number, Valued},
    {L"lcase", Manner::Strict, Text, Valued},
    {L"med", Manner::Strict, Number, Numeric},
    {L"median", Manner::Strict, Number, Numeric},
    {L"mid", Manner::Strict, Text, Valued},
    {L"startswith", Manner::Strict, Boolean, Valued},
    {L"endswith", Manner::Strict, Boolean, Valued},
    {L"cstr", Manner::Strict, Text, Valued},
    {L"tostring", Manner::Strict, Text, Valued},
    {L"strcat", Manner::Strict, Text, Valued},
    {L"strreplace", Manner::Strict, Text, Valued},
    {L"mod", Manner::Strict, Number, Numeric},
    {L"not", Manner::Strict, Boolean, Boolean},
    {L"slope", Manner::Strict, Number, Numeric},
    {L"stdev", Manner::Strict, Number, Numeric},
    {L"sd", Manner::Strict, Number, Numeric},
    {L"ftoa", Manner::Strict, Text, Numeric},
    {L"fcvt", Manner::Strict, Text, Numeric},
    {L"fmteng", Manner::Strict, Text, Valued},
    {L"right", Manner::Strict, Text, Valued},
    {L"round", Manner::Strict, Text, Numeric},
    {L"substring", Manner::Strict, Text, Valued},
    {L"val", Manner::Strict, Number, Valued},
    {L"tohex", Manner::Strict, Text, Numeric},
    {L"fromhex", Manner::Strict, Number, Text},
    {L"getconfig", Manner::Reading, Any, Any},
    {L"config", Manner::Reading, Any, Any},
    {L"getconfigbool", Manner::Reading, Boolean, Any},
    {L"getconfigint", Manner::Reading, Number, Any},
    {L"getconfiguint", Manner::Reading, Number, Any},
    {L"getconfigdbl", Manner::Reading, Number, Any},
    {L"getconfigstr", Manner::Reading, Text, Any},
    {L"getenv", Manner::Reading, Any, Any},
    {L"getevent", Manner::Reading, Number, Any},
    {L"getstatus", Manner::Reading, Any, Any},
    {L"getusage", Manner::Reading, Any, Any},
    {L"matches", Manner::Strict, Boolean, Valued},
    {L"exist", Manner::Reading, Boolean, Any},
    {L"fileexist", Manner::Reading, Boolean, Any},
    {L"filesize", Manner::Reading, Number, Any},
    {L"filecrc", Manner::Reading, Number, Any},
    {L"filezynqchecksum", Manner::Reading, Number, Any},
    {L"rand", Manner::Reading, Number, Numeric},
    {L"random", Manner::Reading, Number, Numeric},
    {L"ucase", Manner::Strict, Text, Valued},
    {L"versioncompare", Manner::Strict, Number, Valued},
    {L"listitem", Manner::Strict, Text, Valued},
    {L"listlen", Manner::Strict, Number, Text},
    {L"isinlist", Manner::Strict, Boolean, Valued},
};
} // namespace

unsigned int ValueKinds::Of(const EEToken& token)
{
    double number = 0;
    switch (token.GetDataType()) {
    case DT_NUM: return Number;
    case DT_BOOL: return Boolean;
    case DT_STR: return token.TryCast(number) ? NumericText : OtherText;
    default: return Error;
    }
}

EEToken ValueKinds::MakeSample(unsigned int kinds, int position)
{
    EEToken token;
    token.SetPosition(position);
    if ((kinds & Number) != 0)
        token.SetValue(1.0);
    else if ((kinds & Boolean) != 0)
        token.SetValue(true);
    else
        token.SetValue((kinds & NumericText) != 0 ? L"1" : L"?");
    return token;
}

OperatorRule GetOperatorRule(std::wstring_view name)
{
    const OperatorRow* row = operatorTable_gb;
    while (row->name[0] && row->GetName() != name)
        ++row;
    switch (row->operation) {
    case Operation::And:
    case Operation::Or:
    case Operation::Xor: return {Boolean, Boolean, false, false};
    case Operation::Equal:
    case Operation::Differ: return {Valued, Boolean, true, false};
    case Operation::Greater:
    case Operation::Less:
    case Operation::GreaterOrEqual:
    case Operation::LessOrEqual: return {Numeric, Boolean, true, true};
    case Operation::Join: return {Valued, Text, false, false};
    default: return {Numeric, Number, false, false};
    }
}

FunctionRule GetFunctionRule(const EEFunction& function)
{
    static const auto rules = [] {
        std::unordered_map<const EEFunction*, const FunctionRule*> found;
        for (const FunctionRule& rule : functionRules_lc)
            found.emplace(fnTable_gb.FindOrNull(rule.name), &rule);
        return found;
    }();
    if (function.GetRoutine().IsGiven())
        return {function.GetLowerCaseName().ToCString(), Manner::Strict, Number, Numeric};
    const auto rule = rules.find(&function);
    if (rule == rules.end())
        return {function.GetLowerCaseName().ToCString(), Manner::Unknown, Any, Any};
    return *rule->second;
}
