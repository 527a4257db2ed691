#include "Commands/EmbeddedResource.h"
#include "Support/Expressions.h"

#include <algorithm>
#include <sstream>
#include <vector>

namespace {
std::vector<std::string> ReadHelpText(const std::string& name)
{
    std::string text;
    EXPECT_TRUE(EmbeddedResource::TryReadSection(PLUGIN_FILE, ".ov." + name, text)) << name;
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line, '\n');)
        lines.push_back(line.substr(0, line.find('\r')));
    return lines;
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

/// Evaluates every line "expression -> outcome" and returns how many there were.
int CheckExamples(const std::string& name)
{
    const std::string arrow = " -> ";
    int examples = 0;
    for (const std::string& line : ReadHelpText(name)) {
        const std::size_t at = line.find(arrow);
        if (at == std::string::npos)
            continue;
        EXPECT_EQ(Shown(line.substr(0, at)), line.substr(at + arrow.size())) << name << ": " << line;
        ++examples;
    }
    return examples;
}
} // namespace

TEST(HelpTexts, EveryExampleIsTrue)
{
    EXPECT_EQ(CheckExamples("HELP.TXT"), 6);
    EXPECT_EQ(CheckExamples("FUNCTIONS.TXT"), 145);
}

TEST(HelpTexts, EveryFunctionHasAnEntry)
{
    const std::vector<std::string> lines = ReadHelpText("FUNCTIONS.TXT");
    WStringArray names;
    ExpressionEvaluator::GetSupportedFunctions(names);
    EXPECT_EQ(names.Count(), 89u);
    for (const WString& name : names) {
        const std::string call = name.ToUtf8() + "(";
        const bool found = std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
            return line.starts_with(call) || (!line.starts_with(" ") && line.find(" or " + call) != std::string::npos);
        });
        EXPECT_TRUE(found) << name.ToUtf8();
    }
}
