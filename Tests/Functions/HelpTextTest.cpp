// The help texts of the expression language: what they show is true, and no function is forgotten.

#include "Commands/EmbeddedResource.h"
#include "ExpressionEvaluatorFunctions.h"
#include "Support/ExpressionFile.h"

#include <algorithm>
#include <cctype>

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

/// An example, "expression -> outcome".
struct Example
{
    std::string expression;
    std::string outcome;
};

std::vector<Example> ReadExamples(const std::string& text)
{
    const std::string arrow = " -> ";
    std::vector<Example> examples;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (const std::size_t at = line.find(arrow); at != std::string::npos)
            examples.push_back({line.substr(0, at), line.substr(at + arrow.size())});
    return examples;
}

/// What FUNCTIONS.TXT says of one function, or of one with several names.
struct Entry
{
    std::vector<std::string> names;
    std::string text;
};

/// The names in "Name(...) or OtherName(...) - ...".
std::vector<std::string> ReadNames(const std::string& line)
{
    constexpr std::string_view separator = ") or ";
    const auto isPartOfName = [](unsigned char ch) { return std::isalnum(ch) != 0; };
    std::vector<std::string> names;
    for (std::size_t start = 0;;) {
        const std::size_t end = line.find('(', start);
        const std::string name = line.substr(start, end - start);
        if (end == std::string::npos || !std::ranges::all_of(name, isPartOfName))
            return names;
        names.push_back(name);
        const std::size_t next = line.find(separator, end);
        if (next == std::string::npos)
            return names;
        start = next + separator.size();
    }
}

/// An entry begins with its names, at the start of a line.
std::vector<Entry> ReadEntries()
{
    std::vector<Entry> entries;
    std::istringstream lines(ReadHelpText(L"FUNCTIONS.TXT"));
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(" "))
            entries.push_back({ReadNames(line), ""});
        if (!entries.empty())
            entries.back().text += line + "\n";
    }
    return entries;
}

bool Calls(const std::string& expression, const std::vector<std::string>& names)
{
    return std::ranges::any_of(
        names, [&](const std::string& name) { return expression.find(name + "(") != std::string::npos; });
}

bool ShowsAValue(const Entry& entry)
{
    return std::ranges::any_of(ReadExamples(entry.text), [&](const Example& example) {
        return !example.outcome.starts_with("Error: ") && Calls(example.expression, entry.names);
    });
}

/// Functions whose values no help text can show, since they depend on files and events of the system. The rows of
/// System.txt show them.
bool ShowsAValueInSystemRows(const Entry& entry)
{
    static const char* const names[] = {"FileCrc", "FileSize", "FileZynqChecksum", "GetEvent"};
    return std::ranges::find(names, entry.names.front()) != std::end(names) &&
        std::ranges::any_of(ReadRows("Functions/System.txt"), [&](const ExpressionRow& row) {
            return row.outcome.find('@') == std::string::npos && Calls(row.expression, entry.names);
        });
}
} // namespace

TEST(HelpTexts, EveryExampleIsTrue)
{
    for (const auto& [expression, outcome] : ReadExamples(ReadHelpText(L"HELP.TXT") + ReadHelpText(L"FUNCTIONS.TXT")))
        EXPECT_EQ(Shown(expression), outcome) << expression;
}

TEST(HelpTexts, EveryFunctionHasAnEntryAndEveryEntryAFunction)
{
    std::vector<std::string> described;
    for (const Entry& entry : ReadEntries())
        described.insert(described.end(), entry.names.begin(), entry.names.end());
    WStringArray functions;
    ExpressionEvaluator::GetSupportedFunctions(functions);
    for (const WString& function : functions)
        if (const std::string name = function.ToUtf8(); std::ranges::find(described, name) == described.end())
            ADD_FAILURE() << "FUNCTIONS.TXT does not describe " << name << ": add an entry that begins with \"" << name
                          << "(...) - \", with an example of its value";
    for (const std::string& name : described)
        if (!fnTable_gb.FindOrNull(WString::FromUtf8(name).View()))
            ADD_FAILURE() << "FUNCTIONS.TXT describes " << name
                          << ", which is not in the table: add its row to FunctionRows.cpp";
}

TEST(HelpTexts, EveryEntryShowsAValue)
{
    for (const Entry& entry : ReadEntries()) {
        ASSERT_FALSE(entry.names.empty()) << "No function is named at the start of this entry:\n" << entry.text;
        if (!ShowsAValue(entry) && !ShowsAValueInSystemRows(entry))
            ADD_FAILURE() << "The entry of " << entry.names.front()
                          << " in FUNCTIONS.TXT shows no value: add a line \"    " << entry.names.front()
                          << "(...) -> value\"";
    }
}

TEST(HelpTexts, LinesEndInCrLf)
{
    for (const std::string name : {"HELP.TXT", "FUNCTIONS.TXT"}) {
        const std::string text = TemporaryFolder::ReadFile(SOURCE_DIR "/Common/ExpressionEvaluator/" + name);
        std::size_t bare = text.find('\n');
        while (bare != std::string::npos && bare != 0 && text[bare - 1] == '\r')
            bare = text.find('\n', bare + 1);
        EXPECT_FALSE(text.empty()) << name;
        if (bare != std::string::npos)
            ADD_FAILURE() << "Line "
                          << 1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(bare), '\n')
                          << " of " << name << " does not end in CR LF: save the file with CR LF";
    }
}
