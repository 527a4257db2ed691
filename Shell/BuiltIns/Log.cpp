#include "BuiltIns/BuiltIn.h"
#include "FileLines.h"
#include "Instrument/System.h"
#include "Services/File.h"
#include "Text/CharacterCase.h"
#include "Text/SimilarName.h"

#include <algorithm>
#include <deque>
#include <filesystem>

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Log [<options>] [<name>]",
    L" Shows the end of a log, or clears it, or turns it on or off.",
    L"Arguments:",
    L" <name>  ErrorLog, the default, EELog (the expression evaluator's), or",
    L"          another log of a plug-in.",
    L"Options: (one at most)",
    L" -n<lines>  The number of lines to show, 20 by default.",
    L" -c         Clear the log.",
    L" -e         Enable the log from now on.",
    L" -d         Disable the log from now on.",
};

constexpr WholeNumberOption lineCount_lc(L"n", badOptionValue, 1, 1000000, L"Show so many lines");
constexpr FlagOption clear_lc(L"c", badOptionValue, L"Clear the log");
constexpr FlagOption enable_lc(L"e", badOptionValue, L"Enable the log");
constexpr FlagOption disable_lc(L"d", badOptionValue, L"Disable the log");
constexpr OptionRecord options_lc[] = {lineCount_lc, clear_lc, enable_lc, disable_lc};
constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::Log}};

class Log : public BuiltIn
{
public:
    Log() : BuiltIn(log_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;

private:
    WString FindLog(const WString& name, bool mayCome);
    void ShowEnd(const std::string& file, int lineCount);
    void Clear(const std::string& file);
    void Enable(const WString& name, bool enabled);
};

bool IsLogName(const WString& name)
{
    const auto isLetterOrDigit = [](wchar_t ch) {
        return (ToLower(ch) >= L'a' && ToLower(ch) <= L'z') || (ch >= L'0' && ch <= L'9');
    };
    return !name.IsEmpty() && std::ranges::all_of(name.View(), isLetterOrDigit);
}

ExitCode Log::Main(ArgumentList& arguments, Options& options)
{
    int lineCount = 20;
    const bool counts = options.TryGetInt(lineCount_lc, lineCount);
    const bool clears = options.TryGetFlag(clear_lc);
    const bool enables = options.TryGetFlag(enable_lc);
    const bool disables = options.TryGetFlag(disable_lc);
    Accept(arguments, options);
    if (counts + clears + enables + disables > 1)
        Fail(CommonExit::badOption, L"Only one of the options -n, -c, -e and -d can be given");
    const WString name = FindLog(arguments.Count() == 0 ? L"ErrorLog" : arguments.At(0), enables || disables);
    const std::string file = System::GetDataFolder() + "/" + name.ToUtf8();
    if (clears)
        Clear(file);
    if (enables || disables)
        Enable(name, enables);
    if (!clears && !enables && !disables)
        ShowEnd(file + ".txt", lineCount);
    return ExitCode(0);
}

/// The name of a log of the process, or of one that has left a file, or may come with a plug-in that is not loaded.
WString Log::FindLog(const WString& name, bool mayCome)
{
    if (!IsLogName(name))
        Fail(badValue, name + L" is no name of a log");
    WStringArray names;
    LogFile::GetNames(names);
    const auto known = std::ranges::find_if(names, [&](const WString& log) { return log.Equals(name.View(), true); });
    if (known != names.end())
        return *known;
    if (!File::Exists(WString::FromUtf8(System::GetDataFolder()) + L"/" + name + L".txt")) {
        names.Sort();
        SimilarName similar(name);
        similar.Offer(names);
        if (!mayCome || !similar.Get().IsEmpty())
            Fail(notFound, L"There is no log " + name + similar.GetQuestion());
    }
    return name;
}

void Log::ShowEnd(const std::string& file, int lineCount)
{
    const WString path = WString::FromUtf8(file);
    if (!File::Exists(path))
        return;
    const File regular(path, FileOpenMode::OpenExisting, FileAccessMode::Read); // or reading might never end
    FileLines lines(file);
    std::deque<std::string> last;
    for (std::string line; lines.TryReadLine(line);) {
        last.push_back(line);
        if (last.size() > static_cast<std::size_t>(lineCount))
            last.pop_front();
    }
    for (const std::string& line : last)
        GetPipe().DoWriteLine(WString::FromUtf8(line));
}

void Log::Clear(const std::string& file)
{
    for (const char* ending : {".txt", ".old.txt"}) {
        std::error_code error;
        std::filesystem::remove(file + ending, error);
        if (error)
            Fail(failed, WString::FromUtf8(file + ending + ": " + error.message()));
    }
}

/// The setting is read again by every log of the process, and by every process when it starts.
void Log::Enable(const WString& name, bool enabled)
{
    System::config.SetString(L"Log", name, enabled ? L"true" : L"false");
    System::config.Save();
    LogFile::ConfigureAll();
}
} // namespace

constexpr CommandRecord log_gb = {L"Log", 2007, Create<Log>, usage_lc, options_lc, 0, arguments_lc, {0, 1}};
