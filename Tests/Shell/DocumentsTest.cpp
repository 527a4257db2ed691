// Runs what the documents show, in a folder that holds the files of the page, which are the blocks that name one
// ("labsh cal.txt"), and compares what comes out with the lines below each: the commands behind "$ ", the command lines
// of the shell behind "> ", those at its prompt behind "labsh> ", the expressions of lines like "    1+2 -> 3", and the
// rows of a table of failures that show an example: "| number | message | `expression` |".

#include "ExpressionEvaluator.h"
#include "Shell/AtTerminal.h"
#include "Shell/Labsh.h"
#include "Support/TestFiles.h"
#include "Support/Times.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <set>
#include <sstream>

namespace {
const std::string fence = "```";
const std::string prompt = "$ ";
const std::string shellPrompt = "> ";
const std::string arrow = " -> ";

struct Block
{
    std::string info;
    std::vector<std::string> lines;
};

/// An expression and what is shown of its outcome.
struct Example
{
    std::string expression;
    std::string outcome;
};

struct Page
{
    std::vector<Block> blocks;
    std::vector<Example> values;
    std::vector<Example> failures;
};

/// The cells of "| a | b | c |".
std::vector<std::string> ReadCells(const std::string& line)
{
    const std::string separator = " | ";
    std::vector<std::string> cells;
    std::size_t start = line.starts_with("| ") ? 2 : std::string::npos;
    for (std::size_t end = start; start < line.size(); start = end + separator.size()) {
        end = std::min(line.find(separator, start), line.size());
        cells.push_back(line.substr(start, end - start));
    }
    return cells;
}

Page ReadPage(const std::string& name)
{
    Page page;
    std::vector<Block>& blocks = page.blocks;
    bool isOpen = false;
    for (const std::string& line : ReadTestLines("../" + name)) {
        if (line.starts_with(fence)) {
            isOpen = !isOpen;
            if (isOpen)
                blocks.push_back({line.substr(fence.size()), {}});
        } else if (isOpen) {
            blocks.back().lines.push_back(line);
        } else if (const std::size_t at = line.find(arrow); line.starts_with("    ") && at != std::string::npos) {
            page.values.push_back({line.substr(4, at - 4), line.substr(at + arrow.size())});
        } else if (const auto cells = ReadCells(line); cells.size() > 3 && cells[2].starts_with('`')) {
            page.failures.push_back({cells[2].substr(1, cells[2].size() - 2), cells[0] + " " + cells[1]});
        }
    }
    return page;
}

/// A folder with the shell, in which commands are run one after the other.
class CommandLine
{
public:
    CommandLine() { std::filesystem::create_symlink(LABSH_FILE, folder.Path("labsh")); }

    std::string Run(const std::string& command)
    {
        const std::string script = "cd " + folder.GetPath() +
            "; export LABSH_HOME=data PATH=.:$PATH; exec 2>&1 </dev/null; (exit " + std::to_string(status) + ")\n" +
            command + "\n";
        std::FILE* const output = popen(script.c_str(), "r");
        std::string text;
        for (int byte = 0; output && (byte = std::fgetc(output)) != EOF;)
            text += static_cast<char>(byte);
        status = WEXITSTATUS(pclose(output));
        const std::string& path = folder.GetPath();
        for (std::size_t at = 0; (at = text.find(path, at)) != text.npos;)
            text.replace(at, path.size(), "/home/you");
        return text;
    }

    const TemporaryFolder folder;

private:
    int status = 0; // of the last command, for $?
};

std::string Join(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

/// What each line that is typed into one shell prints.
std::vector<std::string> RunSession(CommandLine& commandLine, const std::vector<std::string>& typed)
{
    const std::string mark = "--next--\n";
    const std::string echo = "\nEcho " + mark;
    std::string script;
    for (const std::string& line : typed)
        script.append(line).append(echo);
    commandLine.folder.Write("session", script);
    std::string output = commandLine.Run("labsh -k < session 2>&1 | sed 's/^stdin:[0-9]*: //'");
    std::vector<std::string> printed;
    for (std::size_t end = 0; (end = output.find(mark)) != std::string::npos; output.erase(0, end + mark.size()))
        printed.push_back(output.substr(0, end));
    printed.resize(typed.size());
    return printed;
}

/// What each line that is typed at the prompt of one shell shows.
std::vector<std::string> RunAtPrompt(CommandLine& commandLine, const std::vector<std::string>& typed)
{
    AtPrompt shell(commandLine.folder.Path("data"));
    std::vector<std::string> shown(typed.size());
    std::ranges::transform(typed, shown.begin(), [&](const std::string& line) { return shell.Run(line); });
    return shown;
}

std::vector<std::string> RunCommands(CommandLine& commandLine, const std::vector<std::string>& commands)
{
    std::vector<std::string> printed(commands.size());
    std::ranges::transform(commands, printed.begin(), [&](const std::string& each) { return commandLine.Run(each); });
    return printed;
}

/// What the block says that its commands print, and what they do.
void CompareCommands(CommandLine& commandLine, const Block& block, const std::string& start,
    std::vector<std::string> (&run)(CommandLine&, const std::vector<std::string>&))
{
    std::vector<std::string> commands;
    for (const std::string& line : block.lines)
        if (line.starts_with(start))
            commands.push_back(line.substr(start.size()));
    const std::vector<std::string> outputs = run(commandLine, commands);
    std::string printed;
    for (std::size_t i = 0; i < commands.size(); ++i)
        printed += start + commands[i] + "\n" + outputs[i];
    EXPECT_EQ(HideTimes(printed), HideTimes(Join(block.lines)));
}

void AddOptions(const std::string& text, std::set<std::string>& options)
{
    constexpr const char* characters = "-abcdefghijklmnopqrstuvwxyz";
    for (std::size_t at = 0; (at = text.find('-', at)) != text.npos;) {
        const std::size_t end = std::min(text.find_first_not_of(characters, at), text.size());
        options.insert(text.substr(at, end - at));
        at = end;
    }
}

std::vector<std::string> RunExpressions(
    CommandLine& commandLine, const std::string& command, const std::vector<Example>& examples)
{
    std::vector<std::string> commands(examples.size());
    std::ranges::transform(
        examples, commands.begin(), [&](const Example& example) { return command + " " + example.expression; });
    return RunSession(commandLine, commands);
}

/// The value, or the error as its message, which stands in the second line.
void CompareValues(CommandLine& commandLine, const std::vector<Example>& examples)
{
    const std::vector<std::string> printed = RunExpressions(commandLine, "Calc", examples);
    const std::string start = "Error:\n  ";
    for (std::size_t i = 0; i < examples.size(); ++i) {
        const std::string& text = printed[i];
        const std::size_t messageEnd = text.find('\n', start.size());
        EXPECT_EQ(text.starts_with(start) ? "Error: " + text.substr(start.size(), messageEnd - start.size() + 1) : text,
            examples[i].outcome + "\n")
            << examples[i].expression;
    }
}

void CompareFailures(CommandLine& commandLine, const std::vector<Example>& examples)
{
    const std::vector<std::string> printed = RunExpressions(commandLine, "Calc -q", examples);
    for (std::size_t i = 0; i < examples.size(); ++i)
        EXPECT_THAT(printed[i], testing::StartsWith("Calc: 1043:505:" + examples[i].outcome)) << examples[i].expression;
}

} // namespace

TEST(DocumentsTest, CommandsPrintWhatIsShown)
{
    for (const char* name : {"README.md", "Docs/Check.md", "Docs/Commands.md", "Docs/Errors.md", "Docs/Language.md",
             "Docs/Scripts.md", "Docs/Shell.md", "Docs/Tutorial.md"}) {
        SCOPED_TRACE(name);
        CommandLine commandLine;
        const Page page = ReadPage(name);
        EXPECT_FALSE(page.blocks.empty() && page.values.empty());
        for (const Block& block : page.blocks) {
            const std::string language = "labsh ";
            if (block.info.starts_with(language))
                commandLine.folder.Write(block.info.substr(language.size()), Join(block.lines));
            else if (block.lines.at(0).starts_with(prompt))
                CompareCommands(commandLine, block, prompt, RunCommands);
            else if (block.lines.at(0).starts_with(shellPrompt))
                CompareCommands(commandLine, block, shellPrompt, RunSession);
            else if (block.lines.at(0).starts_with(AtPrompt::prompt))
                CompareCommands(commandLine, block, AtPrompt::prompt, RunAtPrompt);
            else
                ADD_FAILURE() << "No prompt that is known stands before " << block.lines.at(0);
        }
        CompareValues(commandLine, page.values);
        CompareFailures(commandLine, page.failures);
    }
}

TEST(DocumentsTest, CodeIsThatOfTheExamples)
{
    const std::pair<const char*, std::string> pages[] = {
        {"Docs/Embedding.md", "Embedding"}, {"Docs/FunctionPlugins.md", "Plugin"}};
    for (const auto& [name, folder] : pages) {
        const std::vector<Block> blocks = ReadPage(name).blocks;
        EXPECT_GE(blocks.size(), 2U);
        for (const Block& block : blocks) {
            const std::string file = block.info.substr(block.info.find(' ') + 1);
            std::string path = "../Examples/";
            path.append(folder).append("/").append(file);
            EXPECT_EQ(block.lines, ReadTestLines(path)) << file;
        }
    }
}

TEST(DocumentsTest, EveryOptionIsListed)
{
    std::set<std::string> listed;
    for (const std::string& line : ReadTestLines("../Docs/Scripts.md")) {
        if (line.starts_with("| `-"))
            AddOptions(line.substr(0, line.find('|', 1)), listed);
    }
    std::set<std::string> offered;
    std::istringstream help(CommandLine().Run("labsh --help"));
    for (std::string line; std::getline(help, line);) {
        if (line.starts_with("  -"))
            AddOptions(line.substr(0, line.find(' ', 2)), offered);
    }
    EXPECT_EQ(listed, offered);
    EXPECT_TRUE(offered.contains("--junit"));
}

TEST(DocumentsTest, ThePageOfCommandsNamesThemAll)
{
    CommandLine commandLine;
    const std::string page = TemporaryFolder::ReadFile(SOURCE_DIR "/Docs/Commands.md");
    int count = 0;
    std::istringstream list(commandLine.Run("labsh Help | sed -n '/^Topics/q; s/^ \\([A-Za-z]*\\).*/\\1/p'"));
    for (std::string name; list >> name; ++count)
        EXPECT_TRUE(page.find("\n## " + name + "\n") != std::string::npos) << name;
    EXPECT_GT(count, 10);
}

TEST(DocumentsTest, ThePageOfTheLanguageNamesAllFunctions)
{
    const std::string page = TemporaryFolder::ReadFile(SOURCE_DIR "/Docs/Language.md");
    WStringArray functions;
    ExpressionEvaluator::GetSupportedFunctions(functions);
    for (const WString& function : functions)
        EXPECT_TRUE(page.find("`" + function.ToUtf8() + "`") != std::string::npos) << function.ToUtf8();
}
