// Analyses scripts made by chance, runs them, and compares. An error must be one: the command that it points at, run by
// itself on a fresh bench, fails with that message at that place. What fails for a reason that can be seen without
// running must have been found. A script that is as it should be has no findings.
//
// AGREEMENT_SCRIPTS and AGREEMENT_SEED in the environment say how many scripts there are and which is the first.

#include "ScriptTools/LoadedTools.h"
#include "ScriptTools/RandomScript.h"
#include "ScriptTools/ScriptRun.h"
#include "Support/ManualClock.h"
#include "Text/HostError.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace {
/// Numbers of the evaluator's errors that lie in the grammar: no value changes them.
const std::set<unsigned int> grammarErrors_lc = {
    7, 15, 16, 17, 18, 19, 20, 22, 24, 25, 26, 28, 30, 32, 33, 34, 35, 36, 37, 38, 39, 41, 42, 43, 45, 46, 145};
/// And of those that a call always has, if it is reached.
const std::set<unsigned int> callErrors_lc = {27, 201, 101, 102, 113, 117, 122, 134, 135, 136, 141, 142, 151, 155};

unsigned int ReadSetting(const char* name, unsigned int usual)
{
    const char* const text = std::getenv(name);
    return text ? static_cast<unsigned int>(std::stoul(text)) : usual;
}

/// What the scripts take for given.
Environment MakeVariables()
{
    Environment variables;
    variables.SetString(L"target", L"37");
    return variables;
}

class AgreementTest : public testing::Test
{
protected:
    AgreementTest() { folder.Write("part.txt", RandomScript::part); }

    /// Appends what the analysis and runs of the script do not agree on.
    void Compare(std::uint32_t seed);

    const LoadedTools tools;
    const ManualClock clock;
    const TemporaryFolder folder;
    std::map<std::string, unsigned int> counts; // of scripts of each sort, and of findings with each code
    std::string disagreements;
    unsigned int disagreementCount = 0;

private:
    void Disagree(std::uint32_t seed, const WString& command, const std::string& reason)
    {
        constexpr unsigned int shown = 200000;
        if (++disagreementCount <= shown)
            disagreements += "script " + std::to_string(seed) + ": " + command.ToUtf8() + "\n    " + reason + "\n";
    }
};

bool IsOfCommandLine(const Failure& failure)
{
    const ExitCode& code = failure.outcome.code;
    const WString& message = failure.outcome.message;
    if (IsHostError(code, HostError::UnterminatedQuote))
        return failure.command.IndexOf(L"%") < 0; // a reference may bring the other quote
    if (IsHostError(code, HostError::UnknownCommand))
        return true;
    if (code.GetModule() != 0)
        return false;
    const bool isIf = failure.outcome.command == L"If";
    return message.StartsWith(L"Bad value of option ", false) || message.StartsWith(L"Unknown option: ", false) ||
        (isIf && code.GetNumber() >= 3 && code.GetNumber() <= 5) ||
        (failure.outcome.command == L"While" && code.GetNumber() == 3);
}

/// Whether an analysis can see that it fails; `mustBeError` then says whether nothing but an error will do.
bool CanBeFound(const Failure& failure, bool& mustBeError)
{
    const ExitCode& code = failure.outcome.code;
    const bool isOfEvaluator = code.GetModule() == 505;
    const bool isGrammar = isOfEvaluator && grammarErrors_lc.contains(code.GetNumber());
    const bool isCall = isOfEvaluator && callErrors_lc.contains(code.GetNumber());
    mustBeError = !isCall;
    return isGrammar || isCall || IsOfCommandLine(failure);
}

void AgreementTest::Compare(std::uint32_t seed)
{
    const RandomScript script(seed);
    const std::string path = folder.Write("script.txt", script.text);
    const std::vector<Finding> findings = tools->Analyse(script.text, path, MakeVariables()).findings;
    const std::vector<LoneCommand> commands = ReadCommands(script.text);
    const ScriptRun run = RunWhole(path, MakeVariables());

    ++counts["scripts"];
    ++counts[run.isClean ? "clean" : "failing"];
    counts["nested"] += script.isNested;
    counts["failures"] += static_cast<unsigned int>(run.failures.size());
    if (script.kind == RandomScript::Kind::Clean && !run.isClean)
        Disagree(seed, L"", "a clean script fails, at last by " + run.failures.back().command.ToUtf8());
    for (const Finding& finding : findings) {
        ++counts[finding.code.ToUtf8()];
        ++counts[finding.isError ? "errors" : "warnings"];
        const LoneCommand* const command = FindCommand(commands, finding);
        std::string objection;
        if (!command)
            objection = "there is no command";
        else if (script.kind == RandomScript::Kind::Clean || command->isSilenced)
            objection = "nothing is to be told";
        else
            objection = FindObjection(finding, *command, run, WString::FromUtf8(path), MakeVariables());
        if (!objection.empty())
            Disagree(seed, command ? command->FindPart(finding.place).text : L"", Describe(finding) + ": " + objection);
    }
    for (const Failure& failure : run.failures) {
        bool mustBeError = false;
        const auto command = std::ranges::find(commands, failure.line, &LoneCommand::line);
        if (failure.isExpected || command->isSilenced || !CanBeFound(failure, mustBeError))
            continue;
        const auto serves = [&](const Finding& finding) {
            return command->Contains(finding.place) && (finding.isError || !mustBeError) &&
                command->FindPart(finding.place).text == failure.command &&
                failure.outcome.message.StartsWith(finding.message, false);
        };
        if (std::ranges::none_of(findings, serves))
            Disagree(seed, failure.command, "not found: " + failure.outcome.message.ToUtf8());
    }
}
} // namespace

TEST_F(AgreementTest, FindingsAndRunsAgree)
{
    const unsigned int first = ReadSetting("AGREEMENT_SEED", 1);
    const unsigned int count = ReadSetting("AGREEMENT_SCRIPTS", 300);
    for (std::uint32_t seed = first; seed < first + count; ++seed)
        Compare(seed);
    std::string figures;
    for (const auto& [name, number] : counts)
        figures += " " + name + " " + std::to_string(number) + ";";
    std::cout << "From seed " << first << ":" << figures << " disagreements " << disagreementCount << "\n";
    EXPECT_EQ(disagreementCount, 0u) << disagreements;
    EXPECT_GT(counts["clean"], count / 4);
    EXPECT_GT(counts["failing"], count / 4);
}
