// The topics and errors that Help tells about: what they show is true, and no error is forgotten.

#include "Commands/EmbeddedResource.h"
#include "Shell/Labsh.h"
#include "Support/ExpressionFile.h"
#include "Text/HostError.h"

#include <cctype>
#include <cstdio>
#include <map>

namespace {
constexpr const char* indent = "    "; // of what can be pasted

std::vector<std::string> SplitLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/// What Help explains an exit code by.
struct ExplainedError
{
    std::string pattern;
    std::string message;
    std::vector<std::string> examples;
};

std::vector<ExplainedError> ReadExplanations(const char* file)
{
    std::vector<ExplainedError> explanations;
    for (EmbeddedResource text(file, L"ERRORS.TXT"); !text.EndOfFile();) {
        const std::string line = text.ReadLine().ToUtf8();
        const std::size_t blank = line.find(' ');
        if (blank != 0)
            explanations.push_back({line.substr(0, blank), line.substr(blank + 1), {}});
        else if (line.starts_with(indent))
            explanations.back().examples.push_back(line);
    }
    return explanations;
}

bool Explains(const ExplainedError& explanation, const std::string& code, const std::string& message)
{
    return WString::FromUtf8(code).IsWildcardMatch(WString::FromUtf8(explanation.pattern).ToCString(), false) &&
        message.starts_with(explanation.message);
}
} // namespace

TEST(HelpTest, TopicsCanBePasted)
{
    for (const std::string topic : {"variables", "operators", "functions", "scripts", "errors", "references"}) {
        Labsh labsh;
        ASSERT_EQ(labsh.Run({"Help", topic}), 0) << topic;
        std::string pasted;
        std::string shown;
        for (const std::string& line : SplitLines(labsh.GetOutput())) {
            const std::string comment = std::string(indent) + "# ";
            if (line.starts_with(indent))
                pasted += line + "\n";
            if (line.starts_with(comment))
                shown += line.substr(comment.size()) + "\n";
        }
        EXPECT_FALSE(shown.empty()) << topic;
        labsh.Start({}, pasted);
        EXPECT_EQ(labsh.Finish(), shown + "exit 0") << topic;
    }
}

TEST(HelpTest, ExamplesOfErrorsFailWithThem)
{
    for (const char* file : {LABSH_TEXTS_FILE, PLUGIN_FILE}) {
        const std::vector<ExplainedError> explanations = ReadExplanations(file);
        ASSERT_FALSE(explanations.empty());
        std::string script;
        for (const ExplainedError& explanation : explanations)
            for (const std::string& example : explanation.examples)
                script += example + "\n";
        Labsh labsh({"-k"}, script);
        labsh.Wait();
        std::map<int, std::string> failures; // "1043:505:20 Expecting operand" by their lines
        for (const std::string& report : SplitLines(labsh.GetErrors())) {
            int line = 0;
            int failure = 0; // where it begins; notes have none
            if (std::sscanf(report.c_str(), "stdin:%d: %*[A-Za-z]: %n", &line, &failure) == 1 &&
                std::isdigit(report[static_cast<std::size_t>(failure)]))
                failures[line] = report.substr(static_cast<std::size_t>(failure));
        }
        int line = 0;
        for (ExplainedError explanation : explanations) {
            if (explanation.pattern.find(":0:") != std::string::npos)
                explanation.message.clear(); // a command says more exactly what is wrong
            for (const std::string& example : explanation.examples) {
                const std::string& failure = failures[++line];
                const std::size_t blank = failure.find(' ');
                ASSERT_NE(blank, std::string::npos) << example;
                EXPECT_TRUE(Explains(explanation, failure.substr(0, blank), failure.substr(blank + 1)))
                    << example << ": " << failure;
            }
        }
    }
}

TEST(HelpTest, EveryErrorIsExplained)
{
    std::vector<ExplainedError> explanations = ReadExplanations(LABSH_TEXTS_FILE);
    const auto expect = [&](const std::string& code, const std::string& message) {
        if (std::ranges::none_of(
                explanations, [&](const ExplainedError& each) { return Explains(each, code, message); }))
            ADD_FAILURE() << "No ERRORS.TXT explains " << code << " " << message;
    };
    for (unsigned int number = 1; number <= 100; ++number) {
        const ExitCode code(0, ExitCode::hostModule, number);
        if (const WString message = GetHostMessage(code); !message.IsEmpty())
            expect(code.ToString().ToUtf8(), message.ToUtf8());
    }
    explanations = ReadExplanations(PLUGIN_FILE);
    for (const std::filesystem::path& file : ListTestFiles("Expressions")) {
        for (const ExpressionRow& row : ReadRows(file)) {
            const std::size_t blank = row.outcome.find(' ');
            const std::size_t place = row.outcome.rfind(" @");
            const std::string number = row.outcome.substr(0, blank);
            if (place < row.outcome.size() && number.find(':') == number.npos &&
                number != "48") // of which the name may stand alone
                expect("1043:505:" + number, row.outcome.substr(blank + 1, place - blank - 1));
        }
    }
}
