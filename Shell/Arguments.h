#pragma once

#include <optional>
#include <string>
#include <vector>

struct Variable
{
    std::string name;
    std::string value;
};

/// What labsh was started with.
struct Arguments
{
    std::optional<std::string> line; // the words behind the options, joined by blanks
    std::optional<std::string> script;
    std::vector<Variable> variables; // of the script
    std::string firstWord;           // of the line
    std::optional<std::vector<std::string>> checkedScripts;
    bool keepsGoing = false;
    bool isStrict = false;
    bool traces = false;
    std::optional<std::string> assertReport;
    std::optional<std::string> sessionLog;
    bool isFresh = false;
    bool servesEditor = false;
    std::string dataFolder;
    std::vector<std::string> plugins;
};

/// The exit status where scripts were to be checked and could not be.
constexpr int couldNotCheck = 3;

/// Reads the arguments. Yields an exit status when nothing remains to be done: help or version was printed, or the
/// options are wrong.
std::optional<int> ReadArguments(int count, char** texts, Arguments& arguments);
