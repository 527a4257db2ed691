#pragma once

#include "Commands/CommandRunner.h"
#include "Commands/ScriptAnalysis.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

/// A command of a script, with the commands that it may run, as a run of the script takes it apart.
struct LoneCommand
{
    struct Part
    {
        std::size_t start; // in the text
        WString text;
        bool isExpectedToFail; // stands under AssertFail
    };

    unsigned int line; // where it begins, from 1
    bool isSilenced;   // by "# check: off" on the line before
    WString text;
    std::vector<std::size_t> lineStarts; // of each of its lines in the text
    std::vector<Part> parts;             // the command itself first, each before those within it

    bool Contains(const TextRange& place) const
    {
        return place.line + 1 >= line && place.line + 1 < line + lineStarts.size();
    }
    /// In the text.
    std::size_t Locate(const TextRange& place) const { return lineStarts[place.line + 1 - line] + place.start; }
    /// The innermost part at the place.
    const Part& FindPart(const TextRange& place) const;
};

std::vector<LoneCommand> ReadCommands(const std::string& script);

/// A command that has failed, wherever it stood.
struct Failure
{
    unsigned int line; // of the script, from 1
    WString command;
    CommandRunner::Outcome outcome;
    bool isExpected; // ran under AssertFail
};

struct ScriptRun
{
    std::vector<Failure> failures;                        // without those that came of the failure of a command within
    std::set<std::pair<unsigned int, WString>> succeeded; // lines and texts of commands that succeeded each time
    bool isClean = true;                                  // no failure but where AssertFail or While -er provide for it
};

/// Runs a script to its end, whatever fails. One that does not end is stopped.
ScriptRun RunWhole(const std::string& path, const Environment& environment);

/// Why a finding should not be one in a script that was run with `variables`; empty when it should.
std::string FindObjection(const Finding& finding, const LoneCommand& command, const ScriptRun& run, const WString& path,
    const Environment& variables);

/// The command that the finding is in; null when there is none.
const LoneCommand* FindCommand(const std::vector<LoneCommand>& commands, const Finding& finding);

std::string Describe(const Finding& finding);
