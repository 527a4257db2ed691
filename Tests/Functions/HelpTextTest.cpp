#include "Commands/EmbeddedResource.h"
#include "Support/Expressions.h"

#include <sstream>

namespace {
std::string ReadHelpText(const wchar_t* name)
{
    std::string text;
    for (EmbeddedResource lines(PLUGIN_FILE, name); !lines.EndOfFile();)
        text += lines.ReadLine().ToUtf8() + "\n";
    return text;
}

/// The outcome as the texts show it: the value's text, or "Error: " and the message.
std::string Shown(const std::string& expression)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    EEToken value;
    if (evaluator.TryEvaluate(WString::FromUtf8(expression), value))
        return value.ToString().ToUtf8();
    ExitCode code;
    WString message;
    evaluator.TryGetErrorMessage(code, message, nullptr);
    return "Error: " + message.ToUtf8();
}
} // namespace

TEST(HelpTexts, EveryExampleIsTrue)
{
    const std::string arrow = " -> ";
    int examples = 0;
    std::istringstream lines(ReadHelpText(L"HELP.TXT") + ReadHelpText(L"FUNCTIONS.TXT"));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t at = line.find(arrow);
        if (at == std::string::npos)
            continue;
        EXPECT_EQ(Shown(line.substr(0, at)), line.substr(at + arrow.size())) << line;
        ++examples;
    }
    EXPECT_GE(examples, 94);
}

TEST(HelpTexts, EveryFunctionHasAnEntry)
{
    const std::string text = "\n" + ReadHelpText(L"FUNCTIONS.TXT");
    WStringArray names;
    ExpressionEvaluator::GetSupportedFunctions(names);
    for (const WString& name : names) {
        const auto contains = [&](const std::string& before) {
            return text.find(before + name.ToUtf8() + "(") != std::string::npos;
        };
        EXPECT_TRUE(contains("\n") || contains(" or ")) << name.ToUtf8();
    }
}
