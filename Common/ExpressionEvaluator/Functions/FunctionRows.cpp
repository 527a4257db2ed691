#include "ExpressionEvaluatorFunctions.h"
#include "FunctionClasses.h"

#include <cmath>

namespace {
/// A function's name, what makes it, and what it gives for arguments that are all numbers.
struct FunctionRow
{
    const wchar_t* name;
    EEFunction* (*make)(const wchar_t* name);
    double (*routine)(std::span<const double>) = nullptr;
};

/// A parameter count of -1 leaves the check to the function; further arguments go to its constructor.
template <typename Function, int parameterCount, auto... settings>
EEFunction* Make(const wchar_t* name)
{
    return new Function(name, parameterCount, settings...);
}

constexpr FunctionRow functions_lc[] = {
    {L"Avg", Make<EEAvg, -1>, GetMean},
    {L"Average", Make<EEAvg, -1>, GetMean},
    {L"Bool", Make<EEBool, 1>},
    {L"IndexOf", Make<EEIndexOf, -1>},
    {L"InStr", Make<EEIndexOf, -1>},
    {L"IF", Make<EEIf, 3>},
    {L"InitIfNa", Make<EEInitIfNa, 2>},
    {L"Intercept", Make<EEIntercept, -1>},
    {L"Icpt", Make<EEIntercept, -1>},
    {L"Defined", Make<EEDefined, 1>},
    {L"IsErr", Make<EEIsErr, 1>},
    {L"IsError", Make<EEIsErr, 1>},
    {L"IsNA", Make<EEIsNA, 1>},
    {L"IsRunning", Make<EEGetProcId, -1, true>},
    {L"GetProcId", Make<EEGetProcId, -1>},
    {L"Left", Make<EELeft, 2>},
    {L"Len", Make<EELen, 1>},
    {L"LCase", Make<EELCase, 1>},
    {L"Max", Make<EEMax, -1>, GetGreatest},
    {L"Med", Make<EEMedian, -1>},
    {L"Median", Make<EEMedian, -1>},
    {L"Mid", Make<EEMid, -1>},
    {L"StartsWith", Make<EEStartsWith, -1>},
    {L"EndsWith", Make<EEEndsWith, -1>},
    {L"CStr", Make<EEToString, 1>},
    {L"ToString", Make<EEToString, 1>},
    {L"StrCat", Make<EEStrCat, -1>},
    {L"StrReplace", Make<EEStrReplace, -1>},
    {L"Min", Make<EEMin, -1>, GetSmallest},
    {L"Mod", Make<EEMod, 2>},
    {L"Not", Make<EENot, 1>},
    {L"Slope", Make<EESlope, -1>},
    {L"StDev", Make<EEStDev, -1>},
    {L"Sd", Make<EEStDev, -1>},
    {L"Sum", Make<EESum, -1>, GetSum},
    {L"Ftoa", Make<EEFtoa, 2>},
    {L"Fcvt", Make<EEFcvt, 2>},
    {L"FmtEng", Make<EEFmtEng, 3>},
    {L"Right", Make<EERight, 2>},
    {L"Round", Make<EERound, 2>},
    {L"SubString", Make<EEMid, -1>},
    {L"Val", Make<EEVal, 1>},
    {L"ToHex", Make<EEToHex, -1>},
    {L"FromHex", Make<EEFromHex, 1>},
    {L"GetConfig", Make<EEGetConfig, -1>},
    {L"Config", Make<EEGetConfig, -1>},
    {L"GetConfigBool", Make<EEGetConfigType, -1, ConfigDataType::Bool>},
    {L"GetConfigInt", Make<EEGetConfigType, -1, ConfigDataType::Int>},
    {L"GetConfigUInt", Make<EEGetConfigType, -1, ConfigDataType::UInt>},
    {L"GetConfigDbl", Make<EEGetConfigType, -1, ConfigDataType::Dbl>},
    {L"GetConfigStr", Make<EEGetConfigType, -1, ConfigDataType::Str>},
    {L"GetEnv", Make<EEGetEnv, 2>},
    {L"GetEvent", Make<EEGetEvent, 1>},
    {L"GetStatus", Make<EEGetStatus, -1>},
    {L"GetUsage", Make<EEGetUsage, -1>},
    {L"Matches", Make<EEMatches, 2>},
    {L"Exist", Make<EEFileExist, 1>},
    {L"FileExist", Make<EEFileExist, 1>},
    {L"FileSize", Make<EEFileSize, 1>},
    {L"FileCrc", Make<EEFileCrc, 1>},
    {L"FileZynqChecksum", Make<EEFileZynqChecksum, 1>},
    {L"Rand", Make<EERand, -1>},
    {L"Random", Make<EERand, -1>},
    {L"UCase", Make<EEUCase, 1>},
    {L"VersionCompare", Make<EEVersionCompare, 2>},
    {L"ListItem", Make<EEListItem, -1>},
    {L"ListLen", Make<EEListLen, -1>},
    {L"IsInList", Make<EEIsInList, -1>},
};

/// A routine of one number; an empty name ends the table.
struct OneArgumentRow
{
    wchar_t name[12];
    double (*routine)(double);
};

const OneArgumentRow oneArgFn_lc[] = {
    {L"exp", std::exp},
    {L"ln", std::log}, // natural
    {L"log", std::log10},
    {L"sqr", std::sqrt}, // a root, not a square
    {L"sqrt", std::sqrt},
    {L"abs", std::fabs},
    {L"sign", sign},
    {L"sin", std::sin}, // angles are in radians
    {L"cos", std::cos},
    {L"tan", std::tan},
    {L"asin", std::asin},
    {L"acos", std::acos},
    {L"atan", std::atan},
    {L"sinh", std::sinh},
    {L"cosh", std::cosh},
    {L"tanh", std::tanh},
    {L"int", MyInt},
    {L"floor", std::floor},
    {L"ceil", std::ceil},
    {L"DaysToDate", DaysToDate},
    {L"DateToDays", DateToDays},
    {L"", nullptr},
};

constexpr unsigned int functionBuckets = 67;
} // namespace

EEFunctionTable::EEFunctionTable() : functions(functionBuckets)
{
    const auto add = [this](EEFunction* function, const EEFunction::Routine& routine) {
        function->SetRoutine(routine);
        AddFn(function);
    };
    for (const FunctionRow& row : functions_lc)
        add(row.make(row.name), {.ofMany = row.routine});
    for (const OneArgumentRow* row = oneArgFn_lc; row->name[0]; ++row)
        add(new EEMathFunctionPointer(row->name, row->routine), {.ofOne = row->routine});
}
