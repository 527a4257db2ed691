// Runs what the documents show: the commands behind "$ " at the start of a line in a block of theirs, in a folder that
// holds the files of the page, which are the blocks that name one ("labsh cal.txt"), and compares what comes out with
// the lines below each.

#include "Shell/Labsh.h"
#include "Support/TestFiles.h"
#include "Support/Times.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <regex>
#include <set>
#include <sstream>

namespace {
const std::string fence = "```";
const std::string prompt = "$ ";

struct Block
{
    std::string info;
    std::vector<std::string> lines;
};

std::vector<Block> ReadBlocks(const std::string& page)
{
    std::vector<Block> blocks;
    bool isOpen = false;
    for (const std::string& line : ReadTestLines("../" + page)) {
        if (line.starts_with(fence)) {
            isOpen = !isOpen;
            if (isOpen)
                blocks.push_back({line.substr(fence.size()), {}});
        } else if (isOpen) {
            blocks.back().lines.push_back(line);
        }
    }
    return blocks;
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
        return std::regex_replace(text, std::regex(folder.GetPath()), "/home/you");
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

/// What the block says that its commands print, and what they do.
void CompareCommands(CommandLine& commandLine, const Block& block)
{
    std::string printed;
    for (const std::string& line : block.lines) {
        if (line.starts_with(prompt))
            printed += line + "\n" + commandLine.Run(line.substr(prompt.size()));
    }
    EXPECT_EQ(HideTimes(printed), HideTimes(Join(block.lines)));
}

void AddOptions(const std::string& text, std::set<std::string>& options)
{
    static const std::regex option("--?[a-z]+");
    for (std::sregex_iterator found(text.begin(), text.end(), option), end; found != end; ++found)
        options.insert(found->str());
}
} // namespace

TEST(DocumentsTest, CommandsPrintWhatIsShown)
{
    for (const char* page : {"README.md", "Docs/Scripts.md"}) {
        SCOPED_TRACE(page);
        CommandLine commandLine;
        int count = 0;
        for (const Block& block : ReadBlocks(page)) {
            const std::string language = "labsh ";
            if (block.info.starts_with(language))
                commandLine.folder.Write(block.info.substr(language.size()), Join(block.lines));
            if (block.lines.at(0).starts_with(prompt)) {
                CompareCommands(commandLine, block);
                ++count;
            }
        }
        EXPECT_GT(count, 0);
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
