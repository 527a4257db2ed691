#include "ExpressionEvaluatorFunctions.h"
#include "Support/Expressions.h"

#include <algorithm>
#include <vector>

namespace {
/// Arguments with which the functions can be called. Those marked by "*" may hold an error, which is looked at
/// or handed on.
struct SampleCall
{
    WStringArray functions;
    std::vector<std::string> arguments;
};

const std::vector<SampleCall>& GetSampleCalls()
{
    static const std::vector<SampleCall> samples = {
        {{L"exp", L"ln", L"log", L"sqr", L"sqrt", L"abs", L"sign", L"sin", L"cos", L"tan", L"asin", L"acos", L"atan",
             L"sinh", L"cosh", L"tanh", L"int", L"floor", L"ceil", L"DaysToDate", L"DateToDays"},
            {"1"}},
        {{L"Avg", L"Average", L"Max", L"Min", L"Med", L"Median", L"Sum", L"StDev", L"Sd", L"StrCat"}, {"1", "2", "3"}},
        {{L"Slope", L"Intercept", L"Icpt"}, {"1", "2", "3", "4"}},
        {{L"Mod"}, {"7", "3"}},
        {{L"Rand", L"Random"}, {"1", "5", "2"}},
        {{L"Not", L"Bool"}, {"true"}},
        {{L"IF"}, {"true", "*1", "*2"}},
        {{L"IsNA", L"IsErr", L"IsError", L"Defined", L"Val"}, {"*1"}},
        {{L"InitIfNa"}, {"*1", "*2"}},
        {{L"Len", L"UCase", L"LCase", L"CStr", L"ToString"}, {R"("ab")"}},
        {{L"Left", L"Right", L"Round", L"ToHex", L"Ftoa", L"Fcvt"}, {"12", "2"}},
        {{L"FmtEng"}, {"12", "3", "true"}},
        {{L"FromHex", L"GetEvent", L"Exist", L"FileExist", L"FileSize", L"FileCrc", L"FileZynqChecksum"}, {R"("FF")"}},
        {{L"Mid", L"SubString"}, {R"("abc")", "1", "2"}},
        {{L"IndexOf", L"InStr"}, {"0", R"("abc")", R"("b")"}},
        {{L"StartsWith", L"EndsWith"}, {R"("abc")", R"("b")", "true"}},
        {{L"StrReplace"}, {R"("abc")", R"("b")", R"("d")", "true"}},
        {{L"Matches", L"GetProcId", L"IsRunning"}, {R"("no.such")", R"("x")"}},
        {{L"GetEnv", L"GetStatus", L"GetUsage"}, {R"("no.such")", "*1"}},
        {{L"VersionCompare"}, {R"("1.0")", R"("1.1")"}},
        {{L"ListLen"}, {R"("a,b")", R"(",")"}},
        {{L"ListItem"}, {R"("a,b")", "1", R"(",")"}},
        {{L"IsInList"}, {R"("a")", R"("a,b")", "true", R"(",")"}},
        {{L"GetConfig", L"Config", L"GetConfigBool", L"GetConfigInt", L"GetConfigUInt", L"GetConfigDbl",
             L"GetConfigStr"},
            {R"("no")", R"("such")", "1"}},
    };
    return samples;
}

/// The call with `argument` in the given place; `position` receives where that begins, counted from 1.
std::string Call(const WString& function, const SampleCall& sample, std::size_t place, const std::string& argument,
    std::size_t& position)
{
    std::string call = function.ToUtf8() + "(";
    for (std::size_t index = 0; index < sample.arguments.size(); ++index) {
        call += index == 0 ? "" : ", ";
        if (index == place)
            position = call.size() + 1;
        call += index == place ? argument : sample.arguments[index].substr(sample.arguments[index][0] == '*');
    }
    return call + ")";
}

const SampleCall* FindSample(const WString& function)
{
    for (const SampleCall& sample : GetSampleCalls())
        if (std::find(sample.functions.begin(), sample.functions.end(), function) != sample.functions.end())
            return &sample;
    return nullptr;
}
} // namespace

TEST(Functions, EndInTheErrorOfAnArgument)
{
    WStringArray functions;
    fnTable_gb.GetSupportedFunctions(functions);
    EXPECT_EQ(functions.Count(), 89u);
    for (const WString& function : functions) {
        const SampleCall* sample = FindSample(function);
        ASSERT_TRUE(sample) << "no sample call of " << function.ToUtf8();
        for (std::size_t place = 0; place < sample->arguments.size(); ++place) {
            if (sample->arguments[place][0] == '*')
                continue;
            std::size_t position = 0;
            const std::string quotient = Call(function, *sample, place, "1/0", position);
            EXPECT_EQ(Outcome(quotient), "133 Divide by zero @" + std::to_string(position + 2)) << quotient;
            const std::string missing = Call(function, *sample, place, "kaka", position);
            EXPECT_EQ(Outcome(missing), "48 Missing variable: kaka @" + std::to_string(position)) << missing;
        }
    }
}
