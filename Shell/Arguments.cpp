#include "Arguments.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdlib>

static constexpr const char* description =
    "The bench shell: runs the instrument's commands against an instrument on the desk.\n"
    "With words it runs them as one line, with -f a script. Otherwise standard input is a script, or, on a terminal,\n"
    "commands are asked for.";

static constexpr const char* footer =
    "The options come before the first word. `labsh Help` lists the commands, `labsh Help Calc` explains one.\n"
    "Exit status: 0; 1 when a command failed, with a line on standard error; 2 for wrong options.";

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

std::optional<int> ReadArguments(int count, char** texts, Arguments& arguments)
{
    constexpr int wrongOptions = 2;
    CLI::App app(description, "labsh");
    app.footer(footer);
    app.set_version_flag("--version", "labsh 1.0", "Print the version and exit");
    arguments.dataFolder = GetDefaultDataFolder();

    app.prefix_command(); // the first word ends the options, and all words stay as they are

    app.add_option("-f", arguments.script, "Run the commands of this file")->type_name("FILE")->take_last();
    app.add_flag("-k", arguments.keepsGoing, "Go on with a script after a command failed");
    app.add_option("--data", arguments.dataFolder, "The instrument's data folder")
        ->type_name("DIR")
        ->capture_default_str()
        ->take_last();
    app.add_option("--plugin", arguments.plugins, "Load this plug-in too")->type_name("FILE")->allow_extra_args(false);
    std::vector<std::string> words;
    try {
        app.parse(count, texts);
        words = app.remaining();
        if (!words.empty() && words[0] == "--")
            words.erase(words.begin());
        else if (!words.empty() && words[0].starts_with('-'))
            throw CLI::ExtrasError(std::vector<std::string>{words[0]});
        if (!words.empty() && arguments.script)
            throw CLI::ValidationError("-f", "there is a line to run already");
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : wrongOptions;
    }
    for (const std::string& word : words)
        arguments.line = arguments.line ? *arguments.line + ' ' + word : word;
    return std::nullopt;
}
