#include "Arguments.h"

#include "Text/CharacterCase.h"
#include "Text/SimilarName.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <cstdlib>
#include <utility>

static constexpr const char* description =
    "The bench shell: runs the instrument's commands against an instrument on the desk.\n"
    "With words it runs them as one line. With -f it runs a script, and words name=value are variables of it. "
    "Otherwise\n"
    "standard input is a script, or, on a terminal, commands are asked for.";

static constexpr const char* footer =
    "The options come before the first word; -- ends them.\n"
    "`labsh Help` lists the commands, `labsh Help Calc` explains one.\n"
    "\n"
    "Examples:\n"
    "  labsh 'Calc 6*7'                               a line\n"
    "  labsh -x -f cal.txt target=40 unit=\"A 7\"       a script, each command shown\n"
    "  labsh --check *.labsh                          what is wrong with scripts\n"
    "\n"
    "Exit status:\n"
    "  0        all went well; with --check: nothing was found\n"
    "  1        a command failed, with a line on standard error; with --check: there are warnings alone\n"
    "  2        wrong options; with --check: there are errors\n"
    "  3        with --check: a script could not be checked\n"
    "  128+n    the shell was ended by the signal n\n"
    "  other    what Exit was given";

/// The data folder where no option names one; empty where the environment gives none.
static std::string GetDefaultDataFolder()
{
    const auto get = [](const char* name) { return std::string(std::getenv(name) ? std::getenv(name) : ""); };
    if (std::string home = get("LABSH_HOME"); !home.empty())
        return home;
    if (const std::string data = get("XDG_DATA_HOME"); !data.empty())
        return data + "/labsh";
    const std::string home = get("HOME");
    return home.empty() ? "" : home + "/.local/share/labsh";
}

/// Words of the form name=value, with names that Set accepts.
static std::vector<Variable> ReadVariables(const std::vector<std::string>& words)
{
    std::vector<Variable> variables;
    for (const std::string& word : words) {
        const std::size_t nameEnd = word.find('=');
        const bool isName =
            std::ranges::all_of(word.substr(0, nameEnd), [](unsigned char ch) { return IsNameCharacter(ch); });
        if (nameEnd == 0 || nameEnd == std::string::npos || !isName)
            throw CLI::ValidationError(word, "behind a script stand its variables, as name=value");
        variables.push_back({word.substr(0, nameEnd), word.substr(nameEnd + 1)});
    }
    return variables;
}

/// " (did you mean --strict?)" for an option that is nearly one of the shell's, else empty.
static std::string AskForOption(const CLI::App& app, const std::string& option)
{
    const std::size_t start = std::min(option.find_first_not_of('-'), option.size());
    SimilarName similar(WString::FromUtf8(option.substr(start, option.find('=', start) - start)));
    for (const CLI::Option* const known : app.get_options()) {
        for (const std::string& name : known->get_lnames())
            similar.Offer(WString::FromUtf8(name));
    }
    return similar.Get().IsEmpty() ? "" : DidYouMean(L"--" + similar.Get()).ToUtf8();
}

/// Standard input, or an option of the command Check.
static bool IsOfCheck(const std::string& word)
{
    return word == "-" || word == "-json";
}

std::optional<int> ReadArguments(int count, char** texts, Arguments& arguments)
{
    constexpr int wrongOptions = 2;
    CLI::App app(description, "labsh");
    app.footer(footer);
    app.set_version_flag("--version", "labsh " LABSH_VERSION, "Print the version and exit");
    arguments.dataFolder = GetDefaultDataFolder();

    app.prefix_command(); // the first word ends the options, and all words stay as they are

    app.add_option("-f", arguments.script, "Run the commands of this file")->type_name("FILE")->take_last();
    app.add_flag("-k", arguments.keepsGoing, "Go on with a script after a command failed");
    app.add_flag(
        "--strict", arguments.isStrict, "Fail where a command such as If goes on after a failure, not just warn");
    app.add_flag(
        "-x", arguments.traces, "Show on standard error each command, its conditions and the variables it changes");
    app.add_option(
           "--junit", arguments.assertReport, "Report each Assert to this file, in the XML of JUnit, and count them")
        ->type_name("FILE")
        ->take_last();
    app.add_option("--log", arguments.sessionLog,
           "Record the session in this file, behind what it holds: each line with its time")
        ->type_name("FILE")
        ->take_last();
    app.add_flag(
        "--lsp", arguments.servesEditor, "Serve an editor: the language server protocol on standard input and output");
    const auto fresh =
        app.add_flag("--fresh", arguments.isFresh, "Work on a new instrument that is thrown away at the end");
    app.add_option("--data", arguments.dataFolder, "The instrument's data folder")
        ->excludes(fresh)
        ->type_name("DIR")
        ->capture_default_str()
        ->take_last();
    app.add_option("--plugin", arguments.plugins, "Load this plug-in too")->type_name("FILE")->allow_extra_args(false);
    bool checks = false;
    app.add_flag("--check", checks, "Look for what is wrong with the scripts FILE..., without running them")
        ->excludes("-f");
    std::vector<std::string> words;
    try {
        app.parse(count, texts);
        words = app.remaining();
        if (!words.empty() && words[0] == "--")
            words.erase(words.begin());
        else if (!words.empty() && words[0].starts_with('-') && !(checks && IsOfCheck(words[0])))
            throw CLI::ExtrasError(std::vector<std::string>{words[0] + AskForOption(app, words[0])});
        if (checks && words.empty())
            throw CLI::ValidationError("--check", "which scripts?");
        if (checks)
            arguments.checkedScripts = std::exchange(words, {});
        if (arguments.script)
            arguments.variables = ReadVariables(std::exchange(words, {}));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : app.count("--check") > 0 ? couldNotCheck : wrongOptions;
    }
    if (!words.empty())
        arguments.firstWord = words[0];
    for (const std::string& word : words)
        arguments.line = arguments.line ? *arguments.line + ' ' + word : word;
    return std::nullopt;
}
